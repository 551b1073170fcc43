// SPDX-License-Identifier: MIT
#include "OutputProbe.h"
#include "annotation/AnnotationStore.h"
#include "media/NumberedMedia.h"
#include "output/SnapshotJob.h"
#include "project/MediaTimeline.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class tst_SnapshotJob : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void EachFrameIsWritten();
    void DrawingsAreBurntIn();
    void FilesThatAreThereAreTold();
    void CancelLeavesWholeFilesOnly();
    void PicturesThatCantBeReadAreTold();
    void JobThatGoesAwayLeavesWholeFilesOnly();

private:
    OutputPlan Plan(const std::vector<int>& frames) const
    {
        OutputViewers viewers;
        viewers.timelines[0] = mTimeline.get();
        return MakeOutputPlan(viewers, frames, true, false);
    }
    static QStringList Paths(const QTemporaryDir& dir, int count)
    {
        QStringList paths;
        for (int index = 1; index <= count; ++index)
            paths << dir.filePath(QStringLiteral("still.%1.png").arg(index, 4, 10, QLatin1Char('0')));
        return paths;
    }

    std::shared_ptr<MediaTimeline> mTimeline;
};

void tst_SnapshotJob::initTestCase()
{
    mTimeline = OutputProbe::TimelineOf(OutputProbe::Movie(60, "24"));
    QVERIFY(mTimeline);
}

void tst_SnapshotJob::EachFrameIsWritten()
{
    QTemporaryDir dir;
    const std::vector<int> frames = {3, 4, 5, 20, 40, 60};
    const QStringList paths = Paths(dir, 6);
    SnapshotJob job;
    QSignalSpy progress(&job, SIGNAL(Progress(int)));
    QSignalSpy finished(&job, SIGNAL(Finished(int, QStringList)));
    job.Start(Plan(frames), paths, false);
    QVERIFY(job.IsRunning());
    QVERIFY(finished.wait(20000));
    QVERIFY(!job.IsRunning());
    QCOMPARE(finished.first(), QList<QVariant>({6, QStringList()}));
    QCOMPARE(progress.size(), 6);
    for (int index = 0; index < 6; ++index)
    {
        QCOMPARE(progress[index].first().toInt(), index + 1);
        QCOMPARE(NumberedMedia::NumberIn(QImage(paths[index])), frames[static_cast<size_t>(index)]);
        QCOMPARE(QImage(paths[index]).size(), QSize(320, 180));
    }
    QCOMPARE(OutputProbe::NamesIn(dir.path()).size(), 6);
}

void tst_SnapshotJob::DrawingsAreBurntIn()
{
    DrawData stroke;
    stroke.type = DrawPencil;
    stroke.color = Qt::red;
    stroke.width = 0.1f;
    stroke.points = {QPointF(-0.3, 0.2), QPointF(0.3, 0.2)};
    mTimeline->Annotations()->SetDrawings(7, {stroke});
    QTemporaryDir dir;
    SnapshotJob job;
    QSignalSpy finished(&job, SIGNAL(Finished(int, QStringList)));
    job.Start(Plan({6, 7}), Paths(dir, 2), false);
    QVERIFY(finished.wait(20000));
    mTimeline->Annotations()->SetDrawings(7, {});
    QVERIFY(QImage(Paths(dir, 2)[0]).pixelColor(160, 154) != QColor(Qt::red));
    QCOMPARE(QImage(Paths(dir, 2)[1]).pixelColor(160, 154), QColor(Qt::red));
}

void tst_SnapshotJob::FilesThatAreThereAreTold()
{
    QTemporaryDir dir;
    const QStringList paths = Paths(dir, 3);
    {
        QFile file(paths[1]);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("mine");
    }
    SnapshotJob job;
    QSignalSpy finished(&job, SIGNAL(Finished(int, QStringList)));
    job.Start(Plan({1, 2, 3}), paths, false);
    QVERIFY(finished.wait(20000));
    QCOMPARE(finished.first().first().toInt(), 2);
    QCOMPARE(finished.first().last().toStringList(), QStringList{paths[1] + " exists already"});
    QFile file(paths[1]);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("mine"));
    job.Start(Plan({1, 2, 3}), paths, true);
    QVERIFY(finished.wait(20000));
    QCOMPARE(finished.last(), QList<QVariant>({3, QStringList()}));
    QCOMPARE(NumberedMedia::NumberIn(QImage(paths[1])), 2);
}

void tst_SnapshotJob::CancelLeavesWholeFilesOnly()
{
    QTemporaryDir dir;
    const QStringList paths = Paths(dir, 60);
    SnapshotJob job;
    QSignalSpy progress(&job, SIGNAL(Progress(int)));
    QSignalSpy finished(&job, SIGNAL(Finished(int, QStringList)));
    job.Start(Plan(FramesBetween(1, 60)), paths, false);
    QVERIFY(progress.wait(20000));
    job.Cancel();
    QVERIFY(finished.wait(20000));
    const QStringList names = OutputProbe::NamesIn(dir.path());
    const int written = finished.first().first().toInt();
    QCOMPARE(names.size(), written);
    QVERIFY(written >= 1 && written < 60);
    QVERIFY(finished.first().last().toStringList().isEmpty());
    for (const QString& name : names)
    {
        const int number = NumberedMedia::NumberIn(QImage(dir.filePath(name)));
        QCOMPARE(dir.filePath(name), paths.value(number - 1));
    }
}

void tst_SnapshotJob::PicturesThatCantBeReadAreTold()
{
    OutputPlan plan = Plan({1, 2});
    plan.media[0].path = "/no such file.mov";
    QTemporaryDir dir;
    SnapshotJob job;
    QSignalSpy finished(&job, SIGNAL(Finished(int, QStringList)));
    job.Start(plan, Paths(dir, 2), false);
    QVERIFY(finished.wait(20000));
    QCOMPARE(finished.first().first().toInt(), 0);
    QCOMPARE(finished.first().last().toStringList().filter("/no such file.mov").size(), 2);
    QVERIFY(OutputProbe::NamesIn(dir.path()).isEmpty());
}

void tst_SnapshotJob::JobThatGoesAwayLeavesWholeFilesOnly()
{
    QTemporaryDir dir;
    {
        SnapshotJob job;
        job.Start(Plan(FramesBetween(1, 60)), Paths(dir, 60), false);
        QTest::qSleep(60);
    }
    for (const QString& name : OutputProbe::NamesIn(dir.path()))
        QVERIFY2(NumberedMedia::NumberIn(QImage(dir.filePath(name))) > 0, qPrintable(name));
}

static const TestRegistration<tst_SnapshotJob> SnapshotJobRegistration;

#include "tst_SnapshotJob.moc"
