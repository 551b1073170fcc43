// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerPair.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>

namespace
{

constexpr QRgb Untouched = 0xff000000u;

QImage BlackPicture()
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::black);
    return image;
}

} // namespace

/// One drawing and its cache, rule by rule; tst_OverlaySequences mixes them.
class tst_AnnotationOverlay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void OnePointPaintsNothing_data();
    void OnePointPaintsNothing();
    void DrawNoneIsSkippedAndTheOthersPaint();
    void OnlyTheFirstTwoPointsOfAShapeCount_data();
    void OnlyTheFirstTwoPointsOfAShapeCount();
    void ShapesStandWhereTheirPointsAre_data();
    void ShapesStandWhereTheirPointsAre();
    void OnlyEntriesFromFirstToLastArePainted();
    void ADrawingReplacesWhatIsUnderIt();
    void AnEraserClearsTheOverlayAndNotThePicture();
    void TheCompositionModeAndPenStaySet_data();
    void TheCompositionModeAndPenStaySet();
    void AnAlphaInRangeReplacesTheDrawings_data();
    void AnAlphaInRangeReplacesTheDrawings();
    void StartPointLeavesEarlierSegmentsOut_data();
    void StartPointLeavesEarlierSegmentsOut();
    void ArrowBarbsAreShortAndTurnedByThirtySixDegrees();
    void AnArrowWithoutALengthHasNoHead();
    void DrawingsAreCutToTheirHalf_data();
    void DrawingsAreCutToTheirHalf();
    void AHalfWithoutAPixelShowsNothing();
    void AStrokeAddsOnlyItsNewSegments();
    void AShapeInProgressLeavesNoTrail();
    void EachNewEntryPaintsTheNewestOne();
    void AFinishedShapeNeedsAFullPaint();
    void TheInactiveViewerGoesThroughTheFullPath();
    void AShapeBeforeAFullPassHidesThePictureBehind();
    void WithoutAStrokeTheCacheIsStartedAnew();
    void HiddenAnnotationsHideEverything();
    void EntriesThatDontExistPaintNothing();

private:
    QImage Show(const FrameData& frame);

    std::unique_ptr<ViewerPair> mPair;
};

void tst_AnnotationOverlay::init()
{
    Settings::RestoreDefaults();
    Settings::annotationTool = Eyedropper;
    // The picture fills the viewer: one unit is 400 pixels, the origin (200, 150).
    mPair = std::make_unique<ViewerPair>(QSize(400, 300));
    mPair->SetImage(-1, BlackPicture());
    mPair->SetStore(true);
    mPair->Paint();
}

/// A full paint of @p frame, compared with the model.
QImage tst_AnnotationOverlay::Show(const FrameData& frame)
{
    mPair->SetOverlay(0, &frame);
    const QByteArray text = mPair->Paint();
    if (!text.isEmpty())
        QTest::qFail(text, __FILE__, __LINE__);
    const QImage shown = mPair->PaintViewer();
    mPair->SetOverlay(0, nullptr);
    return shown;
}

void tst_AnnotationOverlay::OnePointPaintsNothing_data()
{
    QTest::addColumn<int>("type");
    for (int type = DrawPencil; type <= int(DrawRectangle); ++type)
        QTest::addRow("type %d", type) << type;
}

void tst_AnnotationOverlay::OnePointPaintsNothing()
{
    QFETCH(int, type);
    FrameData frame = MakeFrame({MakeDrawing(DrawType(type), {{0.1, 0.1}}, 0.1f)});
    frame.drawData[0].text = QStringLiteral("Text");
    QCOMPARE(PaintedBounds(Show(frame)), QRect());
    frame.drawData[0].points.clear();
    QCOMPARE(PaintedBounds(Show(frame)), QRect());
}

void tst_AnnotationOverlay::DrawNoneIsSkippedAndTheOthersPaint()
{
    const DrawData line = MakeDrawing(DrawLine, {{-0.2, 0}, {0.2, 0}});
    const DrawData none = MakeDrawing(DrawNone, {{-0.4, -0.3}, {0.4, 0.3}}, 0.1f);
    const QImage expected = Show(MakeFrame({line}));
    QVERIFY(!PaintedBounds(expected).isNull());
    QCOMPARE(PictureDifference(Show(MakeFrame({none, line, none})), expected), QByteArray());
}

void tst_AnnotationOverlay::OnlyTheFirstTwoPointsOfAShapeCount_data()
{
    QTest::addColumn<int>("type");
    for (const int type : {DrawText, DrawLine, DrawOval, DrawArrow, DrawRectangle})
        QTest::addRow("type %d", type) << type;
}

void tst_AnnotationOverlay::OnlyTheFirstTwoPointsOfAShapeCount()
{
    QFETCH(int, type);
    DrawData two = MakeDrawing(DrawType(type), {{-0.2, -0.1}, {0.2, 0.15}});
    two.text = QStringLiteral("Text");
    DrawData five = two;
    five.points << QPointF(0.4, 0.3) << QPointF(-0.4, -0.3) << QPointF(0, 0.3);
    const QImage expected = Show(MakeFrame({two}));
    QVERIFY(!PaintedBounds(expected).isNull());
    QCOMPARE(PictureDifference(Show(MakeFrame({five})), expected), QByteArray());
}

void tst_AnnotationOverlay::ShapesStandWhereTheirPointsAre_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QRect>("bounds");
    // From (120, 110) to (280, 190) with a pen of 8 pixels: 4 out on each side.
    const QRect box(116, 106, 168, 88);
    QTest::newRow("pencil") << int(DrawPencil) << box;
    QTest::newRow("line") << int(DrawLine) << box;
    QTest::newRow("oval") << int(DrawOval) << box;
    QTest::newRow("rectangle") << int(DrawRectangle) << box;
    // A barb ends a pixel below the tip.
    QTest::newRow("arrow") << int(DrawArrow) << box.adjusted(0, 0, 0, 1);
}

void tst_AnnotationOverlay::ShapesStandWhereTheirPointsAre()
{
    QFETCH(int, type);
    QFETCH(QRect, bounds);
    const QRect painted =
        PaintedBounds(Show(MakeFrame({MakeDrawing(DrawType(type), {{-0.2, -0.1}, {0.2, 0.1}}, 0.02f)})));
    QVERIFY(std::abs(painted.left() - bounds.left()) <= 1 && std::abs(painted.right() - bounds.right()) <= 1);
    QVERIFY(std::abs(painted.top() - bounds.top()) <= 1 && std::abs(painted.bottom() - bounds.bottom()) <= 1);
}

void tst_AnnotationOverlay::OnlyEntriesFromFirstToLastArePainted()
{
    QList<DrawData> drawings;
    for (const double y : {-0.3, -0.1, 0.1, 0.3})
        drawings << MakeDrawing(DrawLine, {{-0.3, y}, {0.3, y}}, 0.02f, Qt::white);
    FrameData frame = MakeFrame(drawings);
    frame.firstIndex = 1;
    frame.lastIndex = 2;
    const QImage shown = Show(frame);
    QCOMPARE(shown.pixel(200, 30), Untouched);
    QCOMPARE(shown.pixel(200, 110), 0xffffffffu);
    QCOMPARE(shown.pixel(200, 190), 0xffffffffu);
    QCOMPARE(shown.pixel(200, 270), Untouched);
    frame.lastIndex = -1;
    QCOMPARE(PaintedBounds(Show(frame)), QRect());
}

void tst_AnnotationOverlay::ADrawingReplacesWhatIsUnderIt()
{
    // Half-clear blue over opaque red: blue on the black picture, and no red.
    const QImage shown =
        Show(MakeFrame({MakeDrawing(DrawLine, {{-0.3, 0}, {0.3, 0}}, 0.1f, Qt::red),
                        MakeDrawing(DrawLine, {{0, -0.2}, {0, 0.2}}, 0.05f, QColor(0, 0, 255, 128))}));
    QCOMPARE(shown.pixelColor(200, 150), QColor(0, 0, 128));
    QCOMPARE(shown.pixelColor(100, 150), QColor(255, 0, 0));
}

void tst_AnnotationOverlay::AnEraserClearsTheOverlayAndNotThePicture()
{
    QImage white(40, 30, QImage::Format_RGB32);
    white.fill(Qt::white);
    mPair->SetImage(0, white);
    const QImage shown = Show(MakeFrame({MakeDrawing(DrawLine, {{-0.3, 0}, {0.3, 0}}, 0.1f, Qt::red),
                                         MakeDrawing(DrawEraser, {{0, -0.2}, {0, 0.2}}, 0.05f)}));
    QCOMPARE(shown.pixelColor(200, 150), QColor(Qt::white));
    QCOMPARE(shown.pixelColor(100, 150), QColor(Qt::red));
}

void tst_AnnotationOverlay::TheCompositionModeAndPenStaySet_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("mode");
    QTest::addColumn<double>("penWidth");
    const int source = QPainter::CompositionMode_Source;
    const int clear = QPainter::CompositionMode_Clear;
    const int before = QPainter::CompositionMode_Plus;
    QTest::newRow("pencil") << int(DrawPencil) << 2 << source << 8.0;
    QTest::newRow("eraser") << int(DrawEraser) << 2 << clear << 8.0;
    QTest::newRow("text") << int(DrawText) << 2 << source << 8.0;
    QTest::newRow("rectangle") << int(DrawRectangle) << 2 << source << 8.0;
    // With a point missing, the pen is set and the mode is not; with no kind, neither.
    QTest::newRow("eraser, one point") << int(DrawEraser) << 1 << before << 8.0;
    QTest::newRow("none") << int(DrawNone) << 2 << before << 3.0;
}

void tst_AnnotationOverlay::TheCompositionModeAndPenStaySet()
{
    QFETCH(int, type);
    QFETCH(int, points);
    QFETCH(int, mode);
    QFETCH(double, penWidth);
    const FrameData frame = MakeFrame({MakeDrawing(
        DrawType(type), QList<QPointF>({{0, 0}, {0.1, 0.1}}).mid(0, points), 0.02f, QColor(1, 2, 3, 4))});
    QImage canvas(400, 300, QImage::Format_ARGB32);
    QPainter painter(&canvas);
    painter.setPen(QPen(Qt::white, 3.0));
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    mPair->viewer->PaintDrawData(&painter, &frame, 0, -1, 0, -1);
    QCOMPARE(int(painter.compositionMode()), mode);
    const QPen pen = painter.pen();
    QVERIFY(pen.widthF() == (penWidth == 8.0 ? double(0.02f * 400.0f) : penWidth));
    if (type == DrawNone)
        return;
    QCOMPARE(pen.color(), QColor(1, 2, 3, 4));
    QCOMPARE(pen.brush().style(), Qt::SolidPattern);
    QCOMPARE(pen.style(), Qt::SolidLine);
    QCOMPARE(pen.capStyle(), Qt::RoundCap);
    QCOMPARE(pen.joinStyle(), Qt::RoundJoin);
}

void tst_AnnotationOverlay::AnAlphaInRangeReplacesTheDrawings_data()
{
    QTest::addColumn<int>("alpha");
    QTest::addColumn<int>("expected");
    QTest::newRow("none") << -1 << 77;
    QTest::newRow("zero") << 0 << 0;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("full") << 255 << 255;
    QTest::newRow("above") << 256 << 77;
    QTest::newRow("far below") << -200 << 77;
}

void tst_AnnotationOverlay::AnAlphaInRangeReplacesTheDrawings()
{
    QFETCH(int, alpha);
    QFETCH(int, expected);
    const FrameData frame =
        MakeFrame({MakeDrawing(DrawLine, {{-0.3, 0}, {0.3, 0}}, 0.1f, QColor(9, 8, 7, 77))});
    QImage canvas(400, 300, QImage::Format_ARGB32);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    mPair->viewer->PaintDrawData(&painter, &frame, 0, -1, 0, alpha);
    QCOMPARE(painter.pen().color().alpha(), expected);
    QCOMPARE(qAlpha(canvas.pixel(200, 150)), expected);
    // The record is the host's and stays as it is.
    QCOMPARE(frame.drawData[0].color.alpha(), 77);
}

void tst_AnnotationOverlay::StartPointLeavesEarlierSegmentsOut_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("left");
    // Points at x = 0, 100, 200, 300, 400: the segment that ends in the start point is the first painted.
    QTest::newRow("from the start") << -1 << 0;
    QTest::newRow("0") << 0 << 0;
    QTest::newRow("1") << 1 << 0;
    QTest::newRow("2") << 2 << 100;
    QTest::newRow("4") << 4 << 300;
    QTest::newRow("past the end") << 5 << -1;
}

void tst_AnnotationOverlay::StartPointLeavesEarlierSegmentsOut()
{
    QFETCH(int, start);
    QFETCH(int, left);
    const FrameData frame = MakeFrame(
        {MakeDrawing(DrawPencil, {{-0.5, 0}, {-0.25, 0}, {0, 0}, {0.25, 0}, {0.5, 0}}, 0.005f, Qt::white)});
    QImage canvas(400, 300, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    QPainter painter(&canvas);
    mPair->viewer->PaintDrawData(&painter, &frame, 0, start, 0, -1);
    painter.end();
    const QRect bounds = PaintedBounds(canvas);
    if (left < 0)
        QCOMPARE(bounds, QRect());
    else
        QVERIFY(std::abs(bounds.left() - left) <= 1 && bounds.right() == 399);
}

void tst_AnnotationOverlay::ArrowBarbsAreShortAndTurnedByThirtySixDegrees()
{
    const quint32 bits = 0x3F20D97C;
    float angle;
    std::memcpy(&angle, &bits, sizeof(angle));
    QRandomGenerator random(3);
    const auto place = [&random]
    { return QPointF(random.generateDouble() - 0.5, random.generateDouble() - 0.5); };
    for (int round = 0; round < 500; ++round)
    {
        const QPointF tail = place();
        const QPointF tip = place();
        for (const float turn : {angle, -angle})
        {
            const QPointF barb = mPair->viewer->GetArrowHeadPoint(tail, tip, turn);
            const double shaft = std::atan2(tail.y() - tip.y(), tail.x() - tip.x());
            const QPointF expected =
                tip + 0.022 * QPointF(std::cos(shaft + double(turn)), std::sin(shaft + double(turn)));
            QVERIFY(std::abs(barb.x() - expected.x()) < 1e-8 && std::abs(barb.y() - expected.y()) < 1e-8);
        }
    }
    // A right angle, by hand: from the tip down the shaft, turned towards larger y.
    const QPointF down = mPair->viewer->GetArrowHeadPoint(QPointF(1, 0), QPointF(0, 0), float(M_PI_2));
    QVERIFY(std::abs(down.x()) < 1e-8 && std::abs(down.y() - 0.022) < 1e-8);
}

void tst_AnnotationOverlay::AnArrowWithoutALengthHasNoHead()
{
    const QPointF here(0.1, 0.2);
    QCOMPARE(mPair->viewer->GetArrowHeadPoint(here, here, 0.6f), here);
    const QRect bounds = PaintedBounds(Show(MakeFrame({MakeDrawing(DrawArrow, {here, here}, 0.02f)})));
    QVERIFY(bounds.width() <= 10 && bounds.height() <= 10);
}

void tst_AnnotationOverlay::DrawingsAreCutToTheirHalf_data()
{
    QTest::addColumn<int>("layout");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("incremental");
    for (const int layout : {1, 2})
    {
        for (const int index : {0, 1})
        {
            for (const bool incremental : {false, true})
                QTest::addRow("layout %d, viewer %d, %s", layout, index, incremental ? "stroke" : "whole")
                    << layout << index << incremental;
        }
    }
}

void tst_AnnotationOverlay::DrawingsAreCutToTheirHalf()
{
    QFETCH(int, layout);
    QFETCH(int, index);
    QFETCH(bool, incremental);
    mPair->Resize(QSize(401, 301));
    mPair->SetLayout(ViewerLayout(layout));
    mPair->SetActive(index);
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{0, 0}, {0, 0.01}}, 0.1f, Qt::white)});
    mPair->SetOverlay(index, &frame);
    if (incremental)
    {
        QCOMPARE(mPair->Paint(), QByteArray());
        mPair->SetAnnotationsOnly();
    }
    frame.drawData[0].points << QPointF(-3, 0) << QPointF(3, 0) << QPointF(0, -3) << QPointF(0, 3);
    QCOMPARE(mPair->Paint(), QByteArray());
    const QRect painted = PaintedBounds(mPair->PaintViewer());
    QRect half(QPoint(0, 0), QPoint(400, 300));
    if (layout == Horizontal)
        half = index == 0 ? QRect(QPoint(0, 0), QPoint(199, 300)) : QRect(QPoint(200, 0), QPoint(400, 300));
    else
        half = index == 0 ? QRect(QPoint(0, 0), QPoint(400, 149)) : QRect(QPoint(0, 150), QPoint(400, 300));
    QCOMPARE(painted, half);
}

void tst_AnnotationOverlay::AHalfWithoutAPixelShowsNothing()
{
    const FrameData frame = MakeFrame({MakeDrawing(DrawLine, {{-9, 0}, {9, 0}}, 9.0f, Qt::white)});
    for (const ViewerLayout layout : {Horizontal, Vertical})
    {
        mPair->SetLayout(layout);
        mPair->SetOverlay(0, &frame);
        QVERIFY(!PaintedBounds(mPair->PaintViewer()).isNull());
        // The display size stays, the half is gone.
        mPair->SetImage(0, QImage());
        const QSize size = mPair->viewer->size();
        mPair->Resize(layout == Horizontal ? QSize(1, 50) : QSize(50, 1));
        QCOMPARE(PaintedBounds(mPair->PaintViewer()), QRect());
        mPair->Resize(size);
        mPair->SetImage(0, BlackPicture());
    }
}

void tst_AnnotationOverlay::AStrokeAddsOnlyItsNewSegments()
{
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0}, {-0.2, 0}}, 0.02f, Qt::white)});
    mPair->SetOverlay(0, &frame);
    QCOMPARE(mPair->Paint(), QByteArray());
    QCOMPARE(mPair->viewer->mLastDrawIndex[0], 0);
    QCOMPARE(mPair->viewer->mLastPointIndex[0], 1);
    // What the cache holds is not painted again: moved points stay where they were.
    frame.drawData[0].points[0] = QPointF(-0.4, 0.3);
    frame.drawData[0].points << QPointF(0, 0) << QPointF(0.2, 0);
    mPair->SetAnnotationsOnly();
    const QImage shown = mPair->PaintViewer();
    QCOMPARE(shown.pixelColor(60, 150), QColor(Qt::white));
    QCOMPARE(shown.pixelColor(270, 150), QColor(Qt::white));
    QCOMPARE(mPair->viewer->mLastPointIndex[0], 3);
    QVERIFY(!mPair->viewer->mAnnotationsOnly);
}

void tst_AnnotationOverlay::AShapeInProgressLeavesNoTrail()
{
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0}, {-0.2, 0}}, 0.02f, Qt::white)});
    mPair->SetOverlay(0, &frame);
    QCOMPARE(mPair->Paint(), QByteArray());
    frame.drawData << MakeDrawing(DrawRectangle, {{0, 0}, {0.4, 0.3}}, 0.01f, Qt::yellow);
    frame.lastIndex = 1;
    mPair->SetAnnotationsOnly();
    QCOMPARE(mPair->Paint(), QByteArray());
    QCOMPARE(mPair->viewer->mLastDrawIndex[0], 0);
    QCOMPARE(mPair->viewer->mLastPointIndex[0], -1);
    frame.drawData[1].points[1] = QPointF(0.2, 0.1);
    mPair->SetAnnotationsOnly();
    QImage shown;
    mPair->model.annotationsOnly = true;
    shown = mPair->PaintViewer();
    QCOMPARE(shown.pixel(360, 200), Untouched);
    QCOMPARE(shown.pixelColor(280, 170), QColor(Qt::yellow));
    QCOMPARE(shown.pixelColor(80, 150), QColor(Qt::white));
}

void tst_AnnotationOverlay::EachNewEntryPaintsTheNewestOne()
{
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0}, {-0.2, 0}}, 0.02f, Qt::white)});
    mPair->SetOverlay(0, &frame);
    QCOMPARE(mPair->Paint(), QByteArray());
    // Two strokes at once: the first of them is not painted until a full paint.
    frame.drawData << MakeDrawing(DrawPencil, {{-0.4, 0.2}, {-0.2, 0.2}}, 0.02f, Qt::white)
                   << MakeDrawing(DrawPencil, {{-0.4, 0.3}, {-0.2, 0.3}}, 0.02f, Qt::white);
    frame.lastIndex = 2;
    mPair->SetAnnotationsOnly();
    QCOMPARE(mPair->Paint(), QByteArray());
    mPair->SetAnnotationsOnly();
    const QImage partly = mPair->PaintViewer();
    QCOMPARE(partly.pixel(80, 230), Untouched);
    QCOMPARE(partly.pixelColor(80, 270), QColor(Qt::white));
    const QImage whole = mPair->PaintViewer();
    QCOMPARE(whole.pixelColor(80, 230), QColor(Qt::white));
}

void tst_AnnotationOverlay::AFinishedShapeNeedsAFullPaint()
{
    FrameData frame = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {-0.2, 0}}, 0.02f, Qt::white)});
    mPair->SetOverlay(0, &frame);
    QCOMPARE(mPair->Paint(), QByteArray());
    for (const double y : {0.1, 0.2})
    {
        frame.drawData << MakeDrawing(DrawLine, {{-0.4, y}, {-0.2, y}}, 0.02f, Qt::white);
        ++frame.lastIndex;
        mPair->SetAnnotationsOnly();
        QCOMPARE(mPair->Paint(), QByteArray());
    }
    // The pass for the first new shape has painted the second, which shows; the first does not.
    mPair->SetAnnotationsOnly();
    const QImage partly = mPair->PaintViewer();
    QCOMPARE(partly.pixelColor(80, 150), QColor(Qt::white));
    QCOMPARE(partly.pixel(80, 190), Untouched);
    QCOMPARE(partly.pixelColor(80, 230), QColor(Qt::white));
    QCOMPARE(mPair->PaintViewer().pixelColor(80, 190), QColor(Qt::white));
}

void tst_AnnotationOverlay::TheInactiveViewerGoesThroughTheFullPath()
{
    mPair->SetLayout(Horizontal);
    FrameData stroke = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0}, {-0.2, 0}}, 0.02f, Qt::white)});
    FrameData other = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.02f, Qt::white)});
    mPair->SetOverlay(0, &stroke);
    mPair->SetOverlay(1, &other);
    QCOMPARE(mPair->Paint(), QByteArray());
    // A change in the other viewer shows too, on top of what was there.
    other.drawData << MakeDrawing(DrawLine, {{0, -0.3}, {0, 0.3}}, 0.02f, Qt::yellow);
    other.lastIndex = 1;
    stroke.drawData[0].points << QPointF(0, 0.3);
    mPair->SetAnnotationsOnly();
    QCOMPARE(mPair->Paint(), QByteArray());
    QCOMPARE(mPair->viewer->mLastDrawIndex[1], 1);
    QCOMPARE(mPair->PaintViewer().pixelColor(300, 130), QColor(Qt::yellow));
}

void tst_AnnotationOverlay::AShapeBeforeAFullPassHidesThePictureBehind()
{
    // The mode of the shape painted last on the widget stays set, so that the other viewer's pass replaces
    // the picture where the overlay is clear.
    QImage white(40, 30, QImage::Format_RGB32);
    white.fill(Qt::white);
    mPair->SetImage(-1, white);
    mPair->SetLayout(Horizontal);
    FrameData shape = MakeFrame({MakeDrawing(DrawLine, {{-0.4, 0}, {0.4, 0}}, 0.02f, Qt::red)});
    mPair->SetOverlay(0, &shape);
    QCOMPARE(mPair->Paint(), QByteArray());
    QCOMPARE(mPair->PaintViewer().pixelColor(300, 130), QColor(Qt::white));
    mPair->SetAnnotationsOnly();
    QCOMPARE(mPair->PaintViewer().pixel(300, 130) & 0xffffffu, 0u);
}

void tst_AnnotationOverlay::WithoutAStrokeTheCacheIsStartedAnew()
{
    mPair->SetActive(1);
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0}, {-0.2, 0}}, 0.02f, Qt::white)});
    mPair->SetOverlay(0, &frame);
    QCOMPARE(mPair->Paint(), QByteArray());
    mPair->SetAnnotationsOnly();
    QCOMPARE(mPair->Paint(), QByteArray());
    QVERIFY(mPair->viewer->mAnnotationImage.isNull());
    frame.lastIndex = -1;
    frame.drawData.clear();
    mPair->SetOverlay(0, &frame, {}, {&frame});
    mPair->SetAnnotationsOnly();
    QCOMPARE(mPair->Paint(), QByteArray());
    mPair->SetAnnotationsOnly();
    QCOMPARE(PaintedBounds(mPair->PaintViewer()), QRect());
}

void tst_AnnotationOverlay::HiddenAnnotationsHideEverything()
{
    const FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0}, {0.2, 0}}, 0.02f, Qt::white)});
    Settings::annotationTool = Pencil;
    mPair->MoveCursor(QPoint(50, 50));
    mPair->SetOverlay(0, &frame, {&frame}, {&frame});
    QCOMPARE(mPair->Paint(), QByteArray());
    mPair->SetVisible(false);
    mPair->SetAnnotationsOnly();
    QCOMPARE(mPair->Paint(), QByteArray());
    QCOMPARE(PaintedBounds(mPair->PaintViewer()), QRect());
}

void tst_AnnotationOverlay::EntriesThatDontExistPaintNothing()
{
    FrameData frame = MakeFrame({MakeDrawing(DrawPencil, {{-0.4, 0}, {0.2, 0}}, 0.02f, Qt::white)});
    frame.firstIndex = -3;
    frame.lastIndex = 5;
    mPair->viewer->SetOverlayData(0, &frame, {nullptr, &frame}, {});
    for (const bool only : {false, true, true})
    {
        mPair->viewer->SetAnnotationsOnly(only);
        QCOMPARE(mPair->PaintViewer().pixelColor(100, 150), QColor(Qt::white));
    }
    // An undo without a full paint, after which what the cache ends in is gone.
    frame = MakeFrame({frame.drawData[0], frame.drawData[0], frame.drawData[0]});
    mPair->viewer->SetOverlayData(0, &frame, {}, {});
    mPair->PaintViewer();
    frame.drawData = {frame.drawData[0]};
    frame.lastIndex = 0;
    mPair->viewer->SetAnnotationsOnly(true);
    mPair->PaintViewer();
    QCOMPARE(mPair->viewer->mLastDrawIndex[0], 0);
}

static const TestRegistration<tst_AnnotationOverlay> AnnotationOverlayRegistration;

#include "tst_AnnotationOverlay.moc"
