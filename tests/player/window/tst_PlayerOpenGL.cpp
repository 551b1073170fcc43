// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "window/CommandTable.h"
#include "window/MessageBar.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QAction>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <array>

namespace
{

/// Most that a channel's values may differ by around a pixel for it to count as flat. As much may lie between
/// the back ends there: the software viewer puts pictures on whole pixels and a pixel off.
constexpr int SmallSpread = 6;

/// How far two pictures are apart where neither has an edge nearby, and how much of them was compared.
struct FlatDifference
{
    int worst = 0;
    int compared = 0;
};

/// The range of a channel's values among the 5 by 5 pixels around (@p x, @p y).
int SpreadAround(const QImage& image, int x, int y, int shift)
{
    int low = 255;
    int high = 0;
    for (int row = y - 2; row <= y + 2; ++row)
    {
        for (int column = x - 2; column <= x + 2; ++column)
        {
            const int value = int(image.pixel(column, row) >> shift) & 0xFF;
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }
    return high - low;
}

FlatDifference DifferenceWhereFlat(const QImage& one, const QImage& other)
{
    FlatDifference result;
    for (int y = 2; y < one.height() - 2; ++y)
    {
        for (int x = 2; x < one.width() - 2; ++x)
        {
            bool flat = true;
            int apart = 0;
            for (const int shift : {0, 8, 16})
            {
                flat = flat && SpreadAround(one, x, y, shift) <= SmallSpread &&
                       SpreadAround(other, x, y, shift) <= SmallSpread;
                apart = std::max(apart, std::abs(int(one.pixel(x, y) >> shift & 0xFF) -
                                                 int(other.pixel(x, y) >> shift & 0xFF)));
            }
            if (!flat)
                continue;
            ++result.compared;
            result.worst = std::max(result.worst, apart);
        }
    }
    return result;
}

} // namespace

/// The player whose viewers draw through OpenGL.
class tst_PlayerOpenGL : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void TheTrialPasses();
    void PicturesArriveReadyForTheTexture();
    void PicturesBringTheirContext();
    void EveryFrameSoughtIsOnScreen();
    void Plays();
    void AStrokeShowsAsInTheSoftwareViewer_data();
    void AStrokeShowsAsInTheSoftwareViewer();
    void UndoTakesTheStrokeAway();
    void AnotherMediumTakesThePlace();
    void AScreenshotHoldsPictureAndStroke();
    void TheSwitchActsAtTheNextStart();
    void SoftwareThisTimeLeavesTheSetting();
    void MultisamplingWorksOrSaysWhatItGot();

private:
    void Start(ViewerType type);
    void DrawLine(const QPoint& from, const QPoint& to);
    QImage Screen() const { return PlayerProbe::ScreenOfViewer(mWindow.get()); }

    std::unique_ptr<PlayerWindow> mWindow;
};

void tst_PlayerOpenGL::init()
{
    Settings::RestoreDefaults();
    Settings::hardwareAcceleratedPlayback = true;
}

void tst_PlayerOpenGL::cleanup()
{
    mWindow.reset();
    Settings::RestoreDefaults();
}

void tst_PlayerOpenGL::Start(ViewerType type)
{
    mWindow = ShowPlayerWindow(ViewerBackEndChoice::Tried(type));
    QCOMPARE(mWindow->Viewer()->GetViewerType(), type);
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    Settings::drawColor = QColor(255, 0, 0);
    Settings::pencilWidth = 0.02f;
}

void tst_PlayerOpenGL::DrawLine(const QPoint& from, const QPoint& to)
{
    QTest::keyClick(mWindow.get(), Qt::Key_P);
    ViewerWidget* const viewer = mWindow->Viewer();
    InputEvents::Press(viewer, from);
    for (int step = 1; step <= 4; ++step)
    {
        InputEvents::Move(viewer, from + (to - from) * step / 4, Qt::LeftButton);
        // Each move is painted on its own, so that the stroke grows on the picture kept.
        Screen();
    }
    InputEvents::Release(viewer, to);
    // Away, so that the preview of the cursor is not in the picture.
    InputEvents::Move(mWindow.get(), QPoint(mWindow->width() - 5, mWindow->height() - 5));
    mWindow->Viewer()->RefreshAll();
}

void tst_PlayerOpenGL::TheTrialPasses()
{
    const ViewerBackEndChoice choice = ViewerBackEndChoice::Tried(OpenGL);
    QCOMPARE(choice.type, OpenGL);
    QCOMPARE(choice.message, QString());
    QSignalSpy warnings(Logger::GetInstance(), &Logger::WarningLogged);
    QSignalSpy errors(Logger::GetInstance(), &Logger::ErrorLogged);
    mWindow = ShowPlayerWindow(choice);
    QCOMPARE(mWindow->Viewer()->GetViewerType(), OpenGL);
    QVERIFY(mWindow->Viewer()->IsInitialized());
    QCoreApplication::processEvents();
    QVERIFY(warnings.isEmpty() && errors.isEmpty());
    QCOMPARE(mWindow->findChild<MessageBar*>()->Message(), QString());
}

void tst_PlayerOpenGL::PicturesArriveReadyForTheTexture()
{
    for (const auto& [type, format] :
         {std::make_pair(OpenGL, QImage::Format_RGB888), std::make_pair(Software, QImage::Format_RGB32)})
    {
        Start(type);
        QVector<QImage::Format> formats;
        connect(mWindow->Playback(), &PlaybackController::PictureReady, this,
                [&formats](int, int, const ReadResult& result) { formats << result.image.format(); });
        QTest::keyClick(mWindow.get(), Qt::Key_Right);
        QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 2);
        QCOMPARE(formats, (QVector<QImage::Format>{format}));
    }
}

void tst_PlayerOpenGL::PicturesBringTheirContext()
{
    mWindow = ShowPlayerWindow(ViewerBackEndChoice::Tried(OpenGL));
    ViewerWidget* const viewer = mWindow->Viewer();
    QImage picture(64, 64, QImage::Format_RGB888);
    picture.fill(Qt::green);
    for (const QImage& image : {picture, QImage()})
    {
        viewer->findChild<QOpenGLWidget*>()->doneCurrent();
        QVERIFY(!QOpenGLContext::currentContext());
        ShowPicture(viewer, 0, image);
        QVERIFY(!QOpenGLContext::currentContext());
        QCOMPARE(viewer->GetImage().pixelColor(viewer->rect().center()),
                 QColor(image.isNull() ? Qt::black : Qt::green));
    }
}

void tst_PlayerOpenGL::EveryFrameSoughtIsOnScreen()
{
    Start(OpenGL);
    for (const int frame : {1, 37, 36, 60, 2})
    {
        mWindow->Playback()->SeekFrame(frame);
        QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), frame);
        QCOMPARE(PlayerProbe::NumberOnScreen(mWindow.get()), frame);
    }
}

void tst_PlayerOpenGL::Plays()
{
    Start(OpenGL);
    QTest::keyClick(mWindow.get(), Qt::Key_Space);
    QTRY_VERIFY_WITH_TIMEOUT(mWindow->Playback()->ShownFrame(0) >= 10, 10000);
    QTest::keyClick(mWindow.get(), Qt::Key_Space);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), mWindow->Playback()->CurrentFrame());
    QCOMPARE(PlayerProbe::NumberOnScreen(mWindow.get()), mWindow->Playback()->CurrentFrame());
}

void tst_PlayerOpenGL::AStrokeShowsAsInTheSoftwareViewer_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<int>("viewer");
    QTest::newRow("single") << QStringLiteral("view.single") << 0;
    QTest::newRow("side by side, A") << QStringLiteral("view.horizontal") << 0;
    QTest::newRow("stacked, B") << QStringLiteral("view.vertical") << 1;
}

void tst_PlayerOpenGL::AStrokeShowsAsInTheSoftwareViewer()
{
    QFETCH(QString, layout);
    QFETCH(int, viewer);
    std::array<QImage, 2> before;
    std::array<QImage, 2> after;
    for (const ViewerType type : {Software, OpenGL})
    {
        Start(type);
        if (viewer == 1)
        {
            mWindow->OpenFiles({PlayerProbe::SampleMovie()}, 1);
            QTRY_COMPARE(mWindow->Playback()->ShownFrame(1), 1);
        }
        mWindow->Commands()->Run(layout);
        const auto slot = static_cast<size_t>(type);
        before[slot] = Screen();
        const QPoint center = PlayerProbe::PictureRect(mWindow.get(), viewer).center();
        DrawLine(center - QPoint(60, 30), center + QPoint(60, 30));
        after[slot] = Screen();
        QCOMPARE(after[slot].pixel(center), qRgb(255, 0, 0));
        QCOMPARE(after[slot].pixel(center + QPoint(0, 30)), before[slot].pixel(center + QPoint(0, 30)));
    }
    for (const auto& pictures : {before, after})
    {
        QCOMPARE(pictures[0].size(), pictures[1].size());
        const FlatDifference difference = DifferenceWhereFlat(pictures[0], pictures[1]);
        // Most of the area has no edge.
        QVERIFY2(difference.compared > pictures[0].width() * pictures[0].height() / 2,
                 qPrintable(QString::number(difference.compared)));
        QVERIFY2(difference.worst <= SmallSpread, qPrintable(QString::number(difference.worst)));
    }
}

void tst_PlayerOpenGL::UndoTakesTheStrokeAway()
{
    Start(OpenGL);
    QTest::keyClick(mWindow.get(), Qt::Key_P);
    const QImage before = Screen();
    const QPoint center = PlayerProbe::PictureRect(mWindow.get(), 0).center();
    DrawLine(center - QPoint(60, 30), center + QPoint(60, 30));
    const QImage drawn = Screen();
    QVERIFY(drawn != before);
    QTest::keyClick(mWindow.get(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(Screen() == before);
    QTest::keyClick(mWindow.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(Screen() == drawn);
}

void tst_PlayerOpenGL::AnotherMediumTakesThePlace()
{
    Start(OpenGL);
    const QString other = NumberedMedia::Movie(
        QStringLiteral("opengl-tall.mp4"), 12, QStringLiteral("24"),
        QStringLiteral("-c:v libx264 -preset veryfast -pix_fmt yuv420p").split(QLatin1Char(' ')),
        QSize(240, 240));
    QVERIFY(!other.isEmpty());
    mWindow->OpenFiles({other}, 0);
    QTRY_COMPARE(mWindow->Playback()->TimelineOf(0)->GetEndTime() < 1000000, true);
    QTRY_COMPARE(mWindow->Playback()->ShownFrame(0), 1);
    const QRect picture = PlayerProbe::PictureRect(mWindow.get(), 0, QSize(240, 240));
    const QImage screen = Screen();
    QCOMPARE(NumberedMedia::NumberIn(screen.copy(picture)), 1);
    // Nothing of the wider picture is left beside it.
    QCOMPARE(screen.pixel(picture.left() - 5, picture.center().y()), qRgb(0, 0, 0));
    QCOMPARE(screen.pixel(picture.right() + 5, picture.center().y()), qRgb(0, 0, 0));
    // A picture that could not be read leaves black.
    Q_EMIT mWindow->Playback()->PictureReady(0, 1, ReadResult());
    QCOMPARE(Screen().pixel(picture.center()), qRgb(0, 0, 0));
}

void tst_PlayerOpenGL::AScreenshotHoldsPictureAndStroke()
{
    Start(OpenGL);
    const QPoint center = PlayerProbe::PictureRect(mWindow.get(), 0).center();
    DrawLine(center - QPoint(60, 30), center + QPoint(60, 30));
    const QImage screen = Screen();
    const QRect area(mWindow->Viewer()->mapTo(mWindow.get(), QPoint(0, 0)), mWindow->Viewer()->size());
    const QImage grabbed = GrabWindow(mWindow.get()).toImage().copy(area);
    QCOMPARE(grabbed.convertToFormat(QImage::Format_RGB32), screen.convertToFormat(QImage::Format_RGB32));
    QCOMPARE(grabbed.pixel(center), qRgb(255, 0, 0));
}

void tst_PlayerOpenGL::TheSwitchActsAtTheNextStart()
{
    Start(OpenGL);
    QVERIFY(mWindow->Commands()->Action(QStringLiteral("view.hardware"))->isChecked());
    QVERIFY(mWindow->Commands()->Run(QStringLiteral("view.hardware")));
    QVERIFY(!Settings::hardwareAcceleratedPlayback);
    QVERIFY(!mWindow->Commands()->Action(QStringLiteral("view.hardware"))->isChecked());
    QCOMPARE(mWindow->Viewer()->GetViewerType(), OpenGL);
    QCOMPARE(PlayerProbe::NumberOnScreen(mWindow.get()), 1);
    Settings::RestoreDefaults();
    Settings::hardwareAcceleratedPlayback = true;
    Settings::ReadUserConfig();
    QCOMPARE(ViewerBackEndChoice::BySettings().type, Software);
    QCOMPARE(PlayerWindow().Viewer()->GetViewerType(), Software);
    QVERIFY(mWindow->Commands()->Run(QStringLiteral("view.hardware")));
    Settings::RestoreDefaults();
    Settings::ReadUserConfig();
    QCOMPARE(ViewerBackEndChoice::BySettings().type, OpenGL);
    QCOMPARE(PlayerWindow().Viewer()->GetViewerType(), OpenGL);
}

void tst_PlayerOpenGL::SoftwareThisTimeLeavesTheSetting()
{
    Start(Software);
    QVERIFY(Settings::hardwareAcceleratedPlayback);
    QCOMPARE(mWindow->findChild<MessageBar*>()->Message(), QString());
    Settings::hardwareAcceleratedPlayback = false;
    Start(OpenGL);
    QVERIFY(!Settings::hardwareAcceleratedPlayback);
}

void tst_PlayerOpenGL::MultisamplingWorksOrSaysWhatItGot()
{
    Settings::highQualityRendering = true;
    QSignalSpy infos(Logger::GetInstance(), &Logger::InfoLogged);
    mWindow = ShowPlayerWindow(ViewerBackEndChoice::Tried(OpenGL));
    auto* const glWidget = mWindow->Viewer()->findChild<QOpenGLWidget*>();
    glWidget->makeCurrent();
    GLint most = 0;
    GLint samples = 0;
    glWidget->context()->functions()->glGetIntegerv(GL_MAX_SAMPLES, &most);
    glWidget->context()->functions()->glGetIntegerv(GL_SAMPLES, &samples);
    glWidget->doneCurrent();
    // A driver without any multisampling gives none, and may call that one sample at most.
    QVERIFY(samples > 0 || most <= 1);
    QStringList lines;
    for (const QList<QVariant>& info : qAsConst(infos))
        lines << info[0].toString();
    const QString expected =
        QStringLiteral("High-quality rendering: the driver gives %1 of 10 samples a pixel").arg(samples);
    QCOMPARE(lines.count(expected), samples < 10 ? 1 : 0);
    QVERIFY(PlayerProbe::ShowWith(mWindow.get(), PlayerProbe::SampleMovie()));
    QCOMPARE(PlayerProbe::NumberOnScreen(mWindow.get()), 1);
    QCOMPARE(mWindow->findChild<MessageBar*>()->Message(), QString());
}

static const TestRegistration<tst_PlayerOpenGL> PlayerOpenGLRegistration;

#include "tst_PlayerOpenGL.moc"
