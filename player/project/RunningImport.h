// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaInfo.h"
#include "project/MediaPaths.h"
#include "project/ProjectImport.h"

#include <QSet>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

class Project;

/// An import as the project runs it: first a thread looks through the folders, then the media are read, then
/// the project makes its step.
class RunningImport : public ProjectImport
{
    Q_OBJECT

public:
    /// A medium to import.
    struct Item
    {
        MediaPaths::Found found;
        /// Which of the paths brought it.
        int pathIndex = 0;
        /// Set once it is read; stays unset if it can't be.
        std::optional<MediaInfo> info;
    };

    RunningImport(Project* project, const QList<QString>& paths, const QUuid& parentID,
                  const QList<int>& indices, bool forViewing);
    ~RunningImport() override;

    const QUuid& ParentID() const { return mParentID; }
    const std::vector<Item>& Items() const { return mItems; }
    int IndexOf(const Item& item) const { return mIndices.value(item.pathIndex, -1); }
    bool IsForViewing() const { return mForViewing; }
    Result& GetResult() { return mResult; }

    bool IsRunning() const override { return !mTold; }
    void Cancel() override;

private:
    /// What the thread leaves.
    struct Scan
    {
        std::vector<Item> items;
        QStringList errors;
        std::atomic<bool> cancelled{false};
    };

    void StartReading();
    void OnRead(size_t index, const MediaInfo* info, const QString& error);
    void Finish();
    void CloseMedium();

    Project* mProject;
    QUuid mParentID;
    QList<int> mIndices;
    bool mForViewing;
    std::shared_ptr<Scan> mScan = std::make_shared<Scan>();
    std::thread mThread;
    std::vector<Item> mItems;
    QSet<int> mReads;
    int mDone = 0;
    bool mFinished = false;
    bool mTold = false;
    Result mResult;
};
