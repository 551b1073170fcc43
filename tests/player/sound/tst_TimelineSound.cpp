// SPDX-License-Identifier: MIT
#include "media/MediaInfo.h"
#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "sound/SoundRig.h"
#include "sound/TimelineSound.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <algorithm>

class tst_TimelineSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ASourceTimelineIsOneSegment();
    void ATimelineOfElementsHasASegmentForEachThatSounds();
    void SegmentsFollowEachOtherToTheSample();
    void GapsAreSilentAndOverlapsAreMixed();
    void BackwardsIsTheSameTheOtherWayRound();
    void AMediumThatCannotBeOpenedIsReportedOnce();
    void MediaStayOpenAndFewOfThem();

private:
    static std::vector<float> Read(TimelineSound& sound, int64_t first, int count);
};

std::vector<float> tst_TimelineSound::Read(TimelineSound& sound, int64_t first, int count)
{
    std::vector<float> stereo(2 * size_t(count), 7.0f);
    sound.Read(first, count, stereo.data());
    return stereo;
}

void tst_TimelineSound::ASourceTimelineIsOneSegment()
{
    MediaInfo info;
    info.path = QStringLiteral("/media/a.mov");
    info.duration = 2000000;
    info.startTime = 80000;
    QVERIFY(AudioSegmentsOf(info).empty());
    info.hasAudio = true;
    const std::vector<AudioSegment> segments = AudioSegmentsOf(info);
    QCOMPARE(segments.size(), size_t(1));
    QVERIFY(segments[0] == (AudioSegment{info.path, 0, 0, 2000000, 80000}));
}

void tst_TimelineSound::ATimelineOfElementsHasASegmentForEachThatSounds()
{
    const auto element = [](const char* path, int frames, bool hasAudio, bool missing)
    {
        MediaInfo info;
        info.path = QLatin1String(path);
        info.frameCount = frames;
        info.frameRate = FrameRate{25, 1};
        info.hasAudio = hasAudio;
        info.startTime = 40000;
        const auto source = std::make_shared<const MediaSource>(QUuid::createUuid(), info, missing);
        return std::make_shared<ElementObject>(std::make_shared<MediaTimeline>(source));
    };
    ElementTimeline timeline(QStringLiteral("cut"));
    const auto cut = element("/media/cut.mov", 100, true, false);
    cut->SourceTimeline()->SetRange({26, 75});
    timeline.SetElements({element("/media/a.mov", 50, true, false),
                          element("/media/mute.mov", 25, false, false),
                          element("/media/lost.mov", 25, true, true), cut});
    const std::vector<AudioSegment> segments = AudioSegmentsOf(timeline);
    QCOMPARE(segments.size(), size_t(2));
    QVERIFY(segments[0] == (AudioSegment{QStringLiteral("/media/a.mov"), 0, 0, 2000000, 40000}));
    QVERIFY(segments[1] ==
            (AudioSegment{QStringLiteral("/media/cut.mov"), 1000000, 4000000, 2000000, 40000}));
}

void tst_TimelineSound::SegmentsFollowEachOtherToTheSample()
{
    TimelineSound sound(TellingSource::Opener(TellingSource::Exact));
    // The second 1 to 2 of one medium, then frames 11 to 20 of another at 24 frames a second.
    sound.SetSegments(
        {{QStringLiteral("/a"), 1000000, 0, 1000000, 0}, {QStringLiteral("/b"), 416667, 1000000, 416667, 0}},
        48000);
    const std::vector<float> stereo = Read(sound, 47900, 300);
    for (int i = 0; i < 300; ++i)
    {
        const int64_t wanted = i < 100 ? 48000 + 47900 + i : 20000 + i - 100;
        QCOMPARE(TellingSource::ExactPlace(stereo.data() + 2 * i), wanted);
    }
}

void tst_TimelineSound::GapsAreSilentAndOverlapsAreMixed()
{
    TimelineSound sound(TellingSource::Opener(TellingSource::Slope));
    sound.SetSegments({{QStringLiteral("/a"), 0, 1000000, 1000000, 0},
                       {QStringLiteral("/b"), 0, 1500000, 1000000, 0},
                       {QStringLiteral("/c"), 0, 5000000, 0, 0}},
                      1000);
    const std::vector<float> stereo = Read(sound, 0, 6000);
    const auto place = [&](int frame)
    { return std::lround(TellingSource::SlopePlace(stereo.data() + 2 * frame)); };
    for (int frame = 0; frame < 6000; ++frame)
    {
        long wanted = 0;
        if (frame >= 1000 && frame < 2000)
            wanted += frame - 1000;
        if (frame >= 1500 && frame < 2500)
            wanted += frame - 1500;
        QCOMPARE(place(frame), wanted);
    }
}

void tst_TimelineSound::BackwardsIsTheSameTheOtherWayRound()
{
    TimelineSound sound(TellingSource::Opener(TellingSource::Exact));
    sound.SetSegments(
        {{QStringLiteral("/a"), 0, 0, 5000000, 0}, {QStringLiteral("/b"), 0, 5000000, 5000000, 0}}, 8000);
    std::vector<float> stereo(2 * 30000);
    // Across the borders of what is read at once.
    for (int end = 60000; end > 30000; end -= 1000)
        sound.ReadBackwards(end - 1000, 1000, stereo.data() + 2 * (60000 - end));
    const std::vector<float> forwards = Read(sound, 30000, 30000);
    for (size_t i = 0; i < 30000; ++i)
    {
        QCOMPARE(stereo[2 * i], forwards[2 * (29999 - i)]);
        QCOMPARE(stereo[2 * i + 1], forwards[2 * (29999 - i) + 1]);
    }
}

void tst_TimelineSound::AMediumThatCannotBeOpenedIsReportedOnce()
{
    WarningList warnings;
    int tried = 0;
    TimelineSound sound(
        [&](const AudioSegment& segment, int, QString* error) -> std::unique_ptr<AudioSource>
        {
            ++tried;
            *error = segment.path + QStringLiteral(" has no decoder");
            return nullptr;
        });
    for (int turn = 0; turn < 5; ++turn)
    {
        sound.SetSegments(
            {{QStringLiteral("/a"), 0, 0, 1000000, 0}, {QStringLiteral("/b"), 0, 0, 1000000, 0}}, 48000);
        sound.OpenMedia();
        const std::vector<float> stereo = Read(sound, 100, 1000);
        QVERIFY(std::all_of(stereo.begin(), stereo.end(), [](float sample) { return sample == 0.0f; }));
    }
    QCOMPARE(tried, 2);
    QCOMPARE(warnings.texts,
             (QStringList{QStringLiteral("/a has no decoder"), QStringLiteral("/b has no decoder")}));
}

void tst_TimelineSound::MediaStayOpenAndFewOfThem()
{
    QStringList opened;
    int living = 0;
    struct Counted : TellingSource
    {
        explicit Counted(int* living) : TellingSource(Exact), mLiving(living) { ++*mLiving; }
        ~Counted() override { --*mLiving; }
        int* mLiving;
    };
    TimelineSound sound(
        [&](const AudioSegment& segment, int, QString*) -> std::unique_ptr<AudioSource>
        {
            opened << segment.path;
            return std::make_unique<Counted>(&living);
        });
    std::vector<AudioSegment> segments;
    for (int i = 0; i < 40; ++i)
        segments.push_back({QStringLiteral("/%1").arg(i), 0, i * int64_t(1000000), 1000000, 0});
    sound.SetSegments(segments, 1000);
    Read(sound, 0, 40000);
    QCOMPARE(opened.size(), 40);
    QVERIFY(living <= 8);
    Read(sound, 39000, 1000);
    sound.SetSegments(segments, 1000);
    Read(sound, 38000, 1000);
    QCOMPARE(opened.size(), 40);
    Read(sound, 0, 1000);
    QCOMPARE(opened.size(), 41);
    // Another rate makes all of them others.
    sound.SetSegments(segments, 2000);
    Read(sound, 0, 1000);
    QCOMPARE(opened.size(), 42);
    QCOMPARE(living, 1);
}

static const TestRegistration<tst_TimelineSound> TimelineSoundRegistration;

#include "tst_TimelineSound.moc"
