// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerPair.h"

#include <QPainter>
#include <QtTest>

namespace
{

QImage PictureOf(const QColor& color)
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

constexpr QRgb Gray = 0xffa0a0a4u;

} // namespace

/// What the overlay adds to a frame's own drawings: its neighbours, and the tool under the cursor.
class tst_GhostsAndPreview : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void EachGhostHasItsAlpha_data();
    void EachGhostHasItsAlpha();
    void GhostsKeepTheirErasersApartWhenAccurate_data();
    void GhostsKeepTheirErasersApartWhenAccurate();
    void AccurateGhostsBlendOverEachOther();
    void FastGhostsOverwriteEachOther();
    void TheSwitchesForGhostsAreTheHosts();
    void GhostsStayInTheCacheOfAStroke();
    void AShrunkWidgetBoundsWhatIsAdded();
    void TheBoxOfATextShowsOnAGhostToo();
    void PreviewIsPartOfARefreshAlone();
    void PreviewOfEachTool_data();
    void PreviewOfEachTool();
    void PreviewFollowsTheSettingsAndTheCursor_data();
    void PreviewFollowsTheSettingsAndTheCursor();
    void PreviewIsScaledByTheFirstViewer();
    void CtrlHidesThePreviewUnlessDrawing_data();
    void CtrlHidesThePreviewUnlessDrawing();
    void ATextBeingTypedHidesTheCaret();

private:
    QImage Refresh();

    std::unique_ptr<ViewerPair> mPair;
    FrameData mEmptyStroke;
};

void tst_GhostsAndPreview::init()
{
    Settings::RestoreDefaults();
    Settings::annotationTool = Eyedropper;
    mPair = std::make_unique<ViewerPair>(QSize(400, 300));
    mPair->SetImage(-1, PictureOf(Qt::black));
    mPair->SetStore(true);
    mPair->MoveCursor(QPoint(100, 80));
    mPair->Paint();
    // Something to draw that shows nothing.
    mEmptyStroke = MakeFrame({MakeDrawing(DrawNone, {{0, 0}, {0, 0}})});
}

/// An annotation-only paint, compared with the model.
QImage tst_GhostsAndPreview::Refresh()
{
    mPair->SetAnnotationsOnly();
    const QByteArray text = mPair->Paint();
    if (!text.isEmpty())
        QTest::qFail(text, __FILE__, __LINE__);
    mPair->SetAnnotationsOnly();
    mPair->model.Paint();
    return mPair->PaintViewer();
}

void tst_GhostsAndPreview::EachGhostHasItsAlpha_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<int>>("alphas");
    QTest::newRow("full list") << 40 << 160 << 3 << QList<int>{40, 80, 120};
    QTest::newRow("short list keeps the strong end") << 40 << 160 << 4 << QList<int>{70, 100, 130};
    QTest::newRow("one of three") << 40 << 160 << 3 << QList<int>{120};
    QTest::newRow("integer steps") << 10 << 110 << 3 << QList<int>{10, 43, 76};
    QTest::newRow("longer list starts below the minimum") << 90 << 190 << 2 << QList<int>{40, 90, 140};
    // -60, -10: out of range, so the drawing's own 255.
    QTest::newRow("below zero is out of range") << 40 << 140 << 2 << QList<int>{255, 255, 40, 90};
    QTest::newRow("count of zero") << 40 << 160 << 0 << QList<int>{40, 40, 40};
    QTest::newRow("negative count") << 40 << 160 << -2 << QList<int>{40, 40};
    QTest::newRow("minimum above maximum") << 160 << 40 << 3 << QList<int>{160, 120, 80};
    // -10 / 3 is -3, not -4.
    QTest::newRow("a falling span is cut towards zero") << 20 << 10 << 3 << QList<int>{20, 17, 14};
}

void tst_GhostsAndPreview::EachGhostHasItsAlpha()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, count);
    QFETCH(QList<int>, alphas);
    Settings::annotationGhostAlphaMin = minimum;
    Settings::annotationGhostAlphaMax = maximum;
    for (const bool next : {false, true})
    {
        for (const bool accurate : {false, true})
        {
            Settings::annotationGhostAccurate = accurate;
            // The other list's setting must not matter.
            Settings::annotationGhostPreviousNumFrames = next ? 17 : count;
            Settings::annotationGhostNextNumFrames = next ? count : 17;
            QList<FrameData> frames;
            for (int ghost = 0; ghost < alphas.size(); ++ghost)
            {
                const double y = -0.3 + 0.15 * ghost;
                frames << MakeFrame({MakeDrawing(DrawLine, {{-0.4, y}, {0.4, y}}, 0.1f, Qt::white)});
            }
            QList<const FrameData*> ghosts;
            for (const FrameData& frame : qAsConst(frames))
                ghosts << &frame;
            mPair->SetOverlay(0, nullptr, next ? QList<const FrameData*>() : ghosts,
                              next ? ghosts : QList<const FrameData*>());
            QCOMPARE(mPair->Paint(), QByteArray());
            const QImage overlay = mPair->viewer->mAnnotationImage;
            for (int ghost = 0; ghost < alphas.size(); ++ghost)
                QCOMPARE(qAlpha(overlay.pixel(200, 30 + 60 * ghost)), alphas[ghost]);
        }
    }
}

void tst_GhostsAndPreview::GhostsKeepTheirErasersApartWhenAccurate_data()
{
    QTest::addColumn<bool>("accurate");
    QTest::newRow("fast") << false;
    QTest::newRow("accurate") << true;
}

void tst_GhostsAndPreview::GhostsKeepTheirErasersApartWhenAccurate()
{
    QFETCH(bool, accurate);
    Settings::annotationGhostAccurate = accurate;
    const FrameData ghost = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.1f, Qt::white)});
    const FrameData eraser = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0.2}, {0.4, 0.2}}, 0.1f, Qt::white),
                                        MakeDrawing(DrawEraser, {{0, -0.3}, {0, 0.3}}, 0.1f)});
    mPair->SetOverlay(0, &eraser, {&ghost}, {&ghost});
    QCOMPARE(mPair->Paint(), QByteArray());
    const QImage overlay = mPair->viewer->mAnnotationImage;
    QCOMPARE(qAlpha(overlay.pixel(200, 150)) > 0, accurate);
    QVERIFY(qAlpha(overlay.pixel(100, 150)) > 0);
    // Within its own frame the eraser acts in either case.
    QCOMPARE(qAlpha(overlay.pixel(200, 230)), 0);
    QCOMPARE(qAlpha(overlay.pixel(100, 230)), 255);
}

void tst_GhostsAndPreview::AccurateGhostsBlendOverEachOther()
{
    Settings::annotationGhostAccurate = true;
    Settings::annotationGhostPreviousNumFrames = Settings::annotationGhostNextNumFrames = 0;
    Settings::annotationGhostAlphaMin = 128;
    const FrameData red = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.1f, Qt::red)});
    const FrameData blue = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.1f, Qt::blue)});
    mPair->SetOverlay(0, nullptr, {&red}, {&blue});
    QCOMPARE(mPair->Paint(), QByteArray());
    // Alpha 128 over 128: 192, a third of it red.
    const QRgb pixel = mPair->viewer->mAnnotationImage.pixel(200, 150);
    QVERIFY(std::abs(qAlpha(pixel) - 192) <= 1);
    QVERIFY(std::abs(qRed(pixel) - 85) <= 2 && std::abs(qBlue(pixel) - 170) <= 2);
}

void tst_GhostsAndPreview::FastGhostsOverwriteEachOther()
{
    Settings::annotationGhostPreviousNumFrames = Settings::annotationGhostNextNumFrames = 0;
    Settings::annotationGhostAlphaMin = 128;
    const FrameData red = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.1f, Qt::red)});
    const FrameData blue = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.1f, Qt::blue)});
    mPair->SetOverlay(0, nullptr, {&red}, {&blue});
    QCOMPARE(mPair->Paint(), QByteArray());
    QCOMPARE(mPair->viewer->mAnnotationImage.pixel(200, 150), qRgba(0, 0, 255, 128));
}

void tst_GhostsAndPreview::TheSwitchesForGhostsAreTheHosts()
{
    const FrameData ghost = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.1f, Qt::white)});
    mPair->SetOverlay(0, nullptr, {&ghost}, {});
    Settings::annotationGhostPrevious = Settings::annotationGhostNext = false;
    const QImage off = mPair->PaintViewer();
    Settings::annotationGhostPrevious = Settings::annotationGhostNext = true;
    QCOMPARE(PictureDifference(mPair->PaintViewer(), off), QByteArray());
    QVERIFY(off.pixel(200, 150) != 0xff000000u);
}

void tst_GhostsAndPreview::GhostsStayInTheCacheOfAStroke()
{
    const FrameData ghost = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.1f, Qt::white)});
    FrameData stroke = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0.2}, {0, 0.2}}, 0.02f, Qt::white)});
    mPair->SetOverlay(0, &stroke, {&ghost}, {});
    QCOMPARE(mPair->Paint(), QByteArray());
    const QRgb before = mPair->viewer->mAnnotationImage.pixel(200, 150);
    // The ghosts are gone from the lists, and still shown: a stroke does not paint them again.
    mPair->SetOverlay(0, &stroke);
    stroke.drawData[0].points << QPointF(0.2, 0.2);
    Refresh();
    QCOMPARE(mPair->viewer->mAnnotationImage.pixel(200, 150), before);
}

void tst_GhostsAndPreview::AShrunkWidgetBoundsWhatIsAdded()
{
    // The widget shrinks between a full paint and a refresh: the cache keeps its size, and what is painted
    // into it now ends at the widget's edge.
    Settings::annotationGhostAccurate = true;
    mPair->SetLayout(Horizontal);
    mPair->SetActive(1);
    FrameData left = MakeFrame({MakeDrawing(DrawNone, {{0, 0}, {0, 0}})});
    FrameData right = MakeFrame({MakeDrawing(DrawPencil, {{-0.1, 0}, {0, 0}})});
    mPair->SetOverlay(0, &left);
    mPair->SetOverlay(1, &right);
    QCOMPARE(mPair->Paint(), QByteArray());
    mPair->Resize(QSize(400, 200));
    left.drawData[0] = MakeDrawing(DrawLine, {{0, -5}, {0, 5}}, 0.1f, Qt::white);
    mPair->SetAnnotationsOnly();
    QCOMPARE(mPair->Paint(), QByteArray());
    QCOMPARE(mPair->viewer->mAnnotationImage.size(), QSize(400, 300));
    QCOMPARE(qAlpha(mPair->viewer->mAnnotationImage.pixel(100, 199)), 255);
    QCOMPARE(qAlpha(mPair->viewer->mAnnotationImage.pixel(100, 200)), 0);
}

void tst_GhostsAndPreview::TheBoxOfATextShowsOnAGhostToo()
{
    Settings::textToolActive = true;
    const FrameData ghost = MakeFrame({MakeDrawing(DrawText, {{-0.2, -0.2}, {0, 0}}, 0.02f, Qt::white)});
    mPair->SetOverlay(0, nullptr, {&ghost}, {});
    QCOMPARE(mPair->Paint(), QByteArray());
    const QImage boxed = mPair->PaintViewer();
    Settings::textToolActive = false;
    QVERIFY(!PictureDifference(mPair->PaintViewer(), boxed).isEmpty());
}

void tst_GhostsAndPreview::PreviewIsPartOfARefreshAlone()
{
    Settings::annotationTool = Pencil;
    Settings::drawWidth = 0.1f;
    mPair->SetOverlay(0, &mEmptyStroke);
    QCOMPARE(mPair->Paint(), QByteArray());
    QCOMPARE(mPair->PaintViewer().pixel(121, 80), 0xff000000u);
    QCOMPARE(Refresh().pixel(121, 80), Gray);
    // And only where there is something to draw.
    mPair->SetOverlay(0, nullptr);
    QCOMPARE(Refresh().pixel(121, 80), 0xff000000u);
}

void tst_GhostsAndPreview::PreviewOfEachTool_data()
{
    QTest::addColumn<int>("tool");
    QTest::addColumn<QRect>("bounds");
    // Around (100, 80): a radius of 20 + 1; a caret of 5 by 15, its line on both edges.
    const QRect circle(79, 59, 43, 43);
    QTest::newRow("pencil") << int(Pencil) << circle;
    QTest::newRow("eraser") << int(Eraser) << circle;
    QTest::newRow("text") << int(Text) << QRect(100, 80, 6, 16);
    QTest::newRow("arrow") << int(Arrow) << QRect();
    QTest::newRow("oval") << int(Oval) << QRect();
    QTest::newRow("eyedropper") << int(Eyedropper) << QRect();
    QTest::newRow("rectangle") << int(Rectangle) << QRect();
}

void tst_GhostsAndPreview::PreviewOfEachTool()
{
    QFETCH(int, tool);
    QFETCH(QRect, bounds);
    Settings::annotationTool = AnnotationToolType(tool);
    Settings::drawWidth = 0.1f;
    mPair->SetOverlay(0, &mEmptyStroke);
    mPair->Paint();
    const QImage shown = Refresh();
    QRect painted;
    for (int y = 0; y < shown.height(); ++y)
    {
        for (int x = 0; x < shown.width(); ++x)
        {
            if (shown.pixel(x, y) == Gray)
                painted |= QRect(x, y, 1, 1);
            else
                QCOMPARE(shown.pixel(x, y), 0xff000000u);
        }
    }
    QCOMPARE(painted, bounds);
}

void tst_GhostsAndPreview::PreviewFollowsTheSettingsAndTheCursor_data()
{
    QTest::addColumn<float>("width");
    QTest::addColumn<QPoint>("cursor");
    QTest::newRow("no width") << 0.0f << QPoint(60, 70);
    QTest::newRow("cut to a whole radius") << 0.0174f << QPoint(160, 70);
    QTest::newRow("at the edge") << 0.2f << QPoint(0, 299);
    QTest::newRow("outside") << 0.2f << QPoint(-10, 310);
}

void tst_GhostsAndPreview::PreviewFollowsTheSettingsAndTheCursor()
{
    QFETCH(float, width);
    QFETCH(QPoint, cursor);
    Settings::annotationTool = Eraser;
    Settings::drawWidth = width;
    mPair->SetOverlay(0, &mEmptyStroke);
    mPair->Paint();
    mPair->MoveCursor(cursor);
    const QImage shown = Refresh();
    const int radius = int(double(width) * 400 / 2 + 1);
    if (shown.rect().contains(cursor - QPoint(0, radius)))
        QCOMPARE(shown.pixel(cursor - QPoint(0, radius)), Gray);
}

void tst_GhostsAndPreview::PreviewIsScaledByTheFirstViewer()
{
    // Viewer A's picture is a fifth as wide as viewer B's.
    mPair->SetLayout(Horizontal);
    mPair->SetImage(0, PictureOf(Qt::black).scaled(40, 300));
    mPair->SetActive(1);
    mPair->SetOverlay(1, &mEmptyStroke);
    Settings::annotationTool = Pencil;
    Settings::drawWidth = 0.5f;
    mPair->Paint();
    mPair->MoveCursor(QPoint(300, 50));
    const QImage shown = Refresh();
    QCOMPARE(shown.pixel(300, 50 - 11), Gray);
    QCOMPARE(shown.pixel(300, 50 + 11), Gray);
}

void tst_GhostsAndPreview::CtrlHidesThePreviewUnlessDrawing_data()
{
    QTest::addColumn<bool>("control");
    QTest::addColumn<bool>("drawing");
    QTest::addColumn<bool>("shown");
    QTest::newRow("neither") << false << false << true;
    QTest::newRow("drawing") << false << true << true;
    QTest::newRow("Ctrl") << true << false << false;
    QTest::newRow("Ctrl while drawing") << true << true << true;
}

void tst_GhostsAndPreview::CtrlHidesThePreviewUnlessDrawing()
{
    QFETCH(bool, control);
    QFETCH(bool, drawing);
    QFETCH(bool, shown);
    Settings::annotationTool = Text;
    Settings::drawEnabled = drawing;
    mPair->SetOverlay(0, &mEmptyStroke);
    mPair->MoveCursor(QPoint(100, 80), control);
    mPair->Paint();
    const QImage picture = Refresh();
    mPair->MoveCursor(QPoint(100, 80));
    QCOMPARE(picture.pixel(100, 90) == Gray, shown);
}

void tst_GhostsAndPreview::ATextBeingTypedHidesTheCaret()
{
    Settings::annotationTool = Text;
    Settings::textToolActive = true;
    mPair->SetOverlay(0, &mEmptyStroke);
    mPair->Paint();
    QCOMPARE(Refresh().pixel(100, 90), 0xff000000u);
    Settings::textToolActive = false;
    QCOMPARE(Refresh().pixel(100, 90), Gray);
}

static const TestRegistration<tst_GhostsAndPreview> GhostsAndPreviewRegistration;

#include "tst_GhostsAndPreview.moc"
