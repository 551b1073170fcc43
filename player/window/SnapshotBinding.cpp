// SPDX-License-Identifier: MIT
#include "window/SnapshotBinding.h"

#include "dialogs/output/SnapshotDialog.h"
#include "dialogs/output/SnapshotProgressDialog.h"
#include "host/Logger.h"
#include "output/SnapshotJob.h"
#include "output/SnapshotNames.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "window/OutputBinding.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QStandardPaths>

namespace
{

constexpr int DefaultPadding = 4;
/// How many problems of a run are told one by one.
constexpr int ToldSnapshotProblems = 10;

QString BaseNameOf(ProjectTimeline& timeline)
{
    const QString name = QFileInfo(timeline.GetName()).completeBaseName();
    return name.isEmpty() ? SnapshotBinding::tr("snapshot") : name;
}

} // namespace

SnapshotBinding::SnapshotBinding(PlaybackController* playback, std::function<bool()> annotationsShown,
                                 QWidget* window)
    : QObject(window)
    , mPlayback(playback)
    , mAnnotationsShown(std::move(annotationsShown))
    , mWindow(window)
    , mJob(std::make_unique<SnapshotJob>())
    , mProgress(new SnapshotProgressDialog(window))
    , mDirectory(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation))
{
    mProgress->setObjectName(QStringLiteral("snapshotProgressDialog"));
    connect(mProgress, SIGNAL(BeginSnapshot(QString, QString, SnapshotType, SnapshotNumbering, int, bool)),
            this, SLOT(OnBeginSnapshot(QString, QString, SnapshotType, SnapshotNumbering, int, bool)));
    connect(mProgress, SIGNAL(CancelSnapshot()), this, SLOT(OnCancelSnapshot()));
    connect(mJob.get(), SIGNAL(Progress(int)), this, SLOT(OnProgress(int)));
    connect(mJob.get(), SIGNAL(Finished(int, QStringList)), this, SLOT(OnFinished(int, QStringList)));
}

SnapshotBinding::~SnapshotBinding() = default;

QString SnapshotBinding::Directory() const
{
    return mDirectory;
}

void SnapshotBinding::SetDirectory(const QString& directory)
{
    mDirectory = directory;
}

bool SnapshotBinding::IsRunning() const
{
    return mJob->IsRunning();
}

bool SnapshotBinding::IsReady() const
{
    if (mJob->IsRunning())
        Logger::GetInstance()->Warning(tr("Snapshots are being written."));
    else if (!mPlayback->LeadingTimeline() || mPlayback->LeadingTimeline()->FrameCount() == 0)
        Logger::GetInstance()->Warning(tr("There is nothing to take a snapshot of."));
    else
        return true;
    return false;
}

void SnapshotBinding::TakeShownFrame()
{
    if (!IsReady())
        return;
    mTimeline = mPlayback->LeadingTimeline();
    const int viewer = ShownViewers(mPlayback, Single).leading;
    const int shown = mPlayback->ShownFrame(viewer);
    mFrame = shown > 0 ? shown : mPlayback->CurrentFrame();
    if (!QDir().mkpath(mDirectory))
    {
        Logger::GetInstance()->Error(tr("The directory %1 can't be made.").arg(mDirectory));
        return;
    }
    const QString number = QString::number(mFrame).rightJustified(DefaultPadding, QLatin1Char('0'));
    const SnapshotNames::Parts parts = {BaseNameOf(*mTimeline) + QLatin1Char('.') + number,
                                        QStringLiteral("png")};
    Begin({mFrame}, {SnapshotNames::Unused(mDirectory, parts)}, false);
}

void SnapshotBinding::FillDialog(SnapshotDialog& dialog, ProjectTimeline& timeline) const
{
    dialog.SetDirectoryPath(mDirectory);
    dialog.SetLastSnapshotDirectory(mDirectory);
    dialog.SetName(mName.isEmpty() ? BaseNameOf(timeline) + QLatin1String(".png") : mName);
    dialog.SetNumbering(mNumbering);
    dialog.SetPadding(mPadding);
    dialog.SetOverwriteEnabled(mOverwrite);
    dialog.SetType(mType);
}

void SnapshotBinding::KeepValues(const SnapshotDialog& dialog)
{
    mDirectory = dialog.GetDirectoryPath();
    mName = dialog.GetName();
    mNumbering = dialog.GetNumbering();
    mPadding = dialog.GetPadding();
    mOverwrite = dialog.IsOverwriteEnabled();
    mType = dialog.GetType();
}

void SnapshotBinding::OpenDialog()
{
    if (!IsReady())
        return;
    const std::shared_ptr<ProjectTimeline> timeline = mPlayback->LeadingTimeline();
    const int frame = mPlayback->CurrentFrame();
    const PlaybackRange range = mPlayback->Range();
    SnapshotDialog dialog(mWindow);
    FillDialog(dialog, *timeline);
    // A script may take a snapshot of its own meanwhile.
    if (dialog.exec() != QDialog::Accepted || !IsReady())
        return;
    mTimeline = timeline;
    mFrame = frame;
    mRange = range;
    KeepValues(dialog);
    mTotal = static_cast<int>(SnapshotNames::Frames(*mTimeline, mType, mFrame, mRange).size());
    mProgress->SetFrameTotal(mTotal);
    mProgress->SetCurrentFrame(0);
    Q_EMIT mProgress->BeginSnapshot(dialog.GetDirectoryPath(), dialog.GetName(), dialog.GetType(),
                                    dialog.GetNumbering(), dialog.GetPadding(), dialog.IsOverwriteEnabled());
}

void SnapshotBinding::OnBeginSnapshot(const QString& dirPath, const QString& baseFileName, SnapshotType type,
                                      SnapshotNumbering numbering, int padding, bool overwrite)
{
    if (const QString problem = SnapshotNames::Problem(baseFileName); !problem.isEmpty())
    {
        Logger::GetInstance()->Error(problem);
        return;
    }
    const std::shared_ptr<ProjectTimeline> timeline = mTimeline;
    const SnapshotNames::Parts parts = SnapshotNames::Split(baseFileName);
    const std::vector<int> frames = SnapshotNames::Frames(*mTimeline, type, mFrame, mRange);
    if (frames.empty())
    {
        Logger::GetInstance()->Warning(tr("There is no bookmark to take a snapshot of."));
        return;
    }
    const QDir dir(dirPath);
    QStringList paths;
    if (type == SnapshotSingleFrame)
    {
        const QString path = dir.absoluteFilePath(parts.stem + QLatin1Char('.') + parts.suffix);
        // The dialog doesn't offer to overwrite a single frame, so it is asked here.
        overwrite = QFileInfo::exists(path) &&
                    QMessageBox::warning(
                        mWindow, tr("Confirm Snapshot"),
                        tr("%1 already exists.\nDo you want to replace it?").arg(QFileInfo(path).fileName()),
                        QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
        if (QFileInfo::exists(path) && !overwrite)
            return;
        // A script may have taken a snapshot of its own during the question.
        if (!IsReady())
            return;
        mTimeline = timeline;
        paths << path;
    }
    for (size_t index = 0; type != SnapshotSingleFrame && index < frames.size(); ++index)
        paths << dir.absoluteFilePath(
            SnapshotNames::Numbered(parts, numbering, padding, static_cast<int>(index) + 1, frames[index]));
    if (type != SnapshotSingleFrame)
        mProgress->show();
    Begin(frames, paths, overwrite);
}

void SnapshotBinding::Begin(const std::vector<int>& frames, const QStringList& paths, bool replace)
{
    mCancelled = false;
    mTotal = static_cast<int>(frames.size());
    OutputViewers viewers = ShownViewers(mPlayback, Single);
    viewers.timelines[static_cast<size_t>(viewers.leading)] = mTimeline.get();
    mJob->Start(MakeOutputPlan(viewers, frames, mAnnotationsShown(), false), paths, replace);
    mDirectory = QFileInfo(paths.first()).absolutePath();
}

void SnapshotBinding::OnCancelSnapshot()
{
    mCancelled = true;
    mJob->Cancel();
}

void SnapshotBinding::OnProgress(int done)
{
    if (mProgress->isVisible())
        mProgress->SetCurrentFrame(done);
}

void SnapshotBinding::OnFinished(int written, const QStringList& problems)
{
    // The question whether to cancel has no more sense.
    for (QMessageBox* const box : mProgress->findChildren<QMessageBox*>())
        box->reject();
    if (mProgress->isVisible())
        mProgress->accept();
    mTimeline.reset();
    Logger* const logger = Logger::GetInstance();
    for (const QString& problem : problems.mid(0, ToldSnapshotProblems))
        logger->Error(problem);
    if (problems.size() > ToldSnapshotProblems)
        logger->Error(tr("%1 more snapshots have problems.").arg(problems.size() - ToldSnapshotProblems));
    const QString text = tr("%1 of %2 snapshots written to %3")
                             .arg(QString::number(written), QString::number(mTotal), mDirectory);
    if (mCancelled)
        logger->Warning(tr("Cancelled: %1").arg(text));
    else
        logger->Info(text);
}
