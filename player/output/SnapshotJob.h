// SPDX-License-Identifier: MIT
#pragma once

#include "output/OrderedPipeline.h"
#include "output/OutputPlan.h"
#include "output/PlanPictures.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <thread>

/// Writes frames of a plan as stills, each at the size of its picture, with annotations where the plan has
/// them.
///
/// It lives on the GUI thread; all work is done by other threads.
class SnapshotJob : public QObject
{
    Q_OBJECT

public:
    explicit SnapshotJob(QObject* parent = nullptr);
    /// Cancels what is running.
    ~SnapshotJob() override;

    /// Writes the frames of @p plan to @p paths, one each. Without @p replace files that are there are left
    /// alone and told as problems. Finished() is the last signal. Call it while IsRunning() is false.
    void Start(OutputPlan plan, const QStringList& paths, bool replace);
    /// Ends the work early: what is being written is finished, nothing else is begun.
    void Cancel();
    bool IsRunning() const;

Q_SIGNALS:
    /// @p done frames are dealt with.
    void Progress(int done);
    /// The work has ended. @p written files are there; @p problems tells, a line each, what is wrong with
    /// them or why others are not.
    void Finished(int written, const QStringList& problems);

    /// The threads have ended; for the job itself.
    void Ended(int written, const QStringList& problems);

private Q_SLOTS:
    void OnEnded(int written, const QStringList& problems);

private:
    struct Outcome
    {
        bool isWritten = false;
        QString problem;
    };
    using Pipeline = OrderedPipeline<FetchedFrame, Outcome>;

    Outcome Write(int index, FetchedFrame& fetched) const;
    void Run();

    std::shared_ptr<const OutputPlan> mPlan;
    QStringList mPaths;
    bool mReplace = false;
    CancelToken mCancel;
    std::unique_ptr<PlanPictures> mPictures;
    std::unique_ptr<Pipeline> mPipeline;
    std::thread mThread;
    bool mRunning = false;
};
