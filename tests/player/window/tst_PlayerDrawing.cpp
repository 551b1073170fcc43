// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/MediaTimeline.h"
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QPainter>
#include <QtTest>

class tst_PlayerDrawing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void AStrokeShowsWhereTheMouseWent();
    void UndoBringsThePictureBack();
    void DrawingsBelongToTheirFrame();
    void UndoGoesBackToItsFrame();
    void TheEraserClears();
    void GhostsShowNeighbours();
    void DrawingPausesPlayback();
    void HiddenAnnotationsAreHidden();
    void AStrokeInViewerBStaysThere();
    void ThePreviewFollowsTheCursor();

private:
    void DrawLine(const QPoint& from, const QPoint& to);
    QImage Screen() const { return PlayerProbe::ScreenOfViewer(mWindow.get()); }

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerDrawing::init()
{
    Settings::RestoreDefaults();
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    Settings::drawColor = QColor(255, 0, 0);
    Settings::pencilWidth = 0.01f;
    QTest::keyClick(mWindow.get(), Qt::Key_P);
    QVERIFY(Settings::drawEnabled);
    Screen();
}

void tst_PlayerDrawing::cleanup()
{
    mWindow.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerDrawing::DrawLine(const QPoint& from, const QPoint& to)
{
    ViewerWidget* const viewer = mWindow->Viewer();
    InputEvents::Press(viewer, from);
    for (int step = 1; step <= 4; ++step)
        InputEvents::Move(viewer, from + (to - from) * step / 4, Qt::LeftButton);
    InputEvents::Release(viewer, to);
    // Away, so that the preview of the cursor is not in the picture.
    InputEvents::Move(mWindow.get(), QPoint(mWindow->width() - 5, mWindow->height() - 5));
    mWindow->Viewer()->RefreshAll();
}

void tst_PlayerDrawing::AStrokeShowsWhereTheMouseWent()
{
    const QImage before = Screen();
    const QPoint from(300, 250);
    const QPoint to(500, 330);
    DrawLine(from, to);
    const QImage after = Screen();

    QImage expected = before.convertToFormat(QImage::Format_RGB32);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    const double width = 0.01 * PlayerProbe::PictureRect(mWindow.get(), 0).width();
    painter.setPen(QPen(QColor(255, 0, 0), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(from, to);
    painter.end();
    // Along its edges the stroke is made of segments and blended once more on its way to the screen.
    const QByteArray difference = PictureDifference(after, expected, 160);
    QVERIFY2(difference.isEmpty(), difference);
    QCOMPARE(after.pixel(400, 290), qRgb(255, 0, 0));
    // Three pixels off the stroke nothing has changed.
    QImage masked = after.convertToFormat(QImage::Format_RGB32);
    QImage reference = before.convertToFormat(QImage::Format_RGB32);
    for (QImage* const image : {&masked, &reference})
    {
        QPainter cover(image);
        cover.setPen(QPen(Qt::black, width + 6, Qt::SolidLine, Qt::RoundCap));
        cover.drawLine(from, to);
    }
    const QByteArray stray = PictureDifference(masked, reference);
    QVERIFY2(stray.isEmpty(), stray);
}

void tst_PlayerDrawing::UndoBringsThePictureBack()
{
    const QImage before = Screen();
    DrawLine(QPoint(300, 250), QPoint(500, 330));
    QVERIFY(!PictureDifference(Screen(), before).isEmpty());
    const QImage drawn = Screen();
    QTest::keyClick(mWindow.get(), Qt::Key_Z, Qt::ControlModifier);
    QByteArray difference = PictureDifference(Screen(), before);
    QVERIFY2(difference.isEmpty(), difference);
    QTest::keyClick(mWindow.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    difference = PictureDifference(Screen(), drawn);
    QVERIFY2(difference.isEmpty(), difference);
    QTest::keyClick(mWindow.get(), Qt::Key_Backspace, Qt::ControlModifier);
    difference = PictureDifference(Screen(), before);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_PlayerDrawing::DrawingsBelongToTheirFrame()
{
    DrawLine(QPoint(300, 250), QPoint(500, 330));
    QCOMPARE(Screen().pixel(400, 290), qRgb(255, 0, 0));
    QTest::keyClick(mWindow.get(), Qt::Key_Right);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 2);
    QVERIFY(Screen().pixel(400, 290) != qRgb(255, 0, 0));
    QTest::keyClick(mWindow.get(), Qt::Key_Left);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 1);
    QCOMPARE(Screen().pixel(400, 290), qRgb(255, 0, 0));
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->Annotations()->AnnotatedFrames(), (QVector<int>{1}));
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->GetBookmarks()->GetTimeBookmarks().size(), 1);
}

void tst_PlayerDrawing::UndoGoesBackToItsFrame()
{
    DrawLine(QPoint(300, 250), QPoint(500, 330));
    QTest::keyClick(mWindow.get(), Qt::Key_End);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 60);
    QTest::keyClick(mWindow.get(), Qt::Key_Z, Qt::ControlModifier);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 1);
    QVERIFY(mWindow->Playback()->TimelineOf(0)->Annotations()->AnnotatedFrames().isEmpty());
    QVERIFY(mWindow->Playback()->TimelineOf(0)->GetBookmarks()->GetTimeBookmarks().isEmpty());
}

void tst_PlayerDrawing::TheEraserClears()
{
    const QImage before = Screen();
    DrawLine(QPoint(300, 250), QPoint(500, 330));
    Settings::eraserWidth = 0.2f;
    QTest::keyClick(mWindow.get(), Qt::Key_E);
    DrawLine(QPoint(300, 250), QPoint(500, 330));
    const QByteArray difference = PictureDifference(Screen(), before);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_PlayerDrawing::GhostsShowNeighbours()
{
    DrawLine(QPoint(300, 250), QPoint(500, 330));
    QTest::keyClick(mWindow.get(), Qt::Key_Right);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 2);
    const QImage without = Screen();
    QTest::keyClick(mWindow.get(), Qt::Key_G);
    const QImage with = Screen();
    // One ghost of three: the strongest alpha but for one step.
    const int alpha = Settings::annotationGhostAlphaMin +
                      2 * ((Settings::annotationGhostAlphaMax - Settings::annotationGhostAlphaMin) / 3);
    const QColor under(without.pixel(400, 290));
    const QColor actual(with.pixel(400, 290));
    QVERIFY(std::abs(actual.red() - (under.red() * (255 - alpha) + 255 * alpha) / 255) <= 2);
    QVERIFY(std::abs(actual.green() - under.green() * (255 - alpha) / 255) <= 2);
}

void tst_PlayerDrawing::DrawingPausesPlayback()
{
    QTest::keyClick(mWindow.get(), Qt::Key_Space);
    QVERIFY(mWindow->Playback()->IsPlaying());
    QTest::qWait(300);
    InputEvents::Press(mWindow->Viewer(), QPoint(300, 250));
    QVERIFY(!mWindow->Playback()->IsPlaying());
    // The stroke goes on the frame that was on screen, and no late picture takes it away.
    const int frame = mWindow->Playback()->ShownFrame(0);
    QCOMPARE(mWindow->Playback()->CurrentFrame(), frame);
    QTest::qWait(300);
    InputEvents::Release(mWindow->Viewer(), QPoint(400, 250));
    QVERIFY(!mWindow->Playback()->IsPlaying());
    QCOMPARE(mWindow->Playback()->TimelineOf(0)->Annotations()->AnnotatedFrames(), (QVector<int>{frame}));
}

void tst_PlayerDrawing::HiddenAnnotationsAreHidden()
{
    const QImage before = Screen();
    DrawLine(QPoint(300, 250), QPoint(500, 330));
    QTest::keyClick(mWindow.get(), Qt::Key_A);
    const QByteArray difference = PictureDifference(Screen(), before);
    QVERIFY2(difference.isEmpty(), difference);
    QTest::keyClick(mWindow.get(), Qt::Key_A);
    QCOMPARE(Screen().pixel(400, 290), qRgb(255, 0, 0));
}

void tst_PlayerDrawing::AStrokeInViewerBStaysThere()
{
    mWindow->OpenFiles({PlayerProbe::SampleMovie()}, 1);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(1), 1, 10000);
    const QRect picture = PlayerProbe::PictureRect(mWindow.get(), 1);
    DrawLine(picture.center() - QPoint(60, 0), picture.center() + QPoint(60, 0));
    QCOMPARE(Screen().pixel(picture.center()), qRgb(255, 0, 0));
    const QList<DrawData> drawings = mWindow->Playback()->TimelineOf(1)->Annotations()->Drawings(1);
    QCOMPARE(drawings.size(), 1);
    QVERIFY(std::abs(drawings[0].points.first().x() + 60.0 / picture.width()) < 0.01);
}

void tst_PlayerDrawing::ThePreviewFollowsTheCursor()
{
    InputEvents::Move(mWindow.get(), QPoint(5, 5));
    mWindow->Viewer()->RefreshAll();
    const QImage without = Screen();
    Settings::drawWidth = 0.1f;
    for (const QPoint& place : {QPoint(300, 250), QPoint(500, 300)})
    {
        InputEvents::Move(mWindow->Viewer(), place);
        const QImage with = Screen();
        const int radius = static_cast<int>(static_cast<double>(Settings::drawWidth) *
                                                PlayerProbe::PictureRect(mWindow.get(), 0).width() * 0.5 +
                                            1.0);
        QImage expected = without.convertToFormat(QImage::Format_RGB32);
        QPainter painter(&expected);
        painter.setPen(QPen(QBrush(Qt::gray), 1.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawEllipse(place, radius, radius);
        painter.end();
        const QByteArray difference = PictureDifference(with, expected);
        QVERIFY2(difference.isEmpty(), difference);
    }
    // It goes with the cursor.
    InputEvents::Move(mWindow.get(), QPoint(5, 5));
    const QByteArray difference = PictureDifference(Screen(), without);
    QVERIFY2(difference.isEmpty(), difference);
}

static const TestRegistration<tst_PlayerDrawing> PlayerDrawingRegistration;

#include "tst_PlayerDrawing.moc"
