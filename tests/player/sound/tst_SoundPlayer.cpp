// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "sound/SoundRig.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace
{

using Places = std::vector<int64_t>;

/// The places that are heard, from the first one that is neither silent nor part of the ramp at the start.
Places PlacesIn(const std::vector<float>& heard)
{
    Places places;
    size_t begin = 0;
    while (begin < heard.size() && heard[begin] == 0.0f && heard[begin + 1] == 0.0f)
        begin += 2;
    // The ramp's first frame is silent itself.
    for (size_t i = begin + 2 * size_t(SoundFeed::RampFrames - 1); i < heard.size(); i += 2)
        places.push_back(TellingSource::ExactPlace(heard.data() + i));
    return places;
}

bool IsSilent(const std::vector<float>& heard)
{
    return std::all_of(heard.begin(), heard.end(), [](float sample) { return sample == 0.0f; });
}

} // namespace

class tst_SoundPlayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Settings::RestoreDefaults(); }
    void ThePictureWaitsForTheSound();
    void PlayingOnIsHeardSampleForSample();
    void ASeekIsHeardAtItsPlace();
    void LoopsGoOnWithoutAGap();
    void BackwardsIsHeardBackwards();
    void AnotherLoopTypeHoldsFromThenOn();
    void APauseIsSilentAtOnce();
    void StoppingAndStartingWithinOneBlockLeavesNothingBehind();
    void SteppedPlaybackIsSilent();
    void ATimelineWithoutSoundHasASteadyClock();
    void VolumeAndMuteLeaveTheClockAlone();
    void WithoutADeviceItPlaysSilentlyAndSaysSoOnce();
    void ADeviceThatComesLaterIsUsed();
    void ADeviceThatStopsIsLeftAlone();
    void ScrubbingPlaysGrains();
    void GrainsFollowTheSetting_data();
    void GrainsFollowTheSetting();
    void PlayingAfterAGrainIsInStep();
    void TheOtherTimelineIsHeardWhenItLeads();
    void OnItsOwnThreadItKeepsInStep();
    void EitherMayGoFirst();
    void PreparingOpensTheDeviceAndTheMedia();
};

void tst_SoundPlayer::ThePictureWaitsForTheSound()
{
    SoundRig rig({});
    rig.playback->SeekFrame(10);
    rig.playback->Play(1);
    QTest::qWait(150);
    rig.Tick();
    QCOMPARE(rig.playback->CurrentFrame(), 10);
    // What is heard first has just begun when the latency has gone by: a frame later the next one is due.
    rig.Run(rig.options.latency + 2000 - 20, 10);
    QCOMPARE(rig.playback->CurrentFrame(), 10);
    rig.Run(20, 10);
    QCOMPARE(rig.playback->CurrentFrame(), 11);
}

void tst_SoundPlayer::PlayingOnIsHeardSampleForSample()
{
    SoundRig rig({});
    rig.playback->SeekFrame(25);
    rig.playback->Play(1);
    const Places places = PlacesIn(rig.Run(48000));
    QVERIFY(places.size() > 44000);
    QCOMPARE(places.front(), 24 * 2000 + SoundFeed::RampFrames);
    for (size_t i = 1; i < places.size(); ++i)
        QCOMPARE(places[i], places[i - 1] + 1);
}

void tst_SoundPlayer::ASeekIsHeardAtItsPlace()
{
    SoundRig rig({});
    rig.playback->Play(1);
    rig.Run(20000);
    for (const int frame : {500, 7, 2000, 2001, 1})
    {
        rig.playback->SeekFrame(frame);
        QVERIFY(rig.playback->IsPlaying());
        // The old sound is still on its way through the device, then comes the new one's ramp.
        const std::vector<float> heard = rig.Run(20000);
        const std::vector<float> after(
            heard.begin() + 2 * (rig.options.latency + 512 + SoundFeed::RampFrames), heard.end());
        Places places;
        for (size_t i = 0; i < after.size(); i += 2)
            places.push_back(TellingSource::ExactPlace(after.data() + i));
        QVERIFY(places.front() >= (frame - 1) * 2000 && places.front() < (frame - 1) * 2000 + 1000);
        for (size_t i = 1; i < places.size(); ++i)
            QCOMPARE(places[i], places[i - 1] + 1);
        QCOMPARE(rig.playback->CurrentFrame(), rig.FrameOfPlace(double(places.back())));
    }
}

void tst_SoundPlayer::LoopsGoOnWithoutAGap()
{
    Settings::loopType = Loop;
    SoundRig rig({});
    rig.playback->SetRange(rig.timeline->FrameToTime(31), rig.timeline->FrameToTime(36));
    rig.playback->SeekFrame(31);
    rig.playback->Play(1);
    const Places places = PlacesIn(rig.Run(10 * 12000 + 3000));
    int laps = 0;
    for (size_t i = 1; i < places.size(); ++i)
    {
        const bool isEnd = places[i - 1] == 36 * 2000 - 1;
        laps += isEnd ? 1 : 0;
        QCOMPARE(places[i], isEnd ? 30 * 2000 : places[i - 1] + 1);
    }
    QVERIFY(laps >= 9);
}

void tst_SoundPlayer::BackwardsIsHeardBackwards()
{
    SoundRig rig({});
    rig.playback->SeekFrame(200);
    rig.playback->Play(-1);
    // More than is read at once.
    const Places places = PlacesIn(rig.Run(150000));
    QCOMPARE(places.front(), 200 * 2000 - 1 - SoundFeed::RampFrames);
    for (size_t i = 1; i < places.size(); ++i)
        QCOMPARE(places[i], places[i - 1] - 1);
    QVERIFY(places.size() > 140000);
    QCOMPARE(rig.playback->CurrentFrame(), rig.FrameOfPlace(double(places.back())));
}

void tst_SoundPlayer::AnotherLoopTypeHoldsFromThenOn()
{
    Settings::loopType = Loop;
    SoundRig rig({});
    rig.playback->SetRange(0, rig.timeline->FrameToTime(20));
    rig.playback->Play(1);
    rig.Run(3 * 40000);
    for (const LoopType type : {PingPong, NoLoop, Loop, PingPong, NoLoop})
    {
        const int before = rig.playback->CurrentFrame();
        Settings::loopType = type;
        rig.Tick();
        QCOMPARE(rig.playback->CurrentFrame(), before);
        QVERIFY(rig.playback->IsPlaying());
        const std::vector<float> heard = rig.Run(4000, 50);
        const int64_t place = TellingSource::ExactPlace(heard.data() + heard.size() - 2);
        QVERIFY(std::abs(rig.FrameOfPlace(double(place)) - rig.playback->CurrentFrame()) <= 1);
    }
    rig.Run(60000);
    QVERIFY(!rig.playback->IsPlaying());
}

void tst_SoundPlayer::APauseIsSilentAtOnce()
{
    SoundRig::Options options;
    options.latency = 0;
    SoundRig rig(options);
    rig.playback->Play(1);
    rig.Run(30000);
    rig.playback->Pause();
    // What the device holds already is one block.
    std::vector<float> heard = rig.Run(20000);
    QVERIFY(IsSilent(std::vector<float>(heard.begin() + 2 * (512 + SoundFeed::RampFrames), heard.end())));
    const int frame = rig.playback->CurrentFrame();
    rig.Run(20000);
    QCOMPARE(rig.playback->CurrentFrame(), frame);
    rig.playback->Play(1);
    const Places places = PlacesIn(rig.Run(10000));
    QCOMPARE(places.front(), (frame - 1) * 2000 + SoundFeed::RampFrames);
}

void tst_SoundPlayer::StoppingAndStartingWithinOneBlockLeavesNothingBehind()
{
    SoundRig rig({});
    for (int turn = 1; turn < 50; ++turn)
    {
        rig.playback->SeekFrame(turn * 20);
        rig.playback->Play(1);
        rig.player->Renderer()->Pump();
        rig.playback->Pause();
    }
    rig.playback->SeekFrame(2000);
    rig.playback->Play(1);
    const Places places = PlacesIn(rig.Run(48000));
    QCOMPARE(places.front(), 1999 * 2000 + SoundFeed::RampFrames);
    QCOMPARE(places.back(), places.front() + int64_t(places.size()) - 1);
    QCOMPARE(rig.playback->CurrentFrame(), rig.FrameOfPlace(double(places.back())));
}

void tst_SoundPlayer::SteppedPlaybackIsSilent()
{
    SoundRig rig({});
    rig.playback->SetStepped(true);
    rig.playback->Play(1);
    QVERIFY(!rig.player->IsLeading());
    QVERIFY(IsSilent(rig.Run(20000)));
    // Time goes by steadily: a frame is 40 milliseconds at most.
    QTRY_VERIFY(rig.playback->CurrentFrame() > 3);
    rig.playback->SetStepped(false);
    QVERIFY(rig.player->IsLeading());
    QVERIFY(!IsSilent(rig.Run(20000)));
}

void tst_SoundPlayer::ATimelineWithoutSoundHasASteadyClock()
{
    SoundRig::Options options;
    options.hasSound = false;
    SoundRig rig(options);
    rig.playback->Play(1);
    QVERIFY(!rig.player->IsLeading());
    QTRY_VERIFY_WITH_TIMEOUT(rig.playback->CurrentFrame() > 3, 5000);
    rig.player->Renderer()->Pump();
    QCOMPARE(rig.sink->OpenCount(), 0);
    QVERIFY(rig.warnings.texts.isEmpty());
}

void tst_SoundPlayer::VolumeAndMuteLeaveTheClockAlone()
{
    SoundRig::Options options;
    options.kind = TellingSource::Slope;
    options.latency = 0;
    SoundRig rig(options);
    rig.player->SetVolume(0.5f);
    rig.playback->SeekFrame(1000);
    rig.playback->Play(1);
    const auto level = [&]
    {
        const std::vector<float> heard = rig.Run(4800);
        const double place = double(rig.player->Played()) * 48e-3;
        return TellingSource::SlopePlace(heard.data() + heard.size() - 2) / (999.0 * 2000.0 + place);
    };
    QVERIFY(std::abs(level() - 0.5) < 0.001);
    rig.player->SetMuted(true);
    const int frame = rig.playback->CurrentFrame();
    QCOMPARE(level(), 0.0);
    QVERIFY(rig.playback->CurrentFrame() >= frame + 2);
    rig.player->SetVolume(0.25f);
    QCOMPARE(level(), 0.0);
    rig.player->SetMuted(false);
    QVERIFY(std::abs(level() - 0.25) < 0.001);
    rig.player->SetVolume(1.0f);
    QVERIFY(std::abs(level() - 1.0) < 0.001);
}

void tst_SoundPlayer::WithoutADeviceItPlaysSilentlyAndSaysSoOnce()
{
    SoundRig rig({});
    rig.sink->SetObstacle(QStringLiteral("there is no sound device"));
    for (int turn = 0; turn < 3; ++turn)
    {
        rig.playback->SeekFrame(1);
        rig.playback->Play(1);
        rig.player->Renderer()->Pump();
        // By the controller's own timer.
        QTRY_VERIFY_WITH_TIMEOUT(rig.playback->CurrentFrame() > 3, 5000);
        QVERIFY(!rig.player->IsLeading());
        rig.playback->Pause();
        rig.playback->SeekTime(500000, true);
        rig.player->Renderer()->Pump();
    }
    QCOMPARE(rig.warnings.texts, QStringList{QStringLiteral("Playback is silent: there is no sound device")});
    // Looking for a device takes a while, so it isn't done each time.
    QCOMPARE(rig.sink->OpenCount(), 1);
}

void tst_SoundPlayer::ADeviceThatComesLaterIsUsed()
{
    SoundRig rig({});
    rig.sink->SetObstacle(QStringLiteral("there is no sound device"));
    rig.playback->Play(1);
    rig.player->Renderer()->Pump();
    rig.Tick();
    QVERIFY(!rig.player->IsLeading());
    rig.sink->SetObstacle(QString());
    QTRY_VERIFY_WITH_TIMEOUT(
        (rig.playback->SeekFrame(100), rig.player->Renderer()->Pump(), rig.sink->IsOpen()), 8000);
    QVERIFY(!IsSilent(rig.Run(20000)));
    QVERIFY(rig.player->IsLeading());
    QCOMPARE(rig.warnings.texts.size(), 1);
}

void tst_SoundPlayer::ADeviceThatStopsIsLeftAlone()
{
    SoundRig rig({});
    rig.player->SetPatience(100);
    rig.playback->Play(1);
    rig.Run(24000);
    const int frame = rig.playback->CurrentFrame();
    QVERIFY(frame > 10);
    // Nothing pulls any more.
    QTRY_VERIFY_WITH_TIMEOUT(rig.playback->CurrentFrame() > frame + 4, 5000);
    QVERIFY(!rig.player->IsLeading());
    QVERIFY(rig.playback->CurrentFrame() < frame + 200);
    QCOMPARE(rig.warnings.texts.size(), 1);
    rig.player->Renderer()->Pump();
    QVERIFY(!rig.sink->IsOpen());
    rig.playback->Pause();
    rig.playback->Play(1);
    rig.player->Renderer()->Pump();
    rig.Tick();
    QVERIFY(!rig.player->IsLeading());
    QCOMPARE(rig.warnings.texts.size(), 1);
}

void tst_SoundPlayer::ScrubbingPlaysGrains()
{
    SoundRig::Options options;
    options.latency = 0;
    SoundRig rig(options);
    rig.playback->SeekTime(10000000, true);
    std::vector<float> heard = rig.Run(10000);
    size_t first = 0;
    size_t last = 0;
    for (size_t i = 0; i < heard.size(); ++i)
    {
        first = first == 0 && heard[i] != 0.0f ? i : first;
        last = heard[i] != 0.0f ? i : last;
    }
    // 80 ms, silent before and behind.
    const size_t length = (last - first) / 2;
    QVERIFY2(length > 3800 && length < 3860, qPrintable(QString::number(length)));
    // In the middle of the grain the places are heard as they are.
    const size_t middle = 2 * (first / 2 + length / 2);
    const int64_t place = TellingSource::ExactPlace(heard.data() + middle);
    QVERIFY2(std::abs(place - (480000 + 1920)) < 60, qPrintable(QString::number(place)));
    // Places that come fast are heard one after another.
    for (int turn = 0; turn < 30; ++turn)
    {
        rig.playback->SeekTime(20000000 + turn * 100000, true);
        heard = rig.Run(480);
    }
    heard = rig.Run(2400);
    QVERIFY(!IsSilent(heard));
    QVERIFY(IsSilent(std::vector<float>((rig.Run(9600), rig.Run(4800)))));
}

void tst_SoundPlayer::GrainsFollowTheSetting_data()
{
    QTest::addColumn<bool>("setting");
    QTest::addColumn<bool>("asked");
    QTest::addColumn<bool>("playing");
    QTest::addColumn<bool>("sounds");
    QTest::newRow("on") << true << true << false << true;
    QTest::newRow("off") << false << true << false << false;
    QTest::newRow("not asked for") << true << false << false << false;
    QTest::newRow("playing") << true << true << true << false;
}

void tst_SoundPlayer::GrainsFollowTheSetting()
{
    QFETCH(bool, setting);
    QFETCH(bool, asked);
    QFETCH(bool, playing);
    QFETCH(bool, sounds);
    Settings::audioScrub = setting;
    SoundRig rig({});
    if (playing)
    {
        rig.playback->Play(1);
        rig.Run(10000);
    }
    rig.playback->SeekTime(10000000, asked);
    const std::vector<float> heard = rig.Run(20000);
    if (playing)
    {
        // Playback goes on from there, for longer than a grain.
        const int64_t place = TellingSource::ExactPlace(heard.data() + heard.size() - 2);
        QVERIFY(place > 480000 + 15000 && place < 500000);
        QVERIFY(rig.player->IsLeading());
    }
    else
    {
        QCOMPARE(!IsSilent(heard), sounds);
    }
}

void tst_SoundPlayer::PlayingAfterAGrainIsInStep()
{
    SoundRig rig({});
    for (int turn = 0; turn < 5; ++turn)
    {
        rig.playback->SeekTime(3000000 + turn * 1000000, true);
        rig.Run(1000);
    }
    rig.playback->SeekFrame(101);
    rig.playback->Play(1);
    const std::vector<float> heard = rig.Run(30000);
    QCOMPARE(rig.playback->CurrentFrame(),
             rig.FrameOfPlace(double(TellingSource::ExactPlace(heard.data() + heard.size() - 2))));
    QVERIFY(rig.playback->CurrentFrame() > 110);
}

void tst_SoundPlayer::TheOtherTimelineIsHeardWhenItLeads()
{
    SoundRig::Options options;
    QStringList opened;
    options.opener = [&](const AudioSegment& segment, int, QString*)
    {
        opened << segment.path;
        return std::make_unique<TellingSource>(TellingSource::Exact);
    };
    SoundRig rig(options);
    MediaInfo info = rig.timeline->Info();
    info.frameRate = FrameRate{25, 1};
    rig.playback->SetTimeline(1, SoundRig::MakeTimeline(info));
    rig.playback->Play(1);
    rig.Run(20000);
    QCOMPARE(opened, QStringList{QStringLiteral("/media/told.mov")});
    rig.options.segments = {{QStringLiteral("/media/other.mov"), 0, 0, 90000000, 0}};
    rig.options.rate = info.frameRate;
    rig.playback->SetActiveViewer(1);
    const std::vector<float> heard = rig.Run(20000);
    QCOMPARE(opened.last(), QStringLiteral("/media/other.mov"));
    QCOMPARE(rig.playback->CurrentFrame(),
             rig.FrameOfPlace(double(TellingSource::ExactPlace(heard.data() + heard.size() - 2))));
}

void tst_SoundPlayer::OnItsOwnThreadItKeepsInStep()
{
    SoundRig::Options options;
    options.threading = SoundRenderer::Threading::Own;
    SoundRig rig(options);
    std::atomic<bool> ends{false};
    std::thread device(
        [&]
        {
            while (!ends)
            {
                rig.sink->Advance(480);
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        });
    for (int turn = 1; turn <= 10; ++turn)
    {
        rig.playback->SeekFrame(turn * 50);
        rig.playback->Play(turn % 2 == 0 ? 1 : -1);
        rig.player->SetVolume(float(turn) * 0.1f);
        const int start = rig.playback->CurrentFrame();
        QTRY_VERIFY_WITH_TIMEOUT(std::abs(rig.playback->CurrentFrame() - start) >= 3, 5000);
        QVERIFY(rig.player->IsLeading());
        if (turn % 3 == 0)
            rig.playback->Pause();
        rig.playback->SeekTime(turn * 100000, true);
    }
    rig.playback->Pause();
    ends = true;
    device.join();
    QVERIFY(rig.warnings.texts.isEmpty());
}

void tst_SoundPlayer::EitherMayGoFirst()
{
    {
        SoundRig rig({});
        rig.playback->Play(1);
        rig.Run(10000);
        rig.player.reset();
        QVERIFY(!rig.playback->IsPlaying());
        const int frame = rig.playback->CurrentFrame();
        rig.playback->Play(1);
        QTRY_VERIFY_WITH_TIMEOUT(rig.playback->CurrentFrame() > frame + 2, 5000);
    }
    SoundRig::Options options;
    options.threading = SoundRenderer::Threading::Own;
    SoundRig rig(options);
    rig.playback->Play(1);
    rig.playback.reset();
    rig.player.reset();
}

void tst_SoundPlayer::PreparingOpensTheDeviceAndTheMedia()
{
    SoundRig::Options options;
    int opened = 0;
    options.opener = [&](const AudioSegment&, int, QString*)
    {
        ++opened;
        return std::make_unique<TellingSource>(TellingSource::Exact);
    };
    SoundRig rig(options);
    // The timeline leads since it was set.
    rig.player->Renderer()->Pump();
    QVERIFY(rig.sink->IsOpen());
    QCOMPARE(opened, 1);
    QVERIFY(IsSilent(rig.Run(10000)));
    rig.playback->Play(1);
    QVERIFY(!IsSilent(rig.Run(10000)));
    // While it plays nothing is touched.
    rig.player->Prepare();
    const Places places = PlacesIn(rig.Run(10000));
    QCOMPARE(places.back(), places.front() + int64_t(places.size()) - 1);
    QCOMPARE(opened, 1);
}

static const TestRegistration<tst_SoundPlayer> SoundPlayerRegistration;

#include "tst_SoundPlayer.moc"
