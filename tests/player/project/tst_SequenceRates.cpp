// SPDX-License-Identifier: MIT
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectSamples.h"
#include "support/TestRegistry.h"

#include <QtTest>

/// A project's frame rate of image sequences: a change re-times what is there.
class tst_SequenceRates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void AnotherRateRetimesSequencesAlone();
    void FramesKeepWhatHangsOnThem();
    void UndoAndRedoRetimeToo();
    void OtherSettingsRetimeNothing();

private:
    QUuid AddMedium(const QString& name, bool isSequence, const FrameRate& rate);
    void SetRate(double rate);
    FrameRate RateOf(const QUuid& id) const { return mProject->FindTimeline(id)->Rate(); }

    std::unique_ptr<Project> mProject;
    QUuid mSequence;
    QUuid mMovie;
};

void tst_SequenceRates::init()
{
    mProject = std::make_unique<Project>();
    ProjectSettings settings;
    settings.imageSequenceFrameRate = 24.0;
    mProject->SetSettings(settings);
    mSequence = AddMedium("s.0001.png", true, FrameRate{24, 1});
    mMovie = AddMedium("m.mov", false, FrameRate{24, 1});
}

QUuid tst_SequenceRates::AddMedium(const QString& name, bool isSequence, const FrameRate& rate)
{
    MediaInfo info = ProjectSamples::Medium(name, 48, rate);
    info.isSequence = isSequence;
    return mProject->AddSource(info);
}

void tst_SequenceRates::SetRate(double rate)
{
    ProjectSettings settings = mProject->GetSettings();
    settings.imageSequenceFrameRate = rate;
    mProject->SetSettings(settings);
}

void tst_SequenceRates::AnotherRateRetimesSequencesAlone()
{
    const QUuid other = AddMedium("t.0001.png", true, FrameRate{30, 1});
    QSignalSpy changed(mProject.get(), SIGNAL(SourceChanged(QUuid)));
    const int steps = mProject->UndoStack()->count();
    SetRate(23.976);
    QCOMPARE(mProject->UndoStack()->count(), steps + 1);
    for (const QUuid& id : {mSequence, other})
        QVERIFY(RateOf(id) == (FrameRate{24000, 1001}));
    QVERIFY(RateOf(mMovie) == (FrameRate{24, 1}));
    QCOMPARE(changed.size(), 2);
    QCOMPARE(mProject->FindTimeline(mSequence)->FrameCount(), 48);
    QCOMPARE(mProject->FindTimeline(mSequence)->FrameToTime(25), FrameRate({24000, 1001}).FrameToTime(25));
}

void tst_SequenceRates::FramesKeepWhatHangsOnThem()
{
    mProject->AddBookmark(mSequence, 13);
    mProject->SetRange(mSequence, 5, 20);
    mProject->SetDrawings(mSequence, 7, {ProjectSamples::Note("note", 1)}, "Draw");
    const QUuid timeline = mProject->AddTimeline();
    mProject->InsertElements(timeline, {mMovie, mSequence});
    const std::vector<TimelineSegment> before = mProject->FindTimeline(timeline)->Segments();
    SetRate(12.0);
    const std::shared_ptr<ProjectTimeline> sequence = mProject->FindTimeline(mSequence);
    QCOMPARE(sequence->MarkedFrames(), QSet<int>{13});
    QCOMPARE(sequence->Range().first, 5);
    QCOMPARE(sequence->Range().last, 20);
    QVERIFY(sequence->Annotations()->Drawings(7).size() == 1);
    // A timeline of elements keeps its own rate.
    QVERIFY(RateOf(timeline) == (FrameRate{24, 1}));
    QCOMPARE(mProject->FindTimeline(timeline)->Segments().size(), before.size());
}

void tst_SequenceRates::UndoAndRedoRetimeToo()
{
    const QUuid other = AddMedium("t.0001.png", true, FrameRate{30, 1});
    const QByteArray before = ProjectSamples::Written(*mProject);
    SetRate(12.0);
    const QByteArray after = ProjectSamples::Written(*mProject);
    mProject->UndoStack()->undo();
    // Each as it was, whatever the settings said.
    QVERIFY(RateOf(mSequence) == (FrameRate{24, 1}));
    QVERIFY(RateOf(other) == (FrameRate{30, 1}));
    QCOMPARE(ProjectSamples::Written(*mProject), before);
    mProject->UndoStack()->redo();
    QCOMPARE(ProjectSamples::Written(*mProject), after);
}

void tst_SequenceRates::OtherSettingsRetimeNothing()
{
    const QUuid other = AddMedium("t.0001.png", true, FrameRate{30, 1});
    QSignalSpy changed(mProject.get(), SIGNAL(SourceChanged(QUuid)));
    ProjectSettings settings = mProject->GetSettings();
    settings.notes = "more";
    mProject->SetSettings(settings);
    QVERIFY(changed.isEmpty());
    QVERIFY(RateOf(other) == (FrameRate{30, 1}));
}

static const TestRegistration<tst_SequenceRates> SequenceRatesRegistration;

#include "tst_SequenceRates.moc"
