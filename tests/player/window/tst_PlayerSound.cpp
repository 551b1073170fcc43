// SPDX-License-Identifier: MIT
#include "host/Logger.h"
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "sound/SoundPlayer.h"
#include "support/TestRegistry.h"
#include "window/PlayerProbe.h"
#include "window/PlayerWindow.h"

#include <QSignalSpy>
#include <QtTest>

/// Movies with sound in the whole player, on machines with a sound device and without.
class tst_PlayerSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { Settings::RestoreDefaults(); }
    void AMovieWithSoundPlays();
    void ScrubbingWithSoundSeeks();
    void TheWindowClosesWhilePlaying();

private:
    QString mMovie;
};

void tst_PlayerSound::init()
{
    Settings::RestoreDefaults();
    mMovie = NumberedMedia::Made(
        QStringLiteral("sounding.mp4"),
        QStringLiteral("-f lavfi -i testsrc=s=320x180:r=24:d=3 -f lavfi -i sine=d=3 -pix_fmt yuv420p "
                       "-c:v libx264 -preset veryfast -c:a aac")
            .split(QLatin1Char(' ')));
    QVERIFY(!mMovie.isEmpty());
}

void tst_PlayerSound::AMovieWithSoundPlays()
{
    QSignalSpy warnings(Logger::GetInstance(), SIGNAL(WarningLogged(QString)));
    PlayerWindow window;
    QVERIFY(PlayerProbe::ShowWith(&window, mMovie));
    auto* const sound = window.findChild<SoundPlayer*>();
    QVERIFY(sound);
    for (int turn = 0; turn < 3; ++turn)
    {
        window.Playback()->SeekFrame(1);
        window.Playback()->Play(1);
        QTRY_VERIFY_WITH_TIMEOUT(window.Playback()->ShownFrame(0) > 10, 10000);
        window.Playback()->Pause();
    }
    // A device leads and nothing is to be told, or there is none and that is told once.
    QCOMPARE(warnings.size(), sound->IsLeading() ? 0 : 1);
    if (!warnings.isEmpty())
        QVERIFY(warnings.first().first().toString().startsWith(QLatin1String("Playback is silent: ")));
}

void tst_PlayerSound::ScrubbingWithSoundSeeks()
{
    PlayerWindow window;
    QVERIFY(PlayerProbe::ShowWith(&window, mMovie));
    for (const int frame : {10, 70, 30, 31, 5})
    {
        window.Playback()->SeekTime(window.Playback()->LeadingTimeline()->FrameToTime(frame) +
                                        Settings::ROUNDING_ERROR_EXTRA_TIME,
                                    true);
        QTRY_COMPARE_WITH_TIMEOUT(window.Playback()->ShownFrame(0), frame, 10000);
    }
}

void tst_PlayerSound::TheWindowClosesWhilePlaying()
{
    PlayerWindow window;
    QVERIFY(PlayerProbe::ShowWith(&window, mMovie));
    window.Playback()->Play(1);
    QTRY_VERIFY_WITH_TIMEOUT(window.Playback()->ShownFrame(0) > 3, 10000);
}

static const TestRegistration<tst_PlayerSound> PlayerSoundRegistration;

#include "tst_PlayerSound.moc"
