// SPDX-License-Identifier: MIT
#include "project/ProjectJournal.h"

#include "project/ElementTimeline.h"
#include "project/JournalCodec.h"
#include "project/JsonPart.h"
#include "project/MediaPaths.h"
#include "project/Project.h"
#include "project/ProjectFile.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

namespace
{

using L1 = QLatin1String;

constexpr int JournalVersion = 1;
const QString JournalSuffix = QStringLiteral(".journal");
const QString LockSuffix = QStringLiteral(".lock");
/// From this size on, and this many times the size of the project, a journal begins anew.
constexpr qint64 CompactionSize = 16 << 20;
constexpr qint64 CompactionFactor = 4;

bool SameDrawingLists(const QList<DrawData>& a, const QList<DrawData>& b)
{
    if (a.isSharedWith(b))
        return true;
    const QJsonObject record = JournalCodec::WriteDrawings(QUuid(), 1, a, b);
    return a.size() == b.size() && record.value(L1("keep")).toInt() == a.size();
}

} // namespace

ProjectJournal::ProjectJournal(Project* project, const QString& folder, QObject* parent)
    : QObject(parent), mProject(project), mFolder(folder)
{
    connect(project, SIGNAL(BaseChanged()), this, SLOT(Begin()));
    connect(project, &Project::ChangeApplied, this, &ProjectJournal::OnChangeApplied);
    connect(&mTimer, SIGNAL(timeout()), this, SLOT(WriteEdits()));
    Begin();
    mTimer.start(Interval);
}

ProjectJournal::~ProjectJournal()
{
    mFile.Remove();
}

void ProjectJournal::SetPlaceOfEdit(PlaceOfEdit placeOfEdit)
{
    mPlaceOfEdit = std::move(placeOfEdit);
}

QString ProjectJournal::Path() const
{
    return mFile.IsOpen() ? mFile.Path() : QString();
}

QString ProjectJournal::DefaultFolder()
{
    // Qt knows no folder of states.
    const QString state = QString::fromLocal8Bit(qgetenv("XDG_STATE_HOME"));
#ifdef Q_OS_UNIX
    const QString base =
        QDir::isAbsolutePath(state) ? state : QDir::homePath() + QStringLiteral("/.local/state");
    return base + QStringLiteral("/torvalen/journals");
#else
    Q_UNUSED(state)
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           QStringLiteral("/journals");
#endif
}

void ProjectJournal::Begin()
{
    if (mHasFailed)
        return;
    const QString old = Path();
    std::unique_ptr<QLockFile> oldLock = std::move(mLock);
    // The user's strokes are nobody else's business.
    QDir().mkpath(mFolder);
    QFile::setPermissions(mFolder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString path =
        QDir(mFolder).filePath(QUuid::createUuid().toString(QUuid::WithoutBraces) + JournalSuffix);
    mLock = std::make_unique<QLockFile>(path + LockSuffix);
    mLock->setStaleLockTime(0);
    mWritten.clear();
    QJsonObject record{{L1("journal"), JournalVersion},
                       {L1("project"), mProject->FilePath()},
                       {L1("modified"), mProject->IsModified()},
                       {L1("base"), ProjectFile::ToJson(mProject->Content(), mProject->FolderPath())}};
    // The old one goes when the new one stands.
    if (!mLock->tryLock(0) || !mFile.Create(path) || !mFile.Append(record))
    {
        Fail();
        return;
    }
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    mBaseSize = mFile.Size();
    if (!old.isEmpty())
        QFile::remove(old);
}

void ProjectJournal::Fail()
{
    mHasFailed = true;
    mTimer.stop();
    Q_EMIT Failed(tr("Changes can't be kept for a recovery: %1: %2").arg(mFile.Path(), mFile.Error()));
}

void ProjectJournal::Write(const QJsonObject& record)
{
    if (mHasFailed)
        return;
    if (!mFile.Append(record))
        Fail();
    else if (mFile.Size() > std::max(CompactionSize, CompactionFactor * mBaseSize))
        Begin();
}

void ProjectJournal::OnChangeApplied(const ProjectChange& change)
{
    if (mHasFailed)
        return;
    if (change.kind == ProjectChange::Kind::Drawings)
    {
        WriteDrawings(change.id, change.frame, change.drawings);
        return;
    }
    // What moves drawings moves them away from where they were written.
    mWritten.clear();
    Write(JournalCodec::WriteChange(change, mProject->Content(), mProject->SourceRootPath()));
}

void ProjectJournal::WriteDrawings(const QUuid& timeline, int frame, const QList<DrawData>& drawings)
{
    const FrameKey key{timeline, frame};
    const auto known = mWritten.constFind(key);
    if (known != mWritten.constEnd() && SameDrawingLists(*known, drawings))
        return;
    const QList<DrawData> before = known == mWritten.constEnd() ? QList<DrawData>() : *known;
    mWritten.insert(key, drawings);
    Write(JournalCodec::WriteDrawings(timeline, frame, before, drawings));
}

void ProjectJournal::WriteEdits()
{
    const Place now = mPlaceOfEdit ? mPlaceOfEdit() : Place();
    // Where an edit has ended, what is left of it is looked at once more: it may have been taken back.
    for (const Place& place : {mEdited, now})
    {
        const std::shared_ptr<ProjectTimeline> timeline = mProject->FindTimeline(place.timeline);
        if (timeline && place.frame > 0)
            WriteDrawings(place.timeline, place.frame, timeline->Annotations()->Drawings(place.frame));
    }
    mEdited = now;
}

QList<ProjectJournal::Abandoned> ProjectJournal::FindAbandoned(const QString& folder)
{
    QList<Abandoned> found;
    const QDir directory(folder);
    const QFileInfoList files = directory.entryInfoList({QLatin1Char('*') + JournalSuffix}, QDir::Files);
    for (const QFileInfo& file : files)
    {
        Abandoned abandoned;
        abandoned.path = file.absoluteFilePath();
        abandoned.lock = std::make_shared<QLockFile>(abandoned.path + LockSuffix);
        abandoned.lock->setStaleLockTime(0);
        if (!abandoned.lock->tryLock(0))
            continue;
        const QList<QJsonObject> records = JournalFile::Read(abandoned.path);
        if (records.isEmpty() || (records.size() == 1 && !records.first().value(L1("modified")).toBool()))
        {
            Discard(abandoned);
            continue;
        }
        abandoned.projectPath = records.first().value(L1("project")).toString();
        abandoned.time = file.lastModified();
        found.append(abandoned);
    }
    std::sort(found.begin(), found.end(),
              [](const Abandoned& a, const Abandoned& b) { return a.time > b.time; });
    return found;
}

std::optional<ProjectJournal::Recovered> ProjectJournal::Read(const QString& path, QString* error)
{
    const QList<QJsonObject> records = JournalFile::Read(path);
    const QJsonObject head = records.value(0);
    if (head.value(L1("journal")).toInt() != JournalVersion)
    {
        *error = tr("%1 can't be read as a journal").arg(path);
        return std::nullopt;
    }
    Recovered recovered;
    recovered.projectPath = head.value(L1("project")).toString();
    const QString folder =
        recovered.projectPath.isEmpty() ? QString() : QFileInfo(recovered.projectPath).absolutePath();
    QString problem;
    std::optional<ProjectContent> content =
        ProjectFile::FromJson(head.value(L1("base")).toObject(), folder, &problem);
    if (!content)
    {
        *error = tr("%1 can't be read as a journal: %2").arg(path, problem);
        return std::nullopt;
    }
    QHash<QUuid, std::shared_ptr<ProjectObject>> gone;
    for (int index = 1; index < records.size(); ++index)
    {
        try
        {
            JournalCodec::Replay(records[index], *content, gone,
                                 MediaPaths::SourceRoot(content->settings.sourceRoot, folder));
        }
        catch (const JsonError&)
        {
            // What can't be made leaves what was made before.
            break;
        }
    }
    content->MarkRemovedSources();
    recovered.content = std::move(*content);
    return recovered;
}

void ProjectJournal::Discard(const Abandoned& abandoned)
{
    QFile::remove(abandoned.path);
    abandoned.lock->unlock();
}
