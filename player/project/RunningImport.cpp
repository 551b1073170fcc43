// SPDX-License-Identifier: MIT
#include "project/RunningImport.h"

#include "project/MediaTimeline.h"
#include "project/MediumReads.h"
#include "project/Project.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QTimer>

RunningImport::RunningImport(Project* project, const QList<QString>& paths, const QUuid& parentID,
                             const QList<int>& indices, bool forViewing)
    : ProjectImport(project)
    , mProject(project)
    , mParentID(parentID)
    , mIndices(indices)
    , mForViewing(forViewing)
{
    QPointer<RunningImport> self(this);
    mThread = std::thread(
        [self, paths, scan = mScan, context = QPointer<QObject>(QCoreApplication::instance())]
        {
            for (int index = 0; index < paths.size() && !scan->cancelled; ++index)
            {
                const QString& path = paths[index];
                if (!QFileInfo(path).isDir())
                {
                    scan->items.push_back({{QFileInfo(path).absoluteFilePath(), {}}, index, {}});
                    continue;
                }
                const std::vector<MediaPaths::Found> found = MediaPaths::InFolder(path, scan->cancelled);
                if (found.empty() && !scan->cancelled)
                    scan->errors.append(tr("%1 holds no media").arg(path));
                for (const MediaPaths::Found& medium : found)
                    scan->items.push_back({medium, index, {}});
                // A folder of one medium stands for that medium.
                if (found.size() == 1)
                    scan->items.back().found.folders.clear();
            }
            // The import is looked at on its own thread alone.
            if (!context)
                return;
            QMetaObject::invokeMethod(
                context,
                [self]
                {
                    if (self && !self->mFinished)
                        self->StartReading();
                },
                Qt::QueuedConnection);
        });
}

RunningImport::~RunningImport()
{
    mScan->cancelled = true;
    mThread.join();
    for (const int read : mReads)
        mProject->mReads->Cancel(read);
    if (!mTold)
        CloseMedium();
}

void RunningImport::CloseMedium()
{
    if (mResult.openMedium >= 0)
        mProject->mReads->Close(mResult.openMedium);
    mResult.openMedium = -1;
}

void RunningImport::Cancel()
{
    if (mFinished)
        return;
    mResult.cancelled = true;
    Finish();
}

void RunningImport::StartReading()
{
    mResult.errors = mScan->errors;
    QSet<QString> keys;
    for (Item& item : mScan->items)
    {
        const QString key = MediaPaths::Key(item.found.path);
        if (keys.contains(key))
            continue;
        keys.insert(key);
        mItems.push_back(std::move(item));
    }
    if (mItems.empty())
    {
        Finish();
        return;
    }
    Q_EMIT Progressed(0, static_cast<int>(mItems.size()), mItems.front().found.path);
    const double rate = mProject->GetSettings().imageSequenceFrameRate;
    for (size_t index = 0; index < mItems.size() && !mFinished; ++index)
    {
        // A medium of the project isn't read again.
        if (const auto known = mProject->FindSourceByPath(mItems[index].found.path))
        {
            const MediaInfo info = known->Info();
            OnRead(index, &info, QString());
            continue;
        }
        // The first of an import for viewing is shown next, and isn't opened twice for that.
        const bool keepOpen = mForViewing && index == 0;
        const auto number = std::make_shared<int>(0);
        *number = mProject->mReads->Read(
            mItems[index].found.path, rate,
            [this, index, number, keepOpen](const MediaInfo* info, const QString& error)
            {
                mReads.remove(*number);
                if (info && keepOpen)
                    mResult.openMedium = *number;
                OnRead(index, info, error);
            },
            keepOpen);
        mReads.insert(*number);
    }
}

void RunningImport::OnRead(size_t index, const MediaInfo* info, const QString& error)
{
    if (info)
        mItems[index].info = *info;
    else
        mResult.errors.append(error);
    ++mDone;
    const int total = static_cast<int>(mItems.size());
    Q_EMIT Progressed(mDone, total, mItems[index].found.path);
    // A cancel may have come from who was told.
    if (mDone == total && !mFinished)
        Finish();
}

void RunningImport::Finish()
{
    mFinished = true;
    mScan->cancelled = true;
    for (const int read : mReads)
        mProject->mReads->Cancel(read);
    mReads.clear();
    if (mResult.cancelled)
        CloseMedium();
    else
        mProject->FinishImport(*this);
    // Later, so that who has asked for the import hears of one that ends at once.
    QTimer::singleShot(0, this,
                       [this]
                       {
                           mTold = true;
                           Q_EMIT Finished(mResult);
                           deleteLater();
                       });
}
