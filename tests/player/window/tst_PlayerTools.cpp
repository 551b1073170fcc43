// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "support/InputEvents.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QtTest>

#include <cmath>

/// The tools that draw, with real mouse events, compared with what should be on the screen.
class tst_PlayerTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void AShapeShowsBetweenItsTwoPoints_data();
    void AShapeShowsBetweenItsTwoPoints();
    void ADraggedShapeLeavesNoTrail_data();
    void ADraggedShapeLeavesNoTrail();
    void ADraggedShapeLeavesTheOtherViewerAlone();
    void ATranslucentShapeIsSeenThroughWhileItIsDragged();
    void EachToolHasItsWidth_data();
    void EachToolHasItsWidth();
    void KeysWidenTheActiveTool();
    void AClickWithAShapeToolLeavesNothing();
    void TwoQuickPressesAreTwoDots();
    void TheEyedropperTakesThePicturesColour();
    void TheEyedropperFollowsADrag();
    void TheEyedropperTakesNothingBesideThePicture();
    void APreviewOverAShapeLeavesItAsItIs();
    void GhostsComeInTheirNumbers_data();
    void GhostsComeInTheirNumbers();
    void ADoubleClickDoesNotPlayWhileDrawing();

private:
    QImage Screen() const { return PlayerProbe::ScreenOfViewer(mWindow.get()); }
    QRect Picture(int viewer = 0) const { return PlayerProbe::PictureRect(mWindow.get(), viewer); }
    AnnotationStore& Store(int viewer = 0) const
    {
        return *mWindow->Playback()->TimelineOf(viewer)->Annotations();
    }
    void Select(const char* command) { QVERIFY(mWindow->Commands()->Run(QLatin1String(command))); }
    void Paint(QPainter* painter, const QString& tool, const QPointF& from, const QPointF& to) const;

    std::unique_ptr<PlayerWindow> mWindow;
};

namespace
{

constexpr double ToolWidth = 0.012;

} // namespace

void tst_PlayerTools::init()
{
    Settings::RestoreDefaults();
    for (float* const width :
         {&Settings::pencilWidth, &Settings::arrowWidth, &Settings::ovalWidth, &Settings::rectangleWidth})
        *width = static_cast<float>(ToolWidth);
    Settings::drawColor = QColor(255, 0, 0);
    mWindow = std::make_unique<PlayerWindow>();
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    Select("annotate.draw");
    PlayerProbe::LeaveViewers(mWindow.get());
}

void tst_PlayerTools::cleanup()
{
    mWindow.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerTools::Paint(QPainter* painter, const QString& tool, const QPointF& from,
                            const QPointF& to) const
{
    if (tool == QLatin1String("rectangle"))
        painter->drawRect(QRectF(from, to));
    else if (tool == QLatin1String("oval"))
        painter->drawEllipse(QRectF(from, to));
    else
    {
        painter->drawLine(from, to);
        // Two barbs, 36 degrees off the shaft, 22 thousandths of the picture's width long.
        const double back = std::atan2(from.y() - to.y(), from.x() - to.x());
        const double length = 0.022 * Picture().width();
        for (const double turn : {M_PI / 5.0, -M_PI / 5.0})
            painter->drawLine(to, to + length * QPointF(std::cos(back + turn), std::sin(back + turn)));
    }
}

void tst_PlayerTools::AShapeShowsBetweenItsTwoPoints_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    for (const char* const tool : {"rectangle", "oval", "arrow"})
    {
        QTest::addRow("%s down right", tool)
            << QString::fromLatin1(tool) << QPoint(250, 200) << QPoint(500, 330);
        QTest::addRow("%s up left", tool)
            << QString::fromLatin1(tool) << QPoint(520, 340) << QPoint(300, 210);
    }
}

void tst_PlayerTools::AShapeShowsBetweenItsTwoPoints()
{
    QFETCH(QString, tool);
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    Select(qPrintable(QStringLiteral("annotate.") + tool));
    const QImage before = Screen();
    PlayerProbe::Drag(mWindow.get(), from, to);
    PlayerProbe::ExpectedOverlay expected(before, Qt::red, ToolWidth * Picture().width());
    Paint(expected.Painter(), tool, from, to);
    const QByteArray difference = PictureDifference(Screen(), expected.Over(), 6);
    QVERIFY2(difference.isEmpty(), difference);
    QCOMPARE(Store().Drawings(1).size(), 1);
}

void tst_PlayerTools::ADraggedShapeLeavesNoTrail_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<bool>("afterStroke");
    for (const char* const tool : {"rectangle", "oval", "arrow"})
    {
        QTest::addRow("%s on an empty frame", tool) << QString::fromLatin1(tool) << false;
        QTest::addRow("%s on a drawn frame", tool) << QString::fromLatin1(tool) << true;
    }
}

void tst_PlayerTools::ADraggedShapeLeavesNoTrail()
{
    QFETCH(QString, tool);
    QFETCH(bool, afterStroke);
    if (afterStroke)
    {
        Select("annotate.pencil");
        PlayerProbe::Drag(mWindow.get(), QPoint(200, 360), QPoint(560, 360));
        Select("annotate.rectangle");
        PlayerProbe::Drag(mWindow.get(), QPoint(200, 370), QPoint(560, 380));
    }
    Select(qPrintable(QStringLiteral("annotate.") + tool));
    const QImage before = Screen();
    const QPoint from(250, 180);
    InputEvents::Press(mWindow->Viewer(), from);
    for (const QPoint& to : {QPoint(560, 330), QPoint(300, 340), QPoint(420, 200)})
    {
        InputEvents::Move(mWindow->Viewer(), to, Qt::LeftButton);
        PlayerProbe::ExpectedOverlay expected(before, Qt::red, ToolWidth * Picture().width());
        Paint(expected.Painter(), tool, from, to);
        // Straight on the widget its edges are not smooth.
        const QImage shown = Screen();
        const QImage wanted = expected.Over();
        QImage cover(before.size(), QImage::Format_ARGB32);
        cover.fill(Qt::transparent);
        QPainter painter(&cover);
        painter.setPen(
            QPen(Qt::black, ToolWidth * Picture().width() + 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        Paint(&painter, tool, from, to);
        painter.end();
        const auto covered = [&cover](const QImage& image)
        {
            QImage result = image.convertToFormat(QImage::Format_RGB32);
            QPainter(&result).drawImage(0, 0, cover);
            return result;
        };
        const QByteArray stray = PictureDifference(covered(shown), covered(before));
        QVERIFY2(stray.isEmpty(), stray);
        const QPoint middle =
            tool == QLatin1String("arrow") ? (from + to) / 2 : QPoint((from.x() + to.x()) / 2, from.y());
        QCOMPARE(QColor(shown.pixel(middle)), QColor(wanted.pixel(middle)));
    }
    InputEvents::Release(mWindow->Viewer(), QPoint(420, 200));
    PlayerProbe::LeaveViewers(mWindow.get());
    Select("annotate.undo");
    const QByteArray difference = PictureDifference(Screen(), before);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_PlayerTools::ADraggedShapeLeavesTheOtherViewerAlone()
{
    mWindow->OpenFiles({PlayerProbe::SampleMovie()}, 1);
    QTRY_COMPARE_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(1), 1, 10000);
    Select("annotate.oval");
    for (const int viewer : {0, 1})
    {
        const QImage before = Screen();
        const QPoint from = Picture(viewer).center() - QPoint(60, 40);
        const QPoint to = from + QPoint(110, 70);
        InputEvents::Press(mWindow->Viewer(), from);
        InputEvents::Move(mWindow->Viewer(), to, Qt::LeftButton);
        const QImage during = Screen();
        const QRect other = Picture(1 - viewer);
        const QByteArray difference = PictureDifference(during.copy(other), before.copy(other));
        QVERIFY2(difference.isEmpty(), difference);
        // Within the oval the picture is as it was, too.
        const QRect inside(from + QPoint(30, 20), to - QPoint(30, 20));
        const QByteArray insideDifference = PictureDifference(during.copy(inside), before.copy(inside));
        QVERIFY2(insideDifference.isEmpty(), insideDifference);
        QCOMPARE(during.pixel(from.x() + 55, from.y()), qRgb(255, 0, 0));
        InputEvents::Release(mWindow->Viewer(), to);
        PlayerProbe::LeaveViewers(mWindow.get());
        // Both show the same medium, and what is drawn on it in either.
        QCOMPARE(Store(viewer).Drawings(1).size(), viewer + 1);
    }
}

void tst_PlayerTools::ATranslucentShapeIsSeenThroughWhileItIsDragged()
{
    Settings::drawColor = QColor(255, 0, 0, 100);
    Select("annotate.rectangle");
    const QImage before = Screen();
    const QPoint from(250, 200);
    const QPoint to(500, 330);
    InputEvents::Press(mWindow->Viewer(), from);
    InputEvents::Move(mWindow->Viewer(), to, Qt::LeftButton);
    for (const bool released : {false, true})
    {
        PlayerProbe::ExpectedOverlay expected(before, Settings::drawColor, ToolWidth * Picture().width());
        Paint(expected.Painter(), QStringLiteral("rectangle"), from, to);
        const QByteArray difference = PictureDifference(Screen(), expected.Over(), 6);
        QVERIFY2(difference.isEmpty(), difference);
        if (!released)
            InputEvents::Release(mWindow->Viewer(), to);
        PlayerProbe::LeaveViewers(mWindow.get());
    }
}

void tst_PlayerTools::EachToolHasItsWidth_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<float>("width");
    QTest::newRow("pencil") << "pencil" << 0.01f;
    QTest::newRow("eraser") << "eraser" << 0.02f;
    QTest::newRow("arrow") << "arrow" << 0.005f;
    QTest::newRow("oval") << "oval" << 0.006f;
    QTest::newRow("rectangle") << "rectangle" << 0.007f;
}

void tst_PlayerTools::EachToolHasItsWidth()
{
    QFETCH(QString, tool);
    QFETCH(float, width);
    Settings::pencilWidth = 0.01f;
    Settings::eraserWidth = 0.02f;
    Settings::arrowWidth = 0.005f;
    Settings::ovalWidth = 0.006f;
    Settings::rectangleWidth = 0.007f;
    Select(qPrintable(QStringLiteral("annotate.") + tool));
    PlayerProbe::Drag(mWindow.get(), QPoint(250, 200), QPoint(500, 330));
    QCOMPARE(Store().Drawings(1).at(0).width, width);
}

void tst_PlayerTools::KeysWidenTheActiveTool()
{
    Settings::ovalWidth = 0.004f;
    Settings::pencilWidth = 0.004f;
    Select("annotate.oval");
    for (int press = 0; press < 3; ++press)
        QTest::keyClick(mWindow.get(), Qt::Key_BracketRight);
    QCOMPARE(Settings::ovalWidth, 11.0f / 2000.0f);
    QCOMPARE(Settings::drawWidth, Settings::ovalWidth);
    QCOMPARE(Settings::pencilWidth, 0.004f);
    for (int press = 0; press < 30; ++press)
        QTest::keyClick(mWindow.get(), Qt::Key_BracketLeft);
    QCOMPARE(Settings::ovalWidth, 2.0f / 2000.0f);
    for (int press = 0; press < 60; ++press)
        QTest::keyClick(mWindow.get(), Qt::Key_BracketRight);
    QCOMPARE(Settings::ovalWidth, 99.0f / 2000.0f);
}

void tst_PlayerTools::AClickWithAShapeToolLeavesNothing()
{
    for (const char* const tool : {"annotate.arrow", "annotate.oval", "annotate.rectangle"})
    {
        Select(tool);
        const QImage before = Screen();
        PlayerProbe::Drag(mWindow.get(), QPoint(300, 250), QPoint(300, 250), 0);
        QVERIFY(Store().Drawings(1).isEmpty());
        const QByteArray difference = PictureDifference(Screen(), before);
        QVERIFY2(difference.isEmpty(), difference);
    }
}

void tst_PlayerTools::TwoQuickPressesAreTwoDots()
{
    Select("annotate.pencil");
    QTest::mouseClick(mWindow->windowHandle(), Qt::LeftButton, {},
                      mWindow->Viewer()->mapTo(mWindow.get(), QPoint(300, 250)));
    QTest::mouseDClick(mWindow->windowHandle(), Qt::LeftButton, {},
                       mWindow->Viewer()->mapTo(mWindow.get(), QPoint(320, 250)));
    QVERIFY(Store().Drawings(1).size() >= 2);
    QVERIFY(!mWindow->Playback()->IsPlaying());
}

void tst_PlayerTools::TheEyedropperTakesThePicturesColour()
{
    Select("annotate.eyedropper");
    const QImage screen = Screen();
    for (const QPointF& part : {QPointF(0.1, 0.1), QPointF(0.5, 0.5), QPointF(0.83, 0.7), QPointF(0.4, 0.95)})
    {
        const QRect picture = Picture();
        const QPoint place = picture.topLeft() +
                             QPoint(qRound(part.x() * picture.width()), qRound(part.y() * picture.height()));
        PlayerProbe::Drag(mWindow.get(), place, place, 0);
        QCOMPARE(Settings::drawColor, QColor(screen.pixel(place)));
        const QImage swatch = PlayerProbe::Part(mWindow.get(), "colorButton")->grab().toImage();
        QCOMPARE(QColor(swatch.pixel(13, 13)), Settings::drawColor);
    }
    QVERIFY(Store().AnnotatedFrames().isEmpty());
    QCOMPARE(Settings::drawWidth, 0.0f);
    const QByteArray difference = PictureDifference(Screen(), screen);
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_PlayerTools::TheEyedropperFollowsADrag()
{
    Select("annotate.eyedropper");
    const QImage screen = Screen();
    const QPoint from = Picture().center();
    const QPoint to = Picture().topLeft() + QPoint(30, 30);
    InputEvents::Press(mWindow->Viewer(), from);
    QCOMPARE(Settings::drawColor, QColor(screen.pixel(from)));
    InputEvents::Move(mWindow->Viewer(), to, Qt::LeftButton);
    QCOMPARE(Settings::drawColor, QColor(screen.pixel(to)));
    InputEvents::Release(mWindow->Viewer(), to);
    InputEvents::Move(mWindow->Viewer(), from);
    QCOMPARE(Settings::drawColor, QColor(screen.pixel(to)));
}

void tst_PlayerTools::TheEyedropperTakesNothingBesideThePicture()
{
    mWindow->resize(1200, 600);
    QTRY_VERIFY(Picture().left() > 10);
    Select("annotate.eyedropper");
    const QRect picture = Picture();
    for (const int x : {picture.left() - 6, picture.right() + 6})
    {
        Settings::drawColor = QColor(1, 2, 3);
        PlayerProbe::Drag(mWindow.get(), QPoint(x, picture.center().y()), QPoint(x, picture.center().y()), 0);
        QCOMPARE(Settings::drawColor, QColor(1, 2, 3));
    }
}

void tst_PlayerTools::APreviewOverAShapeLeavesItAsItIs()
{
    Settings::drawColor = QColor(255, 0, 0, 120);
    Select("annotate.oval");
    PlayerProbe::Drag(mWindow.get(), QPoint(250, 200), QPoint(500, 330));
    Select("annotate.pencil");
    const QImage before = Screen();
    const QPoint far = Picture().topLeft() + QPoint(20, 20);
    for (int step = 0; step < 4; ++step)
        InputEvents::Move(mWindow->Viewer(), far + QPoint(step, 0));
    const QRect shape(230, 180, 300, 180);
    const QByteArray difference = PictureDifference(Screen().copy(shape), before.copy(shape));
    QVERIFY2(difference.isEmpty(), difference);
}

void tst_PlayerTools::GhostsComeInTheirNumbers_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    QTest::newRow("one before, none after") << 1 << 0;
    QTest::newRow("two before, one after") << 2 << 1;
    QTest::newRow("all") << 3 << 2;
}

void tst_PlayerTools::GhostsComeInTheirNumbers()
{
    QFETCH(int, before);
    QFETCH(int, after);
    // A line of its own on frames 1 to 3 and 5 to 6; frame 4 is looked at.
    Select("annotate.pencil");
    QMap<int, int> lineOfFrame;
    for (const int frame : {1, 2, 3, 5, 6})
    {
        mWindow->Playback()->SeekFrame(frame);
        QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), frame);
        lineOfFrame[frame] = 180 + 20 * frame;
        PlayerProbe::Drag(mWindow.get(), QPoint(300, lineOfFrame[frame]), QPoint(500, lineOfFrame[frame]));
    }
    mWindow->Playback()->SeekFrame(4);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 4);
    const QImage without = Screen();
    Settings::annotationGhostPreviousNumFrames = before;
    Settings::annotationGhostNextNumFrames = std::max(after, 1);
    Select("annotate.ghostPrevious");
    if (after > 0)
        Select("annotate.ghostNext");
    const QImage with = Screen();
    for (auto line = lineOfFrame.cbegin(); line != lineOfFrame.cend(); ++line)
    {
        const bool expected = line.key() < 4 ? line.key() >= 4 - before : line.key() <= 4 + after;
        QCOMPARE(with.pixel(400, line.value()) != without.pixel(400, line.value()), expected);
    }
}

void tst_PlayerTools::ADoubleClickDoesNotPlayWhileDrawing()
{
    Select("annotate.pencil");
    const QPoint place = mWindow->Viewer()->mapTo(mWindow.get(), QPoint(300, 250));
    QTest::mouseDClick(mWindow->windowHandle(), Qt::LeftButton, {}, place);
    QVERIFY(!mWindow->Playback()->IsPlaying());
    Select("annotate.draw");
    QTest::mouseDClick(mWindow->windowHandle(), Qt::LeftButton, {}, place);
    QVERIFY(mWindow->Playback()->IsPlaying());
}

static const TestRegistration<tst_PlayerTools> PlayerToolsRegistration;

#include "tst_PlayerTools.moc"
