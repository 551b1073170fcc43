// SPDX-License-Identifier: MIT
#pragma once

#include "output/OrderedPipeline.h"
#include "output/OutputPlan.h"
#include "output/PlanPictures.h"
#include "output/VideoFrame.h"

#include <QObject>
#include <QSize>
#include <QString>

#include <memory>
#include <thread>

class FrameComposer;

/// Decodes and composes the frames of a plan on threads of its own and writes them into a pipe, in order.
class EncoderFeed : public QObject
{
    Q_OBJECT

public:
    /// @p size is even on both axes.
    EncoderFeed(std::shared_ptr<const OutputPlan> plan, const QSize& size);
    /// Cancels and waits for the threads; whoever reads the pipe has to be gone.
    ~EncoderFeed() override;

    /// Begins to write into @p pipe, which it closes at the end.
    void Start(int pipe);
    /// Ends the work early.
    void Cancel();

Q_SIGNALS:
    /// A picture could not be read, or not wholly; black stands for what is missing.
    void Problem(const QString& text);
    /// All @p frames frames that could be written are; fewer than the plan has if the reader of the pipe has
    /// gone or the work was cancelled. @p error is empty if it is known from elsewhere.
    void Ended(int frames, const QString& error);

private:
    struct Made
    {
        VideoFrame frame;
        QStringList problems;
    };

    void Run(int pipe);
    Made Make(int index, FetchedFrame& fetched) const;
    bool Write(int pipe, const VideoFrame& frame);

    std::shared_ptr<const OutputPlan> mPlan;
    QSize mSize;
    CancelToken mCancel;
    std::unique_ptr<FrameComposer> mComposer;
    VideoFrameMaker mMaker;
    PlanPictures mPictures;
    std::unique_ptr<OrderedPipeline<FetchedFrame, Made>> mPipeline;
    std::vector<uint8_t> mPacked;
    std::thread mThread;
};
