// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/GlProbe.h"
#include "viewers/ViewerPair.h"

#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>
#include <cmath>

namespace
{

/// Compares two pictures away from edges: a pixel counts if its neighbourhood is plain in @p expected.
/// Returns how many of the pixels that count differ; @p counted tells how many did count.
int DifferencesAwayFromEdges(const QImage& actual, const QImage& expected, int* counted)
{
    constexpr int Reach = 3;
    int differences = 0;
    *counted = 0;
    for (int y = Reach; y < expected.height() - Reach; ++y)
    {
        for (int x = Reach; x < expected.width() - Reach; ++x)
        {
            const QRgb here = expected.pixel(x, y);
            bool plain = true;
            for (int dy = -Reach; dy <= Reach && plain; ++dy)
            {
                for (int dx = -Reach; dx <= Reach && plain; ++dx)
                    plain = expected.pixel(x + dx, y + dy) == here;
            }
            if (!plain)
                continue;
            ++*counted;
            const QRgb there = actual.pixel(x, y);
            if (std::abs(qRed(here) - qRed(there)) > 2 || std::abs(qGreen(here) - qGreen(there)) > 2 ||
                std::abs(qBlue(here) - qBlue(there)) > 2)
                ++differences;
        }
    }
    return differences;
}

} // namespace

/// The overlay on the OpenGL viewer, beside the software viewer's.
class tst_OpenGLOverlay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void OverlaysAreThoseOfTheSoftwareViewer_data();
    void OverlaysAreThoseOfTheSoftwareViewer();
    void StrokesGrowAsInTheSoftwareViewer_data();
    void StrokesGrowAsInTheSoftwareViewer();
    void ARefreshAfterANewFrameIsAFullPaint();
    void ARefreshAfterAResizeShowsTheStoredPictureOnce();
    void WithoutAStoredPictureARefreshIsAFullPaint();
    void HiddenAnnotationsAreHidden();
    void ToDrawSpaceUsesTheQuads_data();
    void ToDrawSpaceUsesTheQuads();

private:
    void Compare(const char* what);
    void SetBoth(ViewerLayout layout);

    std::unique_ptr<QWidget> mWindow;
    OpenGLViewerProbe* mViewer = nullptr;
    std::unique_ptr<ViewerPair> mPair;
    QSize mSize{400, 300};
};

void tst_OpenGLOverlay::init()
{
    Settings::RestoreDefaults();
    Settings::annotationTool = Eyedropper;
    Settings::highQualityRendering = false;
    mWindow = std::make_unique<QWidget>();
    mViewer = new OpenGLViewerProbe(mWindow.get());
    mWindow->resize(mSize);
    mViewer->resize(mSize);
    mWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(mWindow.get()));
    QTRY_VERIFY(mViewer->IsInitialized());
    mPair = std::make_unique<ViewerPair>(mSize);
}

void tst_OpenGLOverlay::cleanup()
{
    mPair.reset();
    mWindow.reset();
}

void tst_OpenGLOverlay::SetBoth(ViewerLayout layout)
{
    // Pictures of the slot's own shape and colour, so that both viewers show them over the whole slot.
    const QSize slotSize(layout == Horizontal ? 200 : 400, layout == Vertical ? 150 : 300);
    for (int index = 0; index < 2; ++index)
    {
        const QImage picture = GlPlain(slotSize * 2, index == 0 ? QColor(40, 90, 140) : QColor(90, 40, 60));
        mViewer->Give(index, picture);
        mPair->SetImage(index, picture);
    }
    mViewer->SetViewerLayout(layout);
    mPair->SetLayout(layout);
    mViewer->SetStoreLastImageEnabled(true);
    mPair->SetStore(true);
}

/// Paints both viewers and compares them.
void tst_OpenGLOverlay::Compare(const char* what)
{
    QImage shown = mViewer->GetImage();
    // The window's own paints must not come in between.
    const QImage expected = mPair->PaintViewer();
    if (shown.size() != expected.size())
        shown = shown.scaled(expected.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation);
    int counted = 0;
    const int differences = DifferencesAwayFromEdges(shown, expected, &counted);
    if (differences > 0 || counted < 10000)
    {
        PictureDifference(shown, expected);
        QTest::qFail(qPrintable(QStringLiteral("%1: %2 of %3 pixels differ")
                                    .arg(QLatin1String(what))
                                    .arg(differences)
                                    .arg(counted)),
                     __FILE__, __LINE__);
    }
}

void tst_OpenGLOverlay::OverlaysAreThoseOfTheSoftwareViewer_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<bool>("accurate");
    for (const int layout : {0, 1, 2})
    {
        for (const bool accurate : {false, true})
            QTest::addRow("layout %d, %s", layout, accurate ? "accurate" : "fast") << layout << accurate;
    }
}

void tst_OpenGLOverlay::OverlaysAreThoseOfTheSoftwareViewer()
{
    QFETCH(int, layout);
    QFETCH(bool, accurate);
    Settings::annotationGhostAccurate = accurate;
    SetBoth(ViewerLayout(layout));
    const FrameData current = MakeFrame(
        {MakeDrawing(DrawPencil, {{-0.4, -0.3}, {0.4, 0.3}, {0.4, -0.3}}, 0.06f, QColor(250, 200, 10)),
         MakeDrawing(DrawEraser, {{0, -0.3}, {0, 0.3}}, 0.05f),
         MakeDrawing(DrawRectangle, {{-0.3, -0.2}, {0.3, 0.2}}, 0.05f, QColor(0, 255, 0, 120)),
         MakeDrawing(DrawOval, {{-0.2, -0.1}, {0.2, 0.1}}, 0.05f, Qt::white),
         MakeDrawing(DrawArrow, {{-0.3, 0.3}, {0.3, 0.2}}, 0.05f, Qt::cyan)});
    const FrameData ghost =
        MakeFrame({MakeDrawing(DrawLine, {{-0.5, 0.1}, {0.5, -0.1}}, 0.08f, QColor(255, 0, 255))});
    for (int index = 0; index < 2; ++index)
    {
        mViewer->SetOverlayData(index, &current, {&ghost}, {&ghost, &ghost});
        mPair->SetOverlay(index, &current, {&ghost}, {&ghost, &ghost});
    }
    Compare("overlay");
    Settings::onlyDisplayAnnotations = true;
    Compare("overlay alone");
}

void tst_OpenGLOverlay::StrokesGrowAsInTheSoftwareViewer_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("active");
    QTest::addColumn<int>("type");
    for (const int layout : {0, 1, 2})
    {
        for (const int active : {0, 1})
        {
            for (const int type : {DrawPencil, DrawEraser, DrawRectangle})
                QTest::addRow("layout %d, viewer %d, type %d", layout, active, type)
                    << layout << active << type;
        }
    }
}

void tst_OpenGLOverlay::StrokesGrowAsInTheSoftwareViewer()
{
    QFETCH(int, layout);
    QFETCH(int, active);
    QFETCH(int, type);
    SetBoth(ViewerLayout(layout));
    mViewer->SetSingleViewerIndex(active);
    mPair->SetSingle(active);
    mViewer->SetActiveAnnotationViewerIndex(active);
    mPair->SetActive(active);
    FrameData frame = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.2f, Qt::white)});
    mViewer->SetOverlayData(active, &frame, {}, {});
    mPair->SetOverlay(active, &frame);
    Compare("full paint");
    // The window's own paint may still be to come: the flag is set once nothing is.
    QTest::qWait(30);
    frame.drawData << MakeDrawing(DrawType(type), {{-0.3, -0.2}}, 0.06f, Qt::yellow);
    frame.lastIndex = 1;
    QRandomGenerator random(5);
    for (int step = 0; step < 6; ++step)
    {
        const QPointF place(random.generateDouble() * 0.6 - 0.3, random.generateDouble() * 0.5 - 0.25);
        QList<QPointF>& points = frame.drawData[1].points;
        if (type == DrawRectangle && points.size() > 1)
            points[1] = place;
        else
            points << place;
        mViewer->SetAnnotationsOnly(true);
        mPair->SetAnnotationsOnly();
        Compare("refresh");
        QVERIFY(!mViewer->mAnnotationsOnly);
        QCOMPARE(mViewer->mLastDrawIndex[active], mPair->viewer->mLastDrawIndex[active]);
        QCOMPARE(mViewer->mLastPointIndex[active], mPair->viewer->mLastPointIndex[active]);
    }
    Compare("full paint at the end");
}

void tst_OpenGLOverlay::ARefreshAfterANewFrameIsAFullPaint()
{
    SetBoth(Single);
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0.2}, {0.4, 0.2}}, 0.05f, Qt::white)});
    mViewer->SetOverlayData(0, &frame, {}, {});
    mViewer->GetImage();
    QTest::qWait(30);
    // Unlike in the software viewer, a new picture of any size counts as one.
    mViewer->SetAnnotationsOnly(true);
    mViewer->Give(0, GlPlain(QSize(800, 600), Qt::red));
    QCOMPARE(mViewer->GetImage().pixelColor(50, 20), QColor(Qt::red));
    QVERIFY(!mViewer->mAnnotationsOnly);
}

void tst_OpenGLOverlay::ARefreshAfterAResizeShowsTheStoredPictureOnce()
{
    SetBoth(Single);
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0.2}, {0.4, 0.2}}, 0.05f, Qt::white)});
    mViewer->SetOverlayData(0, &frame, {}, {});
    mViewer->GetImage();
    QTest::qWait(30);
    QVERIFY(!mViewer->mLastImage.isNull());
    // The quads are rebuilt in a full paint, after which one more is due.
    mViewer->SetViewerLayout(Horizontal);
    mViewer->GetImage();
    QVERIFY(mViewer->mImageChanged);
    mViewer->SetAnnotationsOnly(true);
    mViewer->GetImage();
    QVERIFY(!mViewer->mImageChanged && !mViewer->mAnnotationsOnly);
    QCOMPARE(mViewer->mLastDrawIndex[0], 0);
}

void tst_OpenGLOverlay::WithoutAStoredPictureARefreshIsAFullPaint()
{
    SetBoth(Single);
    mViewer->SetStoreLastImageEnabled(false);
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0.2}, {0.4, 0.2}}, 0.05f, Qt::white)});
    mViewer->SetOverlayData(0, &frame, {}, {});
    mViewer->GetImage();
    QTest::qWait(30);
    mViewer->SetAnnotationsOnly(true);
    Settings::onlyDisplayAnnotations = true;
    QCOMPARE(mViewer->GetImage().pixelColor(50, 20), QColor(Qt::black));
    QVERIFY(!mViewer->mAnnotationsOnly);
}

void tst_OpenGLOverlay::HiddenAnnotationsAreHidden()
{
    SetBoth(Vertical);
    const FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.2, 0}, {0.2, 0}}, 0.05f, Qt::white)});
    mViewer->SetOverlayData(0, &frame, {&frame}, {&frame});
    mPair->SetOverlay(0, &frame, {&frame}, {&frame});
    mViewer->SetAnnotationsVisible(false);
    mPair->SetVisible(false);
    Compare("hidden");
    mViewer->SetAnnotationsVisible(true);
    mPair->SetVisible(true);
    Compare("shown");
}

void tst_OpenGLOverlay::ToDrawSpaceUsesTheQuads_data()
{
    QTest::addColumn<int>("layout");
    for (const int layout : {0, 1, 2})
        QTest::addRow("layout %d", layout) << layout;
}

void tst_OpenGLOverlay::ToDrawSpaceUsesTheQuads()
{
    QFETCH(int, layout);
    SetBoth(ViewerLayout(layout));
    mViewer->GetImage();
    mPair->PaintViewer();
    // The software viewer measures only what it shows.
    for (int index = 0; index < (layout == Single ? 1 : 2); ++index)
    {
        for (const QPoint& local : {QPoint(0, 0), QPoint(123, 45), QPoint(399, 299)})
        {
            const QPointF point = mViewer->ToDrawSpace(index, mViewer->mapToGlobal(local));
            QVERIFY(point == mPair->viewer->ToDrawSpace(index, mPair->viewer->mapToGlobal(local)));
            const QPointF back = mViewer->FromDrawSpace(index, point);
            QVERIFY(std::abs(back.x() - local.x()) < 1e-3 && std::abs(back.y() - local.y()) < 1e-3);
        }
    }
}

static const TestRegistration<tst_OpenGLOverlay> OpenGLOverlayRegistration;

#include "tst_OpenGLOverlay.moc"
