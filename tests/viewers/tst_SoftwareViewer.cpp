// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerPair.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

namespace
{

QImage PlainPicture(const QSize& size, const QColor& color)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

/// The smallest rectangle around all pixels of @p color.
QRect BoundsOf(const QImage& image, const QColor& color)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y)
    {
        for (int x = 0; x < image.width(); ++x)
        {
            if (image.pixel(x, y) == color.rgb())
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

} // namespace

class tst_SoftwareViewer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void StartsEmpty();
    void PicturesMatchTheModel_data();
    void PicturesMatchTheModel();
    void PlacesPicturesAtTheirPixels_data();
    void PlacesPicturesAtTheirPixels();
    void ANullPictureLeavesItsHalfBlack_data();
    void ANullPictureLeavesItsHalfBlack();
    void ANullPictureKeepsItsDisplaySize();
    void HiddenPicturesKeepTheirDisplaySize();
    void OnlyTheSingleViewerIsDrawnAndMeasured();
    void TheDisplaySizeIsThatOfTheFirstViewer();
    void AnIndexOfTwoIsLoggedAndChangesNothing_data();
    void AnIndexOfTwoIsLoggedAndChangesNothing();
    void EachNegativeIndexSetsBoth();
    void PicturesOfEachFormatAreShownOpaque_data();
    void PicturesOfEachFormatAreShownOpaque();
    void LinearChangesNothingButTheFlag();
    void SetOverlayDataReplacesTheLists();
    void StoresTheLastPictureOnlyWhenAsked();
    void TurningTheStoreOffDropsThePictureAtOnce();
    void TheStoredPictureHoldsNoAnnotations();
    void RefreshWithoutAStoredPictureIsAFullPaint();
    void RefreshBeforeTheFirstPaintIsAFullPaint();
    void SetImageDuringARefreshWaitsForTheNextPaint();
    void HiddenAnnotationsMakeAFullPaint();
    void WithNothingToDrawTheRefreshStaysAsked();
    void GhostsAloneAreSomethingToDraw();
    void GetImageIsAPaintOfTheDisplaySize();

private:
    FrameData mFrame;
};

void tst_SoftwareViewer::init()
{
    Settings::RestoreDefaults();
    Settings::annotationTool = Eyedropper;
    mFrame = MakeFrame({MakeDrawing(DrawPencil, {{-0.3, -0.1}, {0.3, 0.1}}, 0.04f, Qt::green)});
}

void tst_SoftwareViewer::StartsEmpty()
{
    QWidget window;
    SoftwareViewerProbe viewer(&window);
    const QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Expanding, QSizePolicy::DefaultType);
    QCOMPARE(viewer.parentWidget(), &window);
    QCOMPARE(viewer.sizePolicy(), policy);
    QCOMPARE(viewer.mViewerLayout, Single);
    QCOMPARE(viewer.mDisplaySizes, QVector<QPointF>({QPointF(), QPointF()}));
    QCOMPARE(viewer.mActiveAnnotationViewerIndex, 0);
    QCOMPARE(viewer.mSingleViewerIndex, 0);
    QVERIFY(viewer.mImageChanged && viewer.mAnnotationsVisible);
    QVERIFY(!viewer.mAnnotationsOnly && !viewer.mStoreLastImage);
    QVERIFY(viewer.mLastImage.isNull() && viewer.mAnnotationImage.isNull() &&
            viewer.mAnnotationScratchImage.isNull());
    for (int i = 0; i < 2; ++i)
    {
        QVERIFY(!viewer.mLinearFlags[i] && !viewer.mCurrentFrameData[i]);
        QVERIFY(viewer.mPreviousFrameData[i].isEmpty() && viewer.mNextFrameData[i].isEmpty());
        QCOMPARE(viewer.mLastDrawIndex[i], -1);
        QCOMPARE(viewer.mLastPointIndex[i], -1);
    }
    QCOMPARE(viewer.GetImageDisplayWidth(), 0);
    QCOMPARE(viewer.GetImageDisplayHeight(), 0);
}

void tst_SoftwareViewer::PicturesMatchTheModel_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("first");
    QTest::addColumn<QSize>("second");
    const auto add = [](const QSize& size, const QSize& first, const QSize& second)
    {
        QTest::addRow("%dx%d: %dx%d, %dx%d", size.width(), size.height(), first.width(), first.height(),
                      second.width(), second.height())
            << size << first << second;
    };
    add(QSize(320, 180), QSize(320, 180), QSize(640, 360));
    add(QSize(321, 181), QSize(1, 1), QSize(2, 3));
    add(QSize(100, 100), QSize(500, 1), QSize(1, 500));
    add(QSize(101, 103), QSize(1000, 2), QSize(2, 1000));
    add(QSize(333, 101), QSize(17, 400), QSize(400, 17));
    add(QSize(100, 100), QSize(20000, 1), QSize(1, 20000));
    add(QSize(5, 3), QSize(4, 4), QSize(3, 5));
    add(QSize(1, 1), QSize(4, 4), QSize(3, 5));
    QRandomGenerator random(11);
    const auto upTo = [&random](int bound) { return 1 + int(random.bounded(bound)); };
    for (int row = 0; row < 30; ++row)
        add(QSize(upTo(400), upTo(300)), QSize(upTo(300), upTo(300)), QSize(upTo(300), upTo(300)));
}

void tst_SoftwareViewer::PicturesMatchTheModel()
{
    QFETCH(QSize, size);
    QFETCH(QSize, first);
    QFETCH(QSize, second);
    for (const ViewerLayout layout : {Single, Horizontal, Vertical})
    {
        for (const int single : {0, 1})
        {
            ViewerPair pair(size, QPoint(9, 5));
            pair.SetStore(single == 0);
            pair.SetImage(0, NoisePicture(first, 1));
            pair.SetImage(1, NoisePicture(second, 2));
            pair.SetLayout(layout);
            pair.SetSingle(single);
            const QByteArray text = pair.Paint(0);
            QVERIFY2(text.isEmpty(), text);
        }
    }
}

void tst_SoftwareViewer::PlacesPicturesAtTheirPixels_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QRect>("first");
    QTest::addColumn<QRect>("second");
    const QRect none;
    QTest::newRow("single, wider") << int(Single) << QSize(200, 100) << QSize(40, 10) << QRect(0, 25, 200, 50)
                                   << none;
    QTest::newRow("single, odd rest")
        << int(Single) << QSize(201, 100) << QSize(10, 10) << QRect(50, 0, 100, 100) << none;
    // One pixel to the right, one to the left: the outer column stays black, the inner ones overlap or are
    // cut.
    QTest::newRow("horizontal, full width") << int(Horizontal) << QSize(200, 100) << QSize(10, 5)
                                            << QRect(1, 25, 99, 50) << QRect(99, 25, 100, 50);
    QTest::newRow("horizontal, full height") << int(Horizontal) << QSize(300, 100) << QSize(10, 10)
                                             << QRect(26, 0, 100, 100) << QRect(174, 0, 100, 100);
    QTest::newRow("horizontal, odd width") << int(Horizontal) << QSize(301, 100) << QSize(10, 10)
                                           << QRect(26, 0, 100, 100) << QRect(174, 0, 100, 100);
    // One pixel up, both.
    QTest::newRow("vertical, full height") << int(Vertical) << QSize(200, 200) << QSize(10, 10)
                                           << QRect(50, 0, 100, 99) << QRect(50, 99, 100, 100);
    QTest::newRow("vertical, full width") << int(Vertical) << QSize(100, 300) << QSize(20, 10)
                                          << QRect(0, 49, 100, 50) << QRect(0, 199, 100, 50);
    QTest::newRow("vertical, odd height") << int(Vertical) << QSize(100, 301) << QSize(20, 10)
                                          << QRect(0, 49, 100, 50) << QRect(0, 199, 100, 50);
}

void tst_SoftwareViewer::PlacesPicturesAtTheirPixels()
{
    QFETCH(int, layout);
    QFETCH(QSize, size);
    QFETCH(QSize, picture);
    QFETCH(QRect, first);
    QFETCH(QRect, second);
    ViewerPair pair(size);
    pair.SetImage(0, PlainPicture(picture, Qt::red));
    pair.SetImage(1, PlainPicture(picture, Qt::blue));
    pair.SetLayout(ViewerLayout(layout));
    const QImage shown = pair.PaintViewer();
    // Where both cover a column, the second lies above the first.
    QCOMPARE(BoundsOf(shown, Qt::red), layout == Horizontal && first.right() >= second.left()
                                           ? first.adjusted(0, 0, second.left() - first.right() - 1, 0)
                                           : first);
    QCOMPARE(BoundsOf(shown, Qt::blue), second);
    const int red = first.isNull() ? 0 : BoundsOf(shown, Qt::red).width() * first.height();
    int black = 0;
    for (int y = 0; y < size.height(); ++y)
    {
        for (int x = 0; x < size.width(); ++x)
            black += shown.pixel(x, y) == 0xff000000u ? 1 : 0;
    }
    QCOMPARE(black, size.width() * size.height() - red - second.width() * second.height());
}

void tst_SoftwareViewer::ANullPictureLeavesItsHalfBlack_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("index");
    for (const int layout : {1, 2})
    {
        for (const int index : {0, 1})
            QTest::addRow("layout %d, viewer %d", layout, index) << layout << index;
    }
}

void tst_SoftwareViewer::ANullPictureLeavesItsHalfBlack()
{
    QFETCH(int, layout);
    QFETCH(int, index);
    ViewerPair pair(QSize(200, 120));
    pair.SetLayout(ViewerLayout(layout));
    pair.SetImage(1 - index, NoisePicture(QSize(30, 30), 4));
    const QByteArray text = pair.Paint(0);
    QVERIFY2(text.isEmpty(), text);
    const QRect half = layout == Horizontal ? QRect(index * 100 + (index == 0 ? 0 : 1), 0, 99, 120)
                                            : QRect(0, index * 60, 200, 59);
    QCOMPARE(PictureDifference(pair.PaintViewer().copy(half), PlainPicture(half.size(), Qt::black)),
             QByteArray());
}

void tst_SoftwareViewer::ANullPictureKeepsItsDisplaySize()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetImage(0, NoisePicture(QSize(30, 30), 4));
    QCOMPARE(pair.Paint(0), QByteArray());
    pair.SetImage(0, QImage());
    pair.Resize(QSize(300, 150));
    QCOMPARE(pair.Paint(0), QByteArray());
    QVERIFY(pair.viewer->mDisplaySizes[0] == QPointF(120, 120));
    QCOMPARE(pair.viewer->GetImageDisplayWidth(), 120);
}

void tst_SoftwareViewer::HiddenPicturesKeepTheirDisplaySize()
{
    Settings::onlyDisplayAnnotations = true;
    for (const ViewerLayout layout : {Single, Horizontal, Vertical})
    {
        ViewerPair pair(QSize(200, 120));
        pair.SetStore(true);
        pair.SetLayout(layout);
        pair.SetImage(-1, PlainPicture(QSize(40, 20), Qt::white));
        QCOMPARE(PictureDifference(pair.PaintViewer(), PlainPicture(QSize(200, 120), Qt::black)),
                 QByteArray());
        QCOMPARE(pair.viewer->GetImageDisplayWidth(), layout == Single       ? 200
                                                      : layout == Horizontal ? 100
                                                                             : 120);
        pair.SetOverlay(0, &mFrame);
        const QByteArray text = pair.Paint();
        QVERIFY2(text.isEmpty(), text);
    }
}

void tst_SoftwareViewer::OnlyTheSingleViewerIsDrawnAndMeasured()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetImage(0, NoisePicture(QSize(30, 10), 1));
    pair.SetImage(1, NoisePicture(QSize(10, 30), 2));
    pair.SetSingle(1);
    QCOMPARE(pair.Paint(0), QByteArray());
    QVERIFY(pair.viewer->mDisplaySizes[0] == QPointF(0, 0));
    QVERIFY(pair.viewer->mDisplaySizes[1] == QPointF(40, 120));
    QCOMPARE(pair.viewer->GetImageDisplayWidth(), 40);
    QCOMPARE(pair.viewer->GetImageDisplayHeight(), 120);
}

void tst_SoftwareViewer::TheDisplaySizeIsThatOfTheFirstViewer()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetImage(0, NoisePicture(QSize(30, 10), 1));
    pair.SetImage(1, NoisePicture(QSize(10, 30), 2));
    pair.SetSingle(1);
    pair.SetLayout(Vertical);
    QCOMPARE(pair.Paint(0), QByteArray());
    QCOMPARE(pair.viewer->GetImageDisplayWidth(), 180);
    QCOMPARE(pair.viewer->GetImageDisplayHeight(), 60);
}

void tst_SoftwareViewer::AnIndexOfTwoIsLoggedAndChangesNothing_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("two") << 2;
    QTest::newRow("many") << 2000000000;
}

void tst_SoftwareViewer::AnIndexOfTwoIsLoggedAndChangesNothing()
{
    QFETCH(int, index);
    ViewerPair pair(QSize(200, 120));
    pair.SetLayout(Horizontal);
    pair.SetImage(-1, NoisePicture(QSize(30, 10), 1));
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    pair.viewer->SetImage(index, PlainPicture(QSize(10, 10), Qt::white), true);
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors[0][0].toString(), QStringLiteral("Viewer index out of range"));
    QVERIFY(!pair.viewer->mLinearFlags[0] && !pair.viewer->mLinearFlags[1]);
    QCOMPARE(pair.Paint(0), QByteArray());
    QCOMPARE(errors.size(), 1);
}

void tst_SoftwareViewer::EachNegativeIndexSetsBoth()
{
    for (const int index : {-1, -7})
    {
        ViewerPair pair(QSize(200, 120));
        QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
        pair.SetLayout(Vertical);
        pair.SetImage(index, NoisePicture(QSize(30, 10), 1));
        QCOMPARE(pair.Paint(0), QByteArray());
        QCOMPARE(errors.size(), 0);
    }
}

void tst_SoftwareViewer::PicturesOfEachFormatAreShownOpaque_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("RGB32") << int(QImage::Format_RGB32) << QColor(200, 100, 60);
    QTest::newRow("RGB888") << int(QImage::Format_RGB888) << QColor(200, 100, 60);
    QTest::newRow("BGR888") << int(QImage::Format_BGR888) << QColor(200, 100, 60);
    // The alpha goes, the colour stays.
    QTest::newRow("ARGB32") << int(QImage::Format_ARGB32) << QColor(200, 100, 60);
}

void tst_SoftwareViewer::PicturesOfEachFormatAreShownOpaque()
{
    QFETCH(int, format);
    QFETCH(QColor, expected);
    QImage picture(10, 6, QImage::Format(format));
    picture.fill(QColor(200, 100, 60, picture.hasAlphaChannel() ? 128 : 255));
    ViewerPair pair(QSize(100, 60));
    pair.viewer->SetImage(0, picture, false);
    QCOMPARE(PictureDifference(pair.PaintViewer(), PlainPicture(QSize(100, 60), expected)), QByteArray());
}

void tst_SoftwareViewer::LinearChangesNothingButTheFlag()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetImage(0, NoisePicture(QSize(30, 10), 1));
    pair.viewer->SetImage(0, pair.model.pictures[0], true);
    QVERIFY(pair.viewer->mLinearFlags[0] && !pair.viewer->mLinearFlags[1]);
    QCOMPARE(pair.Paint(0), QByteArray());
    pair.viewer->SetImage(-1, pair.model.pictures[0], true);
    QVERIFY(pair.viewer->mLinearFlags[0] && pair.viewer->mLinearFlags[1]);
    pair.viewer->SetImage(0, pair.model.pictures[0], false);
    QVERIFY(!pair.viewer->mLinearFlags[0] && pair.viewer->mLinearFlags[1]);
    QCOMPARE(pair.Paint(0), QByteArray());
}

void tst_SoftwareViewer::SetOverlayDataReplacesTheLists()
{
    const FrameData a;
    const FrameData b;
    ViewerPair pair(QSize(200, 120));
    SoftwareViewerProbe* const viewer = pair.viewer;
    viewer->SetOverlayData(1, &a, {&a, &b}, {&b});
    QCOMPARE(viewer->mCurrentFrameData[1], &a);
    QCOMPARE(viewer->mPreviousFrameData[1], (QList<const FrameData*>{&a, &b}));
    QCOMPARE(viewer->mNextFrameData[1], (QList<const FrameData*>{&b}));
    QVERIFY(!viewer->mCurrentFrameData[0] && viewer->mPreviousFrameData[0].isEmpty());
    viewer->SetOverlayData(1, nullptr, {}, {&b, &a});
    QVERIFY(!viewer->mCurrentFrameData[1] && viewer->mPreviousFrameData[1].isEmpty());
    QCOMPARE(viewer->mNextFrameData[1], (QList<const FrameData*>{&b, &a}));
}

void tst_SoftwareViewer::StoresTheLastPictureOnlyWhenAsked()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetLayout(Horizontal);
    pair.SetImage(-1, NoisePicture(QSize(30, 40), 1));
    QCOMPARE(pair.Paint(0), QByteArray());
    QVERIFY(pair.viewer->mLastImage.isNull());
    pair.SetStore(true);
    QVERIFY(pair.viewer->mLastImage.isNull());
    QCOMPARE(pair.Paint(0), QByteArray());
    QCOMPARE(pair.viewer->mLastImage.format(), QImage::Format_ARGB32);
    QCOMPARE(PictureDifference(pair.viewer->mLastImage, pair.PaintViewer()), QByteArray());
}

void tst_SoftwareViewer::TurningTheStoreOffDropsThePictureAtOnce()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetStore(true);
    QCOMPARE(pair.Paint(0), QByteArray());
    QVERIFY(!pair.viewer->mLastImage.isNull());
    pair.SetStore(false);
    QVERIFY(pair.viewer->mLastImage.isNull());
}

void tst_SoftwareViewer::TheStoredPictureHoldsNoAnnotations()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetImage(0, NoisePicture(QSize(30, 40), 1));
    const QImage plain = pair.PaintViewer();
    pair.SetStore(true);
    pair.SetOverlay(0, &mFrame);
    pair.PaintViewer();
    QCOMPARE(PictureDifference(pair.viewer->mLastImage, plain), QByteArray());
}

void tst_SoftwareViewer::RefreshWithoutAStoredPictureIsAFullPaint()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetOverlay(0, &mFrame);
    pair.SetImage(0, NoisePicture(QSize(30, 40), 1));
    QCOMPARE(pair.Paint(), QByteArray());
    pair.SetImage(0, NoisePicture(QSize(30, 40), 2));
    pair.SetAnnotationsOnly();
    QCOMPARE(pair.Paint(), QByteArray());
    QVERIFY(!pair.viewer->mAnnotationsOnly);
    const QRect place = ViewerModel::PictureRect(QSize(30, 40), Single, 0, QSize(200, 120));
    QCOMPARE(pair.viewer->grab(place.adjusted(0, 0, 0, -100)).toImage().pixel(0, 0),
             pair.model.Paint().pixel(place.topLeft()));
}

void tst_SoftwareViewer::RefreshBeforeTheFirstPaintIsAFullPaint()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetStore(true);
    pair.SetOverlay(0, &mFrame);
    pair.SetImage(0, NoisePicture(QSize(30, 40), 1));
    pair.SetAnnotationsOnly();
    // As if a picture were stored already: the first paint is full all the same.
    pair.viewer->mLastImage = PlainPicture(QSize(200, 120), Qt::white);
    QCOMPARE(pair.Paint(), QByteArray());
    QVERIFY(!pair.viewer->mAnnotationsOnly && !pair.viewer->mImageChanged);
}

void tst_SoftwareViewer::SetImageDuringARefreshWaitsForTheNextPaint()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetStore(true);
    pair.SetOverlay(0, &mFrame);
    pair.SetImage(0, PlainPicture(QSize(20, 12), Qt::red));
    QCOMPARE(pair.Paint(), QByteArray());
    pair.SetAnnotationsOnly();
    pair.SetImage(0, PlainPicture(QSize(20, 12), Qt::blue));
    QVERIFY(pair.viewer->mAnnotationsOnly);
    QCOMPARE(pair.Paint(), QByteArray());
    QCOMPARE(pair.viewer->mLastImage.pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(pair.PaintViewer().pixelColor(0, 0), QColor(Qt::blue));
}

void tst_SoftwareViewer::HiddenAnnotationsMakeAFullPaint()
{
    ViewerPair pair(QSize(200, 120));
    pair.SetStore(true);
    pair.SetOverlay(0, &mFrame);
    pair.SetImage(0, PlainPicture(QSize(20, 12), Qt::red));
    QCOMPARE(pair.Paint(), QByteArray());
    pair.SetVisible(false);
    pair.SetImage(0, PlainPicture(QSize(20, 12), Qt::blue));
    pair.SetAnnotationsOnly();
    QCOMPARE(PictureDifference(pair.PaintViewer(), PlainPicture(QSize(200, 120), Qt::blue)), QByteArray());
    QVERIFY(!pair.viewer->mAnnotationsOnly);
}

void tst_SoftwareViewer::WithNothingToDrawTheRefreshStaysAsked()
{
    ViewerPair pair(QSize(200, 120));
    FrameData empty;
    pair.SetStore(true);
    pair.SetOverlay(0, &empty);
    pair.SetImage(0, PlainPicture(QSize(20, 12), Qt::red));
    QCOMPARE(pair.Paint(), QByteArray());
    pair.SetAnnotationsOnly();
    QCOMPARE(pair.Paint(), QByteArray());
    QVERIFY(pair.viewer->mAnnotationsOnly);
    // The next paint, asked for by something else, is still of that kind.
    pair.SetImage(0, PlainPicture(QSize(20, 12), Qt::blue));
    pair.SetOverlay(0, &mFrame);
    QCOMPARE(pair.Paint(), QByteArray());
    QVERIFY(!pair.viewer->mAnnotationsOnly);
    QCOMPARE(pair.viewer->mLastImage.pixelColor(0, 0), QColor(Qt::red));
}

void tst_SoftwareViewer::GhostsAloneAreSomethingToDraw()
{
    for (const bool next : {false, true})
    {
        // Also in the viewer that is not shown.
        for (const int index : {0, 1})
        {
            ViewerPair pair(QSize(200, 120));
            pair.SetStore(true);
            pair.SetImage(0, PlainPicture(QSize(20, 12), Qt::red));
            QCOMPARE(pair.Paint(), QByteArray());
            if (next)
                pair.SetOverlay(index, nullptr, {}, {&mFrame});
            else
                pair.SetOverlay(index, nullptr, {&mFrame}, {});
            pair.SetAnnotationsOnly();
            QCOMPARE(pair.Paint(), QByteArray());
            QVERIFY(!pair.viewer->mAnnotationsOnly);
        }
    }
}

void tst_SoftwareViewer::GetImageIsAPaintOfTheDisplaySize()
{
    ViewerPair pair(QSize(211, 133));
    pair.SetLayout(Horizontal);
    pair.SetImage(0, NoisePicture(QSize(30, 40), 1));
    pair.SetImage(1, NoisePicture(QSize(400, 300), 2));
    pair.SetOverlay(1, &mFrame);
    const QImage image = pair.viewer->GetImage();
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    const QByteArray text = PictureDifference(image, pair.model.Paint(), 2);
    QVERIFY2(text.isEmpty(), text);
}

static const TestRegistration<tst_SoftwareViewer> SoftwareViewerRegistration;

#include "tst_SoftwareViewer.moc"
