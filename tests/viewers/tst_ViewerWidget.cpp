// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerPair.h"
#include "viewers/ViewerWidgetProbe.h"

#include <QSignalSpy>
#include <QtTest>

namespace
{

/// Counts the paints of one widget.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }

    /// Paints since the last call.
    int Take()
    {
        QCoreApplication::processEvents();
        return std::exchange(mCount, 0);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++mCount;
        return false;
    }

private:
    int mCount = 0;
};

/// A window that notes which mouse events reach it.
class ListeningWindow : public QWidget
{
public:
    QList<QEvent::Type> heard;

protected:
    void mousePressEvent(QMouseEvent* event) override { heard << event->type(); }
    void mouseReleaseEvent(QMouseEvent* event) override { heard << event->type(); }
    void mouseMoveEvent(QMouseEvent* event) override { heard << event->type(); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { heard << event->type(); }
};

} // namespace

class tst_ViewerWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void IsBuiltToFillAndToHearTheMouse();
    void HoldsOneBackEndAndStartsInSingleLayout();
    void LeftButtonScrubs();
    void OtherButtonsDontScrub_data();
    void OtherButtonsDontScrub();
    void AReleaseAfterTheSettingsChangedStillEndsThePan();
    void EveryPressTakesTheFocus_data();
    void EveryPressTakesTheFocus();
    void DoubleClickTogglesPlayback_data();
    void DoubleClickTogglesPlayback();
    void MouseEventsGoOnToTheParent();
    void LosingTheFocusIsToldWhileATextIsTyped();
    void FindsTheViewerUnderAPoint_data();
    void FindsTheViewerUnderAPoint();
    void TheFarPartOfAMovedBackEndCountsAsOutside();
    void AnyOtherSingleViewerIndexIsZero();
    void ClearShowsABlackPointAndNoAnnotations_data();
    void ClearShowsABlackPointAndNoAnnotations();
    void ClearAllClearsBoth();
    void SetImageOfMinusOneSetsBoth();
    void ASetterRepaintsOnlyWhereItSays();
    void RefreshAnnotationsPaintsOverTheStoredPicture();
    void DisplaySizeAndPictureComeFromTheBackEnd();
    void ToDrawSpaceIsExactInEveryLayout_data();
    void ToDrawSpaceIsExactInEveryLayout();

private:
    SoftwareViewer* BackEnd() const { return mViewer->findChild<SoftwareViewer*>(); }
    QImage Shown() const;

    std::unique_ptr<ViewerWidgetProbe> mViewer;
};

void tst_ViewerWidget::init()
{
    Settings::RestoreDefaults();
    Settings::hardwareAcceleratedPlayback = false;
    mViewer = std::make_unique<ViewerWidgetProbe>();
    mViewer->resize(400, 300);
    // A hidden window gets no resize event.
    mViewer->show();
}

QImage tst_ViewerWidget::Shown() const
{
    QImage canvas(BackEnd()->size(), QImage::Format_RGB32);
    canvas.fill(Qt::magenta);
    BackEnd()->render(&canvas, QPoint(), QRegion(), QWidget::RenderFlags());
    return canvas;
}

void tst_ViewerWidget::IsBuiltToFillAndToHearTheMouse()
{
    const QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Expanding, QSizePolicy::DefaultType);
    QCOMPARE(mViewer->sizePolicy(), policy);
    QCOMPARE(BackEnd()->sizePolicy(), policy);
    QCOMPARE(mViewer->minimumSize(), QSize(100, 100));
    QVERIFY(mViewer->testAttribute(Qt::WA_MouseTracking));
    QVERIFY(mViewer->acceptDrops());
}

void tst_ViewerWidget::HoldsOneBackEndAndStartsInSingleLayout()
{
    QCOMPARE(mViewer->findChildren<QWidget*>().size(), 1);
    QCOMPARE(BackEnd()->parentWidget(), mViewer.get());
    QCOMPARE(mViewer->GetViewerLayout(), Single);
    QCOMPARE(mViewer->GetViewerType(), Software);
    QVERIFY(mViewer->IsInitialized());
    // The setting is read once.
    Settings::hardwareAcceleratedPlayback = true;
    QCOMPARE(mViewer->GetViewerType(), Software);
    // Both viewers are cleared from the start: a black square of the smaller side.
    Shown();
    QCOMPARE(mViewer->GetImageDisplayWidth(), 300);
    QCOMPARE(mViewer->GetImageDisplayHeight(), 300);
}

void tst_ViewerWidget::LeftButtonScrubs()
{
    QSignalSpy spy(mViewer.get(), &ViewerWidget::ScrubStateChanged);
    for (const bool accepted : {false, true})
    {
        QVERIFY(!mViewer->Press(Qt::LeftButton, Qt::NoModifier, QPoint(5, 5), accepted));
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.takeFirst()[0].toBool(), true);
        QVERIFY(!mViewer->Release(Qt::LeftButton, QPoint(5, 5), accepted));
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.takeFirst()[0].toBool(), false);
    }
}

void tst_ViewerWidget::OtherButtonsDontScrub_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("middle") << int(Qt::MiddleButton);
    QTest::newRow("right") << int(Qt::RightButton);
    QTest::newRow("back") << int(Qt::BackButton);
}

void tst_ViewerWidget::OtherButtonsDontScrub()
{
    QFETCH(int, button);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::ScrubStateChanged);
    QVERIFY(!mViewer->Press(Qt::MouseButton(button), Qt::ControlModifier, QPoint(5, 5)));
    QVERIFY(!mViewer->Release(Qt::MouseButton(button), QPoint(5, 5)));
    QCOMPARE(spy.size(), 0);
}

void tst_ViewerWidget::AReleaseAfterTheSettingsChangedStillEndsThePan()
{
    Settings::panZoomMouseControls = true;
    mViewer->SetPanAndZoom(QPointF(), 2.0f, true);
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PanZoomChangeRequested);
    mViewer->Press(Qt::MiddleButton, Qt::ControlModifier, QPoint(0, 0));
    mViewer->Move(Qt::MiddleButton, QPoint(20, 0));
    Settings::panZoomMouseControls = false;
    mViewer->Release(Qt::MiddleButton, QPoint(20, 0));
    QCOMPARE(spy.size(), 1);
}

void tst_ViewerWidget::EveryPressTakesTheFocus_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
    QTest::newRow("right") << int(Qt::RightButton);
}

void tst_ViewerWidget::EveryPressTakesTheFocus()
{
    QFETCH(int, button);
    QWidget window;
    auto* const viewer = new ViewerWidgetProbe(&window);
    window.show();
    viewer->Press(Qt::MouseButton(button), Qt::ControlModifier, QPoint(5, 5));
    QCOMPARE(window.focusWidget(), viewer);
}

void tst_ViewerWidget::DoubleClickTogglesPlayback_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("setting");
    QTest::addColumn<int>("count");
    QTest::newRow("left") << int(Qt::LeftButton) << true << 1;
    QTest::newRow("left, off") << int(Qt::LeftButton) << false << 0;
    QTest::newRow("right") << int(Qt::RightButton) << true << 0;
    QTest::newRow("middle") << int(Qt::MiddleButton) << true << 0;
}

void tst_ViewerWidget::DoubleClickTogglesPlayback()
{
    QFETCH(int, button);
    QFETCH(bool, setting);
    QFETCH(int, count);
    Settings::doubleClickTogglesPlayback = setting;
    QSignalSpy spy(mViewer.get(), &ViewerWidget::PlaybackToggled);
    QSignalSpy scrubs(mViewer.get(), &ViewerWidget::ScrubStateChanged);
    QVERIFY(!mViewer->DoubleClick(Qt::MouseButton(button)));
    QCOMPARE(spy.size(), count);
    QCOMPARE(scrubs.size(), 0);
}

void tst_ViewerWidget::MouseEventsGoOnToTheParent()
{
    ListeningWindow window;
    auto* const viewer = new ViewerWidgetProbe(&window);
    viewer->setGeometry(20, 20, 200, 200);
    window.resize(300, 300);
    window.show();
    QSignalSpy spy(viewer, &ViewerWidget::ScrubStateChanged);
    // Through the window system: the back end is under the cursor and lets everything fall through.
    InputEvents::Press(viewer, QPoint(50, 60));
    InputEvents::Move(viewer, QPoint(70, 60), Qt::LeftButton);
    InputEvents::Release(viewer, QPoint(70, 60));
    QCOMPARE(spy.size(), 2);
    QVERIFY(window.heard.contains(QEvent::MouseButtonPress));
    QVERIFY(window.heard.contains(QEvent::MouseButtonRelease));
    QVERIFY(window.heard.contains(QEvent::MouseMove));
}

void tst_ViewerWidget::LosingTheFocusIsToldWhileATextIsTyped()
{
    QWidget window;
    auto* const viewer = new ViewerWidgetProbe(&window);
    auto* const other = new QWidget(&window);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QSignalSpy spy(viewer, &ViewerWidget::FocusLost);
    for (const bool typing : {false, true})
    {
        Settings::textToolActive = typing;
        viewer->setFocus();
        QVERIFY(viewer->hasFocus());
        QCOMPARE(spy.size(), 0);
        other->setFocus();
        QCOMPARE(spy.size(), typing ? 1 : 0);
    }
}

void tst_ViewerWidget::FindsTheViewerUnderAPoint_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("single");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("index");
    // In a viewer of 401 by 301, whose halves meet at 200.5 and 150.5.
    QTest::newRow("single A") << int(Single) << 0 << QPoint(300, 10) << 0;
    QTest::newRow("single B") << int(Single) << 1 << QPoint(10, 10) << 1;
    QTest::newRow("single B, outside") << int(Single) << 1 << QPoint(401, 10) << 0;
    QTest::newRow("single B, above") << int(Single) << 1 << QPoint(10, -1) << 0;
    QTest::newRow("single B, corner") << int(Single) << 1 << QPoint(400, 300) << 1;
    QTest::newRow("horizontal left") << int(Horizontal) << 1 << QPoint(200, 10) << 0;
    QTest::newRow("horizontal right") << int(Horizontal) << 0 << QPoint(201, 10) << 1;
    QTest::newRow("horizontal outside") << int(Horizontal) << 1 << QPoint(500, 10) << 0;
    QTest::newRow("vertical top") << int(Vertical) << 1 << QPoint(390, 150) << 0;
    QTest::newRow("vertical bottom") << int(Vertical) << 0 << QPoint(10, 151) << 1;
    QTest::newRow("vertical outside") << int(Vertical) << 1 << QPoint(10, 301) << 0;
}

void tst_ViewerWidget::FindsTheViewerUnderAPoint()
{
    QFETCH(int, layout);
    QFETCH(int, single);
    QFETCH(QPoint, point);
    QFETCH(int, index);
    mViewer->resize(401, 301);
    mViewer->move(70, 80);
    mViewer->SetViewerLayout(ViewerLayout(layout));
    mViewer->SetSingleViewerIndex(single);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(point)), index);
    // A point exactly on the half is viewer A's.
    mViewer->resize(400, 300);
    if (layout != Single)
        QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(200, 150))), 0);
}

void tst_ViewerWidget::TheFarPartOfAMovedBackEndCountsAsOutside()
{
    mViewer->SetSingleViewerIndex(1);
    // The back end stands at (-400, -300) and is 1200 by 900: its geometry ends at (799, 599), and the local
    // point of the widget's own last pixel is (799, 599).
    mViewer->SetPanAndZoom(QPointF(0, 0), 3.0f, true);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(399, 299))), 1);
    // At (-800, -600) its geometry ends at (399, 299), while local points start at (800, 600).
    mViewer->SetPanAndZoom(QPointF(-1, -1), 3.0f, true);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(0, 0))), 0);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(399, 299))), 0);
    // In between, part of the widget is inside.
    mViewer->SetPanAndZoom(QPointF(-0.5, 0), 3.0f, true);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(-1, 0))), 1);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(0, 0))), 0);
    mViewer->SetPanAndZoom(QPointF(0, 0), 3.0f, true);
    mViewer->SetViewerLayout(Horizontal);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(200, 0))), 0);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(QPoint(201, 0))), 1);
}

void tst_ViewerWidget::AnyOtherSingleViewerIndexIsZero()
{
    const QPoint inside = mViewer->mapToGlobal(QPoint(10, 10));
    for (const int index : {7, -1, 2})
    {
        mViewer->SetSingleViewerIndex(1);
        QCOMPARE(mViewer->GetViewerIndexFromGlobal(inside), 1);
        mViewer->SetSingleViewerIndex(index);
        QCOMPARE(mViewer->GetViewerIndexFromGlobal(inside), 0);
    }
}

void tst_ViewerWidget::ClearShowsABlackPointAndNoAnnotations_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("A") << 0;
    QTest::newRow("B") << 1;
    QTest::newRow("both") << -1;
}

void tst_ViewerWidget::ClearShowsABlackPointAndNoAnnotations()
{
    QFETCH(int, index);
    const FrameData frame = MakeFrame({MakeDrawing(DrawLine, {{-0.3, 0}, {0.3, 0}}, 0.1f, Qt::red)});
    QImage white(40, 20, QImage::Format_RGB32);
    white.fill(Qt::white);
    ViewerModel model;
    model.size = QSize(400, 300);
    model.layout = Horizontal;
    mViewer->SetViewerLayout(Horizontal);
    mViewer->SetImage(-1, white, false);
    for (int i = 0; i < 2; ++i)
    {
        mViewer->SetOverlayData(i, &frame, {&frame}, {&frame});
        model.current[i] = &frame;
        model.previous[i] = model.next[i] = {&frame};
        model.pictures[i] = white;
    }
    mViewer->Clear(index);
    QImage black(1, 1, QImage::Format_RGB32);
    black.fill(Qt::black);
    for (int i = 0; i < 2; ++i)
    {
        if (index != -1 && index != i)
            continue;
        model.pictures[i] = black;
        model.current[i] = nullptr;
        model.previous[i] = model.next[i] = {};
    }
    const QByteArray text = PictureDifference(Shown(), model.Paint(), 2);
    QVERIFY2(text.isEmpty(), text);
    QCOMPARE(mViewer->GetImageDisplayWidth(), 200);
    QCOMPARE(mViewer->GetImageDisplayHeight(), index == 1 ? 100 : 200);
}

void tst_ViewerWidget::ClearAllClearsBoth()
{
    QImage white(40, 20, QImage::Format_RGB32);
    white.fill(Qt::white);
    const FrameData frame = MakeFrame({MakeDrawing(DrawLine, {{-0.3, 0}, {0.3, 0}})});
    mViewer->SetViewerLayout(Vertical);
    mViewer->SetImage(-1, white, false);
    mViewer->SetOverlayData(0, &frame, {}, {});
    mViewer->SetOverlayData(1, &frame, {}, {});
    mViewer->ClearAll();
    QImage black(400, 300, QImage::Format_RGB32);
    black.fill(Qt::black);
    const QByteArray text = PictureDifference(Shown(), black);
    QVERIFY2(text.isEmpty(), text);
}

void tst_ViewerWidget::SetImageOfMinusOneSetsBoth()
{
    const QImage picture = NoisePicture(QSize(64, 48), 3);
    ViewerModel model;
    model.size = QSize(400, 300);
    model.layout = Vertical;
    model.pictures[0] = model.pictures[1] = picture;
    mViewer->SetViewerLayout(Vertical);
    QCOMPARE(mViewer->GetViewerLayout(), Vertical);
    mViewer->SetImage(-1, picture, false);
    const QByteArray text = PictureDifference(Shown(), model.Paint());
    QVERIFY2(text.isEmpty(), text);
}

void tst_ViewerWidget::ASetterRepaintsOnlyWhereItSays()
{
    PaintCounter counter(BackEnd());
    QVERIFY(QTest::qWaitForWindowExposed(mViewer.get()));
    counter.Take();
    const auto repaints = [&](const std::function<void()>& call)
    {
        call();
        return counter.Take() > 0;
    };
    QVERIFY(repaints([this] { mViewer->SetImage(0, NoisePicture(QSize(4, 4), 1), false); }));
    QVERIFY(repaints([this] { mViewer->SetViewerLayout(Single); }));
    QVERIFY(repaints([this] { mViewer->SetAnnotationsVisible(true); }));
    QVERIFY(repaints([this] { mViewer->RefreshAll(); }));
    QVERIFY(repaints([this] { mViewer->RefreshAnnotations(); }));
    QVERIFY(repaints([this] { mViewer->Clear(1); }));
    QVERIFY(!repaints([this] { mViewer->SetOverlayData(0, nullptr, {}, {}); }));
    QVERIFY(!repaints([this] { mViewer->SetSingleViewerIndex(1); }));
    QVERIFY(!repaints([this] { mViewer->SetActiveAnnotationViewerIndex(1); }));
    QVERIFY(!repaints([this] { mViewer->SetStoreLastImageEnabled(true); }));
    QVERIFY(!repaints([] {}));
}

void tst_ViewerWidget::RefreshAnnotationsPaintsOverTheStoredPicture()
{
    const QImage first = NoisePicture(QSize(40, 30), 1);
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.3, 0}, {0.3, 0.1}}, 0.03f)});
    ViewerModel model;
    model.size = QSize(400, 300);
    model.store = true;
    model.pictures[0] = first;
    model.current[0] = &frame;
    Settings::annotationTool = Arrow;
    mViewer->SetStoreLastImageEnabled(true);
    mViewer->SetImage(0, first, false);
    mViewer->SetOverlayData(0, &frame, {}, {});
    QCOMPARE(PictureDifference(Shown(), model.Paint(), 2), QByteArray());
    mViewer->SetImage(0, NoisePicture(QSize(40, 30), 2), false);
    mViewer->RefreshAnnotations();
    frame.drawData[0].points << QPointF(0.2, 0.3);
    model.annotationsOnly = true;
    const QByteArray text = PictureDifference(Shown(), model.Paint(), 2);
    QVERIFY2(text.isEmpty(), text);
    // Hidden, they stay away, and come back.
    mViewer->SetAnnotationsVisible(false);
    model.visible = false;
    model.pictures[0] = NoisePicture(QSize(40, 30), 2);
    QCOMPARE(PictureDifference(Shown(), model.Paint(), 2), QByteArray());
    // Turned off, the stored picture goes at once and the next refresh is a full paint.
    mViewer->SetAnnotationsVisible(true);
    model.visible = true;
    QCOMPARE(PictureDifference(Shown(), model.Paint(), 2), QByteArray());
    mViewer->SetImage(0, first, false);
    mViewer->SetStoreLastImageEnabled(false);
    mViewer->RefreshAnnotations();
    model.store = false;
    model.stored = QImage();
    model.pictures[0] = first;
    model.annotationsOnly = true;
    QCOMPARE(PictureDifference(Shown(), model.Paint(), 2), QByteArray());
}

void tst_ViewerWidget::DisplaySizeAndPictureComeFromTheBackEnd()
{
    const QImage picture = NoisePicture(QSize(80, 30), 5);
    const FrameData frame = MakeFrame({MakeDrawing(DrawLine, {{-0.3, 0}, {0.3, 0.1}}, 0.03f, Qt::red)});
    ViewerModel model;
    model.size = QSize(400, 300);
    model.pictures[0] = picture;
    model.current[0] = &frame;
    mViewer->SetImage(0, picture, true);
    mViewer->SetOverlayData(0, &frame, {}, {});
    const QImage image = mViewer->GetImage();
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    const QByteArray text = PictureDifference(image, model.Paint(), 2);
    QVERIFY2(text.isEmpty(), text);
    QCOMPARE(mViewer->GetImageDisplayWidth(), 400);
    QCOMPARE(mViewer->GetImageDisplayHeight(), 150);
}

void tst_ViewerWidget::ToDrawSpaceIsExactInEveryLayout_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<float>("zoom");
    for (const int layout : {0, 1, 2})
    {
        for (const float zoom : {1.0f, 1.7f, 3.0f})
            QTest::addRow("layout %d, zoom %.1f", layout, double(zoom)) << layout << zoom;
    }
}

void tst_ViewerWidget::ToDrawSpaceIsExactInEveryLayout()
{
    QFETCH(int, layout);
    QFETCH(float, zoom);
    mViewer->resize(397, 283);
    mViewer->move(33, 44);
    mViewer->SetViewerLayout(ViewerLayout(layout));
    mViewer->SetPanAndZoom(QPointF(0.3, -0.7), zoom, true);
    ViewerModel model;
    model.size = BackEnd()->size();
    model.layout = ViewerLayout(layout);
    model.pictures[0] = NoisePicture(QSize(61, 33), 1);
    model.pictures[1] = NoisePicture(QSize(29, 57), 2);
    for (int single = 0; single < 2; ++single)
    {
        mViewer->SetImage(single, model.pictures[single], false);
        mViewer->SetSingleViewerIndex(single);
        model.single = single;
        Shown();
        model.Paint();
    }
    for (int index = 0; index < 2; ++index)
    {
        for (const QPoint& local : {QPoint(0, 0), QPoint(17, 211), QPoint(396, 282), QPoint(-40, 700)})
        {
            const QPointF point = mViewer->ToDrawSpace(index, mViewer->mapToGlobal(local));
            const QPointF expected = model.ToDrawSpace(index, local - BackEnd()->pos());
            QVERIFY(point.x() == expected.x() && point.y() == expected.y());
        }
    }
}

static const TestRegistration<tst_ViewerWidget> ViewerWidgetRegistration;

#include "tst_ViewerWidget.moc"
