// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "project/ElementTimeline.h"
#include "project/JournalFile.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/ProjectJournal.h"
#include "project/ProjectSamples.h"
#include "support/TestRegistry.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QtTest>

#include <csignal>
#include <memory>
#include <vector>

#include <sys/types.h>

using ProjectSamples::Medium;
using ProjectSamples::Note;
using ProjectSamples::Written;

class tst_ProjectJournal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void RandomChangesAreReplayed_data();
    void RandomChangesAreReplayed();
    void ACutTailLosesOnlyItself();
    void AChangedRecordEndsTheReading();
    void ALivingJournalIsNotOffered();
    void AJournalWithoutChangesIsNotOffered();
    void ACleanEndLeavesNothing();
    void ARecoveredProjectIsUnsavedAndKept();
    void SavingBeginsTheJournalAnew();
    void StrokesInProgressAreKept();
    void ACancelledStrokeIsGone();
    void AStrokeGrowsByItsPoints();
    void NotedBookmarksAreKept();
    void AFolderThatCantBeWrittenIsReported();
    void KilledProcessesLoseNothingOlderThanASecond();

private:
    QString Folder() const { return mFolder->filePath("journals"); }
    /// Copies the journal, as if its process had ended now, and reads the copy.
    std::optional<ProjectJournal::Recovered> ReadNow(const ProjectJournal& journal);

    std::unique_ptr<QTemporaryDir> mFolder;
};

void tst_ProjectJournal::init()
{
    Settings::RestoreDefaults();
    mFolder = std::make_unique<QTemporaryDir>();
}

std::optional<ProjectJournal::Recovered> tst_ProjectJournal::ReadNow(const ProjectJournal& journal)
{
    QString error;
    auto recovered = ProjectJournal::Read(journal.Path(), &error);
    if (!recovered)
        qWarning("%s", qPrintable(error));
    return recovered;
}

namespace
{

QByteArray WrittenContent(const ProjectContent& content)
{
    Project project;
    project.Recover(content, QString());
    return Written(project);
}

} // namespace

void tst_ProjectJournal::RandomChangesAreReplayed_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void tst_ProjectJournal::RandomChangesAreReplayed()
{
    QFETCH(int, seed);
    QRandomGenerator random(static_cast<quint32>(seed + 50));
    Project project;
    for (int change = 0; change < 40; ++change)
        ProjectSamples::ChangeAtRandom(project, random);
    QString error;
    QVERIFY(project.Save(mFolder->filePath("p.torvalen"), &error));
    const ProjectJournal journal(&project, Folder());
    for (int change = 0; change < 250; ++change)
    {
        if (random.bounded(5) == 0)
            project.UndoStack()->undo();
        else if (random.bounded(12) == 0)
            project.UndoStack()->redo();
        else
            ProjectSamples::ChangeAtRandom(project, random);
        if (change % 10 != 9)
            continue;
        const auto recovered = ReadNow(journal);
        QVERIFY(recovered);
        QCOMPARE(recovered->projectPath, project.FilePath());
        QCOMPARE(WrittenContent(recovered->content), Written(project));
    }
}

void tst_ProjectJournal::ACutTailLosesOnlyItself()
{
    Project project;
    const ProjectJournal journal(&project, Folder());
    QList<QByteArray> states{Written(project)};
    for (int index = 0; index < 5; ++index)
    {
        project.AddFolder();
        states.append(Written(project));
    }
    QFile file(journal.Path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    const QString copy = mFolder->filePath("copy.journal");
    for (int length = whole.size(); length >= 0; length -= 7)
    {
        QFile cut(copy);
        QVERIFY(cut.open(QIODevice::WriteOnly));
        cut.write(whole.left(length));
        cut.close();
        const int records = whole.left(length).count('\n');
        QString error;
        const auto recovered = ProjectJournal::Read(copy, &error);
        QCOMPARE(recovered.has_value(), records > 0);
        if (recovered)
            QCOMPARE(WrittenContent(recovered->content), states[records - 1]);
        else
            QVERIFY(error.contains(copy));
    }
}

void tst_ProjectJournal::AChangedRecordEndsTheReading()
{
    const QString path = mFolder->filePath("x.journal");
    {
        JournalFile file;
        QVERIFY(file.Create(path));
        for (int index = 0; index < 4; ++index)
            QVERIFY(file.Append({{"index", index}}));
    }
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    file.close();
    const auto countOf = [&](const QList<QByteArray>& text)
    {
        QFile changed(path);
        if (!changed.open(QIODevice::WriteOnly))
            return -1;
        changed.write(text.join('\n'));
        changed.close();
        return JournalFile::Read(path).size();
    };
    QCOMPARE(countOf(lines), 4);
    QList<QByteArray> changed = lines;
    changed[2].replace('2', '7');
    QCOMPARE(countOf(changed), 2);
    // Sound records in another order aren't a sound journal.
    changed = lines;
    changed.swapItemsAt(1, 2);
    QCOMPARE(countOf(changed), 1);
    changed = lines;
    changed.removeAt(1);
    QCOMPARE(countOf(changed), 1);
    // One that is there is not written over.
    JournalFile again;
    QVERIFY(!again.Create(path));
}

void tst_ProjectJournal::ALivingJournalIsNotOffered()
{
    Project project;
    const ProjectJournal journal(&project, Folder());
    project.AddFolder();
    QVERIFY(ProjectJournal::FindAbandoned(Folder()).isEmpty());
    QVERIFY(QFile::exists(journal.Path()));
}

void tst_ProjectJournal::AJournalWithoutChangesIsNotOffered()
{
    Project project;
    const ProjectJournal journal(&project, Folder());
    const QString copy = Folder() + "/copy.journal";
    QVERIFY(QFile::copy(journal.Path(), copy));
    QVERIFY(ProjectJournal::FindAbandoned(Folder()).isEmpty());
    QVERIFY(!QFile::exists(copy));
    project.AddFolder();
    QVERIFY(QFile::copy(journal.Path(), copy));
    const auto found = ProjectJournal::FindAbandoned(Folder());
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().path, copy);
    // Found once, it is held.
    QVERIFY(ProjectJournal::FindAbandoned(Folder()).isEmpty());
    ProjectJournal::Discard(found.first());
    QVERIFY(!QFile::exists(copy));
}

void tst_ProjectJournal::ACleanEndLeavesNothing()
{
    {
        Project project;
        const ProjectJournal journal(&project, Folder());
        project.AddFolder();
        QCOMPARE(QDir(Folder()).entryList(QDir::Files).size(), 2);
    }
    QCOMPARE(QDir(Folder()).entryList(QDir::Files), QStringList());
}

void tst_ProjectJournal::ARecoveredProjectIsUnsavedAndKept()
{
    Project first;
    auto journal = std::make_unique<ProjectJournal>(&first, Folder());
    const QUuid folder = first.AddFolder();
    auto recovered = ReadNow(*journal);
    QVERIFY(recovered);
    Project second;
    const ProjectJournal own(&second, Folder());
    second.Recover(recovered->content, "/projects/p.torvalen");
    QVERIFY(second.IsModified());
    QVERIFY(second.HasUnsavedWork());
    QVERIFY(second.Find(folder));
    QCOMPARE(second.Title(), QString("p"));
    // Killed at once, it is there again.
    const QString copy = Folder() + "/copy.journal";
    QVERIFY(QFile::copy(own.Path(), copy));
    const auto found = ProjectJournal::FindAbandoned(Folder());
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().projectPath, QString("/projects/p.torvalen"));
    recovered = ProjectJournal::Read(copy, nullptr);
    QCOMPARE(WrittenContent(recovered->content), Written(second));
}

void tst_ProjectJournal::SavingBeginsTheJournalAnew()
{
    Project project;
    const ProjectJournal journal(&project, Folder());
    const QString before = journal.Path();
    project.AddFolder();
    QString error;
    QVERIFY(project.Save(mFolder->filePath("p.torvalen"), &error));
    QVERIFY(journal.Path() != before);
    QVERIFY(!QFile::exists(before));
    QCOMPARE(JournalFile::Read(journal.Path()).size(), 1);
    QCOMPARE(QDir(Folder()).entryList(QDir::Files).size(), 2);
    project.New();
    QCOMPARE(ReadNow(journal)->projectPath, QString());
}

void tst_ProjectJournal::StrokesInProgressAreKept()
{
    Project project;
    ProjectJournal journal(&project, Folder());
    const QUuid id = project.AddSource(Medium("a.mov"));
    const auto annotations = project.FindTimeline(id)->Annotations();
    journal.SetPlaceOfEdit([&] { return ProjectJournal::Place{id, 9}; });
    QRandomGenerator random(1);
    DrawData stroke = ProjectSamples::Stroke(random, 5);
    annotations->SetDrawings(9, {Note("old", 1), stroke});
    QTest::qWait(2 * ProjectJournal::Interval);
    stroke.points.append(QPointF(7, 8));
    annotations->SetDrawings(9, {Note("old", 1), stroke});
    QTest::qWait(2 * ProjectJournal::Interval);
    const auto recovered = ReadNow(journal);
    QCOMPARE(WrittenContent(recovered->content), Written(project));
    const auto timeline = std::dynamic_pointer_cast<ProjectTimeline>(recovered->content.objects.value(id));
    QCOMPARE(timeline->Annotations()->Drawings(9).value(1).points.size(), 6);
}

void tst_ProjectJournal::ACancelledStrokeIsGone()
{
    Project project;
    ProjectJournal journal(&project, Folder());
    const QUuid id = project.AddSource(Medium("a.mov"));
    const auto annotations = project.FindTimeline(id)->Annotations();
    bool isDrawing = true;
    journal.SetPlaceOfEdit(
        [&] {
            return isDrawing ? ProjectJournal::Place{id, 9} : ProjectJournal::Place();
        });
    annotations->SetDrawings(9, {Note("x", 1)});
    QTest::qWait(2 * ProjectJournal::Interval);
    QVERIFY(WrittenContent(ReadNow(journal)->content).contains("\"frame\": 9"));
    annotations->SetDrawings(9, {});
    isDrawing = false;
    QTest::qWait(2 * ProjectJournal::Interval);
    QVERIFY(!WrittenContent(ReadNow(journal)->content).contains("\"frame\": 9"));
}

void tst_ProjectJournal::AStrokeGrowsByItsPoints()
{
    Project project;
    ProjectJournal journal(&project, Folder());
    const QUuid id = project.AddSource(Medium("a.mov"));
    const auto timeline = project.FindTimeline(id);
    QRandomGenerator random(1);
    QList<DrawData> drawings{ProjectSamples::Stroke(random, 20000)};
    timeline->Annotations()->SetDrawings(5, drawings);
    project.NoteDrawings(timeline->Annotations().get(), 5);
    const qint64 before = QFileInfo(journal.Path()).size();
    drawings[0].points.append(QPointF(0.5, 0.5));
    timeline->Annotations()->SetDrawings(5, drawings);
    project.NoteDrawings(timeline->Annotations().get(), 5);
    drawings.append(ProjectSamples::Stroke(random, 3));
    timeline->Annotations()->SetDrawings(5, drawings);
    project.NoteDrawings(timeline->Annotations().get(), 5);
    QVERIFY(QFileInfo(journal.Path()).size() - before < 1500);
    QCOMPARE(WrittenContent(ReadNow(journal)->content), Written(project));
    drawings.removeFirst();
    timeline->Annotations()->SetDrawings(5, drawings);
    project.NoteDrawings(timeline->Annotations().get(), 5);
    QCOMPARE(WrittenContent(ReadNow(journal)->content), Written(project));
}

void tst_ProjectJournal::NotedBookmarksAreKept()
{
    Project project;
    ProjectJournal journal(&project, Folder());
    const QUuid id = project.AddSource(Medium("a.mov"));
    const auto timeline = project.FindTimeline(id);
    timeline->SetMarked(4, true);
    project.NoteBookmarks(id);
    QCOMPARE(WrittenContent(ReadNow(journal)->content), Written(project));
    timeline->SetMarked(4, false);
    project.NoteBookmarks(id);
    QVERIFY(!Written(project).contains("marks"));
    QCOMPARE(WrittenContent(ReadNow(journal)->content), Written(project));
}

void tst_ProjectJournal::AFolderThatCantBeWrittenIsReported()
{
    QFile file(mFolder->filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    Project project;
    ProjectJournal journal(&project, mFolder->filePath("file/journals"));
    QVERIFY(journal.Path().isEmpty());
    project.AddFolder();
    project.New();
    QVERIFY(ProjectJournal::FindAbandoned(mFolder->filePath("file/journals")).isEmpty());
}

namespace
{

/// One killed process: what it told, and when it was killed.
struct Run
{
    pid_t process = 0;
    QString folder;
    /// How long it lives from its first word on, in milliseconds.
    int life = 0;
    /// 0 until it has said something.
    qint64 killAt = 0;
};

/// What a run told: the states in order, and the points of the stroke in progress, if it ended in one.
struct Told
{
    QByteArray lastState;
    QByteArray stroke;
    /// How many points the stroke had a second before the end, and what it had at last.
    int pointsDue = 0;
};

Told Understand(const QByteArray& output, qint64 killedAt)
{
    Told told;
    for (const QByteArray& line : output.left(output.lastIndexOf('\n')).split('\n'))
    {
        const QList<QByteArray> words = line.split(' ');
        if (words[0] == "state")
        {
            told.lastState = words[2];
            told.stroke.clear();
            told.pointsDue = 0;
        }
        else if (words[0] == "stroke")
        {
            told.stroke = words[2];
            if (words[1].toLongLong() < killedAt - 1000)
                told.pointsDue = words[3].toInt();
        }
    }
    return told;
}

/// Whether the project was in the state of the hash @p state after one of the records of the journal at
/// @p path, not long before its end.
bool BeginsWithState(const QString& path, const QByteArray& state)
{
    constexpr int mostRecords = 60;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QByteArray text = file.readAll();
    for (int cut = 0; cut < mostRecords && !text.isEmpty(); ++cut)
    {
        text.truncate(text.lastIndexOf('\n') + 1);
        QTemporaryFile part;
        if (!part.open() || part.write(text) != text.size() || !part.flush())
            return false;
        QString error;
        const auto recovered = ProjectJournal::Read(part.fileName(), &error);
        if (!recovered)
            return false;
        const QByteArray written = WrittenContent(recovered->content);
        if (QCryptographicHash::hash(written, QCryptographicHash::Md5).toHex() == state)
            return true;
        text.chop(1);
    }
    return false;
}

} // namespace

void tst_ProjectJournal::KilledProcessesLoseNothingOlderThanASecond()
{
    constexpr int runCount = 200;
    constexpr int atOnce = 4;
    QRandomGenerator random(20);
    QProcess host;
    host.start(QStringLiteral(TORVALEN_JOURNAL_HOST), QStringList());
    QVERIFY(host.waitForStarted(10000));
    std::vector<std::unique_ptr<Run>> running;
    int started = 0;
    int checked = 0;
    int inStrokes = 0;
    int due = 0;
    const auto check = [&](Run& run)
    {
        const qint64 killedAt = QDateTime::currentMSecsSinceEpoch();
        QCOMPARE(::kill(run.process, SIGKILL), 0);
        QTRY_VERIFY_WITH_TIMEOUT(::kill(run.process, 0) != 0, 10000);
        QFile file(run.folder + ".told");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const Told told = Understand(file.readAll(), killedAt);
        ++checked;
        QVERIFY(!told.lastState.isEmpty());
        const auto found = ProjectJournal::FindAbandoned(run.folder);
        QCOMPARE(found.size(), 1);
        QString error;
        const auto recovered = ProjectJournal::Read(found.first().path, &error);
        QVERIFY2(recovered, qPrintable(error));
        Project project;
        project.Recover(recovered->content, QString());

        int points = 0;
        if (const auto drawn = project.FindSourceByPath("/media/drawn.mov"); drawn && !told.stroke.isEmpty())
        {
            for (const int frame : drawn->Annotations()->AnnotatedFrames())
            {
                const DrawData last = drawn->Annotations()->Drawings(frame).last();
                if (QByteArray::number(static_cast<qulonglong>(last.id)) == told.stroke)
                    points = last.points.size();
            }
        }
        inStrokes += told.stroke.isEmpty() ? 0 : 1;
        due += told.pointsDue > 0 ? 1 : 0;
        QVERIFY2(points >= told.pointsDue,
                 QByteArray::number(points) + " of " + QByteArray::number(told.pointsDue));
        // Whatever was told to be finished is there to the last change. What the stroke has written since,
        // and a change that was not told any more, come after it.
        QVERIFY(BeginsWithState(found.first().path, told.lastState));
        ProjectJournal::Discard(found.first());
    };
    while (checked < runCount)
    {
        while (started < runCount && running.size() < atOnce)
        {
            auto run = std::make_unique<Run>();
            run->folder = mFolder->filePath(QString::number(started));
            // Most are killed soon, some late enough for a second to have gone by.
            run->life = random.bounded(started % 4 == 0 ? 2500 : 500);
            host.write(QStringLiteral("%1 %2\n").arg(run->folder).arg(started).toLocal8Bit());
            QVERIFY(QTest::qWaitFor([&] { return host.canReadLine(); }, 10000));
            run->process = host.readLine().trimmed().toInt();
            QVERIFY(run->process > 0);
            running.push_back(std::move(run));
            ++started;
        }
        QTest::qWait(2);
        for (auto run = running.begin(); run != running.end();)
        {
            const qint64 now = QDateTime::currentMSecsSinceEpoch();
            if ((*run)->killAt == 0 && QFileInfo((*run)->folder + ".told").size() > 0)
                (*run)->killAt = now + (*run)->life;
            if ((*run)->killAt == 0 || (*run)->killAt > now)
            {
                ++run;
                continue;
            }
            check(**run);
            if (QTest::currentTestFailed())
                return;
            run = running.erase(run);
        }
    }
    host.closeWriteChannel();
    QVERIFY(host.waitForFinished(10000));
    qInfo("%d killed, %d in a stroke, %d of these with points older than a second", checked, inStrokes, due);
    QVERIFY(inStrokes > 10);
    QVERIFY(due > 3);
}

static const TestRegistration<tst_ProjectJournal> ProjectJournalRegistration;

#include "tst_ProjectJournal.moc"
