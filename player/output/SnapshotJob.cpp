// SPDX-License-Identifier: MIT
#include "output/SnapshotJob.h"

#include "output/FrameComposer.h"
#include "output/SnapshotFile.h"

SnapshotJob::SnapshotJob(QObject* parent) : QObject(parent)
{
    connect(this, SIGNAL(Ended(int, QStringList)), this, SLOT(OnEnded(int, QStringList)),
            Qt::QueuedConnection);
}

SnapshotJob::~SnapshotJob()
{
    Cancel();
    if (mThread.joinable())
        mThread.join();
}

bool SnapshotJob::IsRunning() const
{
    return mRunning;
}

void SnapshotJob::Start(OutputPlan plan, const QStringList& paths, bool replace)
{
    mPlan = std::make_shared<const OutputPlan>(std::move(plan));
    mPaths = paths;
    mReplace = replace;
    mCancel = CancelToken();
    mRunning = true;
    mPictures = std::make_unique<PlanPictures>(*mPlan, mCancel);
    mPipeline = std::make_unique<Pipeline>(
        mPlan->FrameCount(), Pipeline::WorkersFor(mPlan->FrameCount()),
        [this](int index) { return mPictures->Fetch(index); },
        [this](int index, FetchedFrame& fetched) { return Write(index, fetched); });
    mThread = std::thread([this] { Run(); });
}

void SnapshotJob::Cancel()
{
    mCancel.Cancel();
    if (mPipeline)
        mPipeline->Cancel();
}

SnapshotJob::Outcome SnapshotJob::Write(int index, FetchedFrame& fetched) const
{
    Outcome outcome;
    std::array<QImage, 2> pictures;
    QSize size;
    for (size_t viewer = 0; viewer < fetched.size(); ++viewer)
    {
        if (fetched[viewer].finish)
        {
            const ReadResult result = fetched[viewer].finish();
            pictures[viewer] = result.image;
            fetched[viewer].problem = result.text;
        }
        if (outcome.problem.isEmpty())
            outcome.problem = fetched[viewer].problem;
        size = size.expandedTo(pictures[viewer].size());
    }
    if (mCancel.IsCancelled())
        return {};
    if (size.isEmpty())
    {
        if (outcome.problem.isEmpty())
            outcome.problem = tr("Frame %1 has no picture").arg(mPlan->frames[static_cast<size_t>(index)]);
        return outcome;
    }
    if (mPlan->layout == Horizontal)
        size.rwidth() *= 2;
    else if (mPlan->layout == Vertical)
        size.rheight() *= 2;
    const QImage frame = FrameComposer(*mPlan, size).Compose(index, pictures);
    const QString& path = mPaths[index];
    const QString reason = frame.isNull() ? tr("%1 could not be written: memory is short").arg(path)
                                          : SnapshotFile::Write(frame, path, mReplace);
    outcome.isWritten = reason.isEmpty();
    if (!reason.isEmpty())
        outcome.problem = reason;
    return outcome;
}

void SnapshotJob::Run()
{
    int done = 0;
    Outcome outcome;
    std::vector<Outcome> outcomes;
    while (mPipeline->Next(&outcome))
    {
        outcomes.push_back(outcome);
        Q_EMIT Progress(++done);
    }
    // What was under way when it was cancelled counts as well.
    for (const Outcome& late : mPipeline->Finish())
        outcomes.push_back(late);
    int written = 0;
    QStringList problems;
    for (const Outcome& each : outcomes)
    {
        written += each.isWritten ? 1 : 0;
        if (!each.problem.isEmpty())
            problems << each.problem;
    }
    Q_EMIT Ended(written, problems);
}

void SnapshotJob::OnEnded(int written, const QStringList& problems)
{
    mThread.join();
    mPipeline.reset();
    mPictures.reset();
    mRunning = false;
    Q_EMIT Finished(written, problems);
}
