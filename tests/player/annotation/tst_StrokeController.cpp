// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"
#include "annotation/StrokeController.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"

#include <QUndoStack>
#include <QtTest>

class tst_StrokeController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void AStrokeHoldsEveryPositionInDrawSpace();
    void AClickLeavesADot();
    void UndoAndRedoRestoreTheDrawings();
    void CancelTakesTheStrokeBack();
    void OtherToolsDrawNothingHere();
    void AShapeHoldsThePressAndTheLastPosition_data();
    void AShapeHoldsThePressAndTheLastPosition();
    void AShapeWithoutExtentIsDropped();
    void AViewerWithoutATargetTakesNothing();
    void TheStrokeGrowsOnScreen();
    void ViewerUnderThePointInEachLayout();

private:
    QPoint Global(const QPointF& part) const;
    QImage Grab() const;

    std::unique_ptr<ViewerWidget> mViewer;
    std::shared_ptr<AnnotationStore> mStore;
    QUndoStack mUndoStack;
    std::unique_ptr<StrokeController> mStrokes;
};

void tst_StrokeController::init()
{
    Settings::RestoreDefaults();
    Settings::drawEnabled = true;
    Settings::drawColor = QColor(255, 0, 0);
    mUndoStack.clear();
    mViewer = std::make_unique<ViewerWidget>();
    mViewer->resize(400, 300);
    QImage picture(400, 300, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    mViewer->SetImage(-1, picture, false);
    mViewer->show();
    QVERIFY(QTest::qWaitForWindowExposed(mViewer.get()));
    Grab();
    mStore = std::make_shared<AnnotationStore>();
    mStrokes = std::make_unique<StrokeController>(
        mViewer.get(), &mUndoStack,
        [this](int) {
            return StrokeTarget{mStore, 12};
        },
        nullptr);
    const auto present = [this] { mViewer->SetOverlayData(0, mStore->Find(12), {}, {}); };
    connect(mStrokes.get(), &StrokeController::OverlayChanged, present);
    connect(mStrokes.get(), &StrokeController::DrawingsChanged, present);
}

void tst_StrokeController::cleanup()
{
    mStrokes.reset();
    mViewer.reset();
    Settings::RestoreDefaults();
}

QPoint tst_StrokeController::Global(const QPointF& part) const
{
    return mViewer->mapToGlobal(QPoint(qRound(part.x() * 400), qRound(part.y() * 300)));
}

QImage tst_StrokeController::Grab() const
{
    mViewer->repaint();
    return mViewer->grab().toImage();
}

void tst_StrokeController::AStrokeHoldsEveryPositionInDrawSpace()
{
    QVERIFY(mStrokes->Press(Global({0.25, 0.5})));
    QVERIFY(mStrokes->Move(Global({0.5, 0.5})));
    QVERIFY(mStrokes->Move(Global({0.5, 0.5})));
    QVERIFY(mStrokes->Release(Global({0.75, 0.75})));
    const QList<DrawData> drawings = mStore->Drawings(12);
    QCOMPARE(drawings.size(), 1);
    QCOMPARE(drawings[0].type, DrawPencil);
    QCOMPARE(drawings[0].width, Settings::drawWidth);
    QCOMPARE(drawings[0].color, Settings::drawColor);
    QCOMPARE(drawings[0].points, (QList<QPointF>{{-0.25, 0.0}, {0.0, 0.0}, {0.25, 0.1875}}));
    QVERIFY(!mStrokes->IsDrawing());
}

void tst_StrokeController::AClickLeavesADot()
{
    Settings::drawWidth = 0.02f;
    mStrokes->Press(Global({0.5, 0.5}));
    mStrokes->Release(Global({0.5, 0.5}));
    QCOMPARE(mStore->Drawings(12).at(0).points.size(), 2);
    mViewer->RefreshAll();
    QCOMPARE(Grab().pixel(200, 150), qRgb(255, 0, 0));
}

void tst_StrokeController::UndoAndRedoRestoreTheDrawings()
{
    QList<int> changes;
    connect(mStrokes.get(), &StrokeController::DrawingsChanged,
            [&](AnnotationStore*, int frame) { changes << frame; });
    for (int stroke = 0; stroke < 2; ++stroke)
    {
        mStrokes->Press(Global({0.2, 0.2}));
        mStrokes->Release(Global({0.8, 0.8}));
    }
    QCOMPARE(changes.size(), 2);
    mUndoStack.undo();
    QCOMPARE(mStore->Find(12)->lastIndex, 0);
    mUndoStack.undo();
    QCOMPARE(mStore->Find(12)->lastIndex, -1);
    mUndoStack.redo();
    QCOMPARE(mStore->Drawings(12).size(), 1);
    QCOMPARE(changes.size(), 5);
    QCOMPARE(changes.last(), 12);
}

void tst_StrokeController::CancelTakesTheStrokeBack()
{
    mStrokes->Press(Global({0.2, 0.2}));
    mStrokes->Move(Global({0.4, 0.4}));
    mStrokes->Cancel();
    QVERIFY(mStore->Drawings(12).isEmpty());
    QVERIFY(!mStrokes->Release(Global({0.5, 0.5})));
    QCOMPARE(mUndoStack.count(), 0);
}

void tst_StrokeController::OtherToolsDrawNothingHere()
{
    for (const AnnotationToolType tool : {Text, Eyedropper})
    {
        Settings::annotationTool = tool;
        QVERIFY(!mStrokes->Press(Global({0.2, 0.2})));
    }
    Settings::annotationTool = Eraser;
    QVERIFY(mStrokes->Press(Global({0.2, 0.2})));
    mStrokes->Release(Global({0.3, 0.3}));
    QCOMPARE(mStore->Drawings(12).at(0).type, DrawEraser);
}

void tst_StrokeController::AShapeHoldsThePressAndTheLastPosition_data()
{
    QTest::addColumn<int>("tool");
    QTest::addColumn<int>("type");
    QTest::newRow("arrow") << int(Arrow) << int(DrawArrow);
    QTest::newRow("oval") << int(Oval) << int(DrawOval);
    QTest::newRow("rectangle") << int(Rectangle) << int(DrawRectangle);
}

void tst_StrokeController::AShapeHoldsThePressAndTheLastPosition()
{
    QFETCH(int, tool);
    QFETCH(int, type);
    Settings::annotationTool = static_cast<AnnotationToolType>(tool);
    QVERIFY(mStrokes->Press(Global({0.25, 0.5})));
    QVERIFY(mStrokes->Move(Global({0.9, 0.9})));
    QVERIFY(mStrokes->Move(Global({0.5, 0.25})));
    QVERIFY(mStrokes->Release(Global({0.75, 0.75})));
    const QList<DrawData> drawings = mStore->Drawings(12);
    QCOMPARE(drawings.size(), 1);
    QCOMPARE(int(drawings[0].type), type);
    QCOMPARE(drawings[0].points, (QList<QPointF>{{-0.25, 0.0}, {0.25, 0.1875}}));
    QCOMPARE(mUndoStack.count(), 1);
}

void tst_StrokeController::AShapeWithoutExtentIsDropped()
{
    Settings::annotationTool = Oval;
    mStrokes->Press(Global({0.25, 0.5}));
    mStrokes->Move(Global({0.5, 0.5}));
    QVERIFY(mStrokes->Release(Global({0.25, 0.5})));
    QVERIFY(mStore->Drawings(12).isEmpty());
    QCOMPARE(mUndoStack.count(), 0);
    QVERIFY(!mStrokes->IsDrawing());
}

void tst_StrokeController::AViewerWithoutATargetTakesNothing()
{
    StrokeController none(
        mViewer.get(), &mUndoStack, [](int) { return StrokeTarget(); }, nullptr);
    QVERIFY(!none.Press(Global({0.5, 0.5})));
    QVERIFY(!none.Move(Global({0.6, 0.5})));
    QVERIFY(!none.Release(Global({0.6, 0.5})));
    QCOMPARE(mUndoStack.count(), 0);
}

void tst_StrokeController::TheStrokeGrowsOnScreen()
{
    Settings::drawWidth = 0.02f;
    mStrokes->Press(Global({0.1, 0.5}));
    Grab();
    mStrokes->Move(Global({0.3, 0.5}));
    QImage picture = Grab();
    QCOMPARE(picture.pixel(80, 150), qRgb(255, 0, 0));
    QCOMPARE(picture.pixel(200, 150), qRgb(0, 0, 255));
    mStrokes->Move(Global({0.7, 0.5}));
    picture = Grab();
    QCOMPARE(picture.pixel(80, 150), qRgb(255, 0, 0));
    QCOMPARE(picture.pixel(200, 150), qRgb(255, 0, 0));
    mStrokes->Release(Global({0.7, 0.5}));
    mUndoStack.undo();
    mViewer->RefreshAll();
    QCOMPARE(Grab().pixel(80, 150), qRgb(0, 0, 255));
}

void tst_StrokeController::ViewerUnderThePointInEachLayout()
{
    mViewer->SetViewerLayout(Horizontal);
    QCOMPARE(mStrokes->ViewerAt(Global({0.4, 0.5})), 0);
    QCOMPARE(mStrokes->ViewerAt(Global({0.6, 0.5})), 1);
    mViewer->SetViewerLayout(Vertical);
    QCOMPARE(mStrokes->ViewerAt(Global({0.6, 0.4})), 0);
    QCOMPARE(mStrokes->ViewerAt(Global({0.6, 0.6})), 1);
    mViewer->SetViewerLayout(Horizontal);
    // Zoomed in on the middle, the halves are still told apart on screen.
    mViewer->SetPanAndZoom(QPointF(), 3.0f, true);
    QCOMPARE(mStrokes->ViewerAt(Global({0.4, 0.5})), 0);
    QCOMPARE(mStrokes->ViewerAt(Global({0.9, 0.5})), 1);
    mViewer->SetViewerLayout(Single);
    mViewer->SetSingleViewerIndex(1);
    QCOMPARE(mStrokes->ViewerAt(Global({0.9, 0.5})), 1);
}

static const TestRegistration<tst_StrokeController> StrokeControllerRegistration;

#include "tst_StrokeController.moc"
