// SPDX-License-Identifier: MIT
#include "OutputProbe.h"
#include "annotation/AnnotationStore.h"
#include "host/Settings.h"
#include "output/OutputPlan.h"
#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"

#include <QTemporaryFile>
#include <QtTest>

/// What a job is handed of a timeline.
class tst_OutputPlan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void FramesHaveTheirPlaces();
    void OtherViewerShowsTheSameTime();
    void DrawingsAreCopied();
    void HiddenDrawingsAreLeftOut();
    void SoundFollowsTheElements();
    void SoundOfARangeBeginsInIt();
    void SoundNeedsAFile();
    void EmptyTimelineIsBlack();

private:
    std::shared_ptr<MediaTimeline> Make(const QString& path, int frames, const FrameRate& rate, bool sound);

    QTemporaryFile mFile;
};

void tst_OutputPlan::init()
{
    QVERIFY(mFile.open());
}

std::shared_ptr<MediaTimeline> tst_OutputPlan::Make(const QString& path, int frames, const FrameRate& rate,
                                                    bool sound)
{
    MediaInfo info;
    info.path = path;
    info.width = 640;
    info.height = 360;
    info.frameCount = frames;
    info.frameRate = rate;
    info.duration = rate.FrameToTime(frames + 1);
    info.hasAudio = sound;
    info.audioChannels = 2;
    info.audioSampleRate = 48000;
    return std::make_shared<MediaTimeline>(std::make_shared<const MediaSource>(QUuid::createUuid(), info));
}

void tst_OutputPlan::FramesHaveTheirPlaces()
{
    const auto first = Make("/a.mov", 100, FrameRate{24, 1}, false);
    const auto other = Make("/b.mov", 50, FrameRate{24, 1}, false);
    first->SetRange(PlaybackRange{11, 20});
    const auto timeline = OutputProbe::TimelineOf({first, other, first});
    timeline->SetName("cut");
    OutputViewers viewers;
    viewers.timelines[1] = timeline.get();
    viewers.leading = 1;
    const OutputPlan plan = MakeOutputPlan(viewers, {1, 10, 11, 60, 61, 70}, true, false);
    QCOMPARE(plan.name, QStringLiteral("cut"));
    QCOMPARE(plan.FrameCount(), 6);
    QVERIFY(plan.rate == (FrameRate{24, 1}));
    QCOMPARE(plan.Duration(), int64_t(250000));
    QCOMPARE(plan.media.size(), size_t(2));
    QCOMPARE(plan.layout, Single);
    QCOMPARE(plan.singleViewer, 1);
    QVERIFY(plan.tracks[0].places.empty());
    const std::vector<std::pair<int, int>> expected = {{0, 11}, {0, 20}, {1, 1}, {1, 50}, {0, 11}, {0, 20}};
    for (size_t index = 0; index < expected.size(); ++index)
    {
        QCOMPARE(plan.tracks[1].places[index].media, expected[index].first);
        QCOMPARE(plan.tracks[1].places[index].frame, expected[index].second);
    }
    QVERIFY(plan.sound.empty());
}

void tst_OutputPlan::OtherViewerShowsTheSameTime()
{
    const auto lead = Make("/a.mov", 48, FrameRate{24, 1}, false);
    const auto other = Make("/b.mov", 60, FrameRate{60, 1}, false);
    OutputViewers viewers;
    viewers.timelines = {lead.get(), other.get()};
    viewers.layout = Vertical;
    const OutputPlan plan = MakeOutputPlan(viewers, {1, 2, 3, 24, 25, 48}, true, false);
    QCOMPARE(plan.layout, Vertical);
    const std::vector<int> expected = {1, 3, 6, 58, 60, 60};
    for (size_t index = 0; index < expected.size(); ++index)
        QCOMPARE(plan.tracks[1].places[index].frame, expected[index]);
    // In the single layout it is of no use.
    viewers.layout = Single;
    QVERIFY(MakeOutputPlan(viewers, {1}, true, false).tracks[1].places.empty());
}

void tst_OutputPlan::DrawingsAreCopied()
{
    const auto timeline = Make("/a.mov", 48, FrameRate{24, 1}, false);
    DrawData drawing;
    drawing.id = 7;
    timeline->Annotations()->SetDrawings(12, {drawing});
    OutputViewers viewers;
    viewers.timelines[0] = timeline.get();
    const OutputPlan plan = MakeOutputPlan(viewers, {11, 12}, true, false);
    const OutputPlan bare = MakeOutputPlan(viewers, {11, 12}, false, false);
    timeline->Annotations()->SetDrawings(12, {});
    timeline->Annotations()->SetDrawings(11, {drawing});
    QVERIFY(!plan.tracks[0].DrawingsAt(0));
    QVERIFY(plan.tracks[0].DrawingsAt(1));
    QCOMPARE(plan.tracks[0].DrawingsAt(1)->drawData.first().id, uint64_t(7));
    QVERIFY(bare.tracks[0].drawings.empty());
}

void tst_OutputPlan::HiddenDrawingsAreLeftOut()
{
    const auto timeline = Make("/a.mov", 48, FrameRate{24, 1}, false);
    timeline->Annotations()->SetDrawings(3, {});
    OutputViewers viewers;
    viewers.timelines[0] = timeline.get();
    QVERIFY(MakeOutputPlan(viewers, {3}, true, false).tracks[0].drawings.empty());
}

void tst_OutputPlan::SoundFollowsTheElements()
{
    const auto loud = Make(mFile.fileName(), 100, FrameRate{25, 1}, true);
    const auto silent = Make("/silent.mov", 50, FrameRate{25, 1}, false);
    loud->SetRange(PlaybackRange{26, 75});
    const auto timeline = OutputProbe::TimelineOf({loud, silent, loud});
    const OutputPlan plan = OutputProbe::WholePlan(*timeline);
    QCOMPARE(plan.sound.size(), size_t(2));
    QCOMPARE(plan.media[static_cast<size_t>(plan.sound[0].media)].path, mFile.fileName());
    for (const OutputSound& sound : plan.sound)
        QCOMPARE(sound.mediaTime, int64_t(1000000));
    QCOMPARE(plan.sound[0].start, int64_t(0));
    QCOMPARE(plan.sound[0].end, int64_t(2000000));
    QCOMPARE(plan.sound[1].start, int64_t(4000000));
    QCOMPARE(plan.sound[1].end, int64_t(6000000));
}

void tst_OutputPlan::SoundOfARangeBeginsInIt()
{
    const auto loud = Make(mFile.fileName(), 100, FrameRate{25, 1}, true);
    const auto timeline = OutputProbe::TimelineOf({loud, loud});
    OutputViewers viewers;
    viewers.timelines[0] = timeline.get();
    const OutputPlan plan = MakeOutputPlan(viewers, FramesBetween(51, 125), false, true);
    QCOMPARE(plan.sound.size(), size_t(2));
    QCOMPARE(plan.sound[0].mediaTime, int64_t(2000000));
    QCOMPARE(plan.sound[0].start, int64_t(0));
    QCOMPARE(plan.sound[0].end, int64_t(2000000));
    QCOMPARE(plan.sound[1].mediaTime, int64_t(0));
    QCOMPARE(plan.sound[1].start, int64_t(2000000));
    QCOMPARE(plan.sound[1].end, int64_t(3000000));
}

void tst_OutputPlan::SoundNeedsAFile()
{
    const auto gone = Make("/no such file.mov", 100, FrameRate{25, 1}, true);
    QVERIFY(OutputProbe::WholePlan(*gone).sound.empty());
}

void tst_OutputPlan::EmptyTimelineIsBlack()
{
    const auto lead = Make("/a.mov", 4, FrameRate{24, 1}, false);
    ElementTimeline empty(QStringLiteral("empty"));
    OutputViewers viewers;
    viewers.timelines = {lead.get(), &empty};
    viewers.layout = Horizontal;
    const OutputPlan plan = MakeOutputPlan(viewers, {1, 4}, true, true);
    QCOMPARE(plan.tracks[1].places.size(), size_t(2));
    QCOMPARE(plan.tracks[1].places[0].media, -1);
    QVERIFY(FramesBetween(3, 2).empty());
    QCOMPARE(FramesBetween(3, 5), (std::vector<int>{3, 4, 5}));
}

static const TestRegistration<tst_OutputPlan> OutputPlanRegistration;

#include "tst_OutputPlan.moc"
