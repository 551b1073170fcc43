// SPDX-License-Identifier: MIT
#include "output/EncoderFeed.h"

#include "output/FrameComposer.h"

#include <cerrno>
#include <csignal>
#include <cstring>

#include <unistd.h>

namespace
{

bool WriteAll(int pipe, const uint8_t* data, size_t bytes)
{
    while (bytes > 0)
    {
        const ssize_t written = ::write(pipe, data, bytes);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        bytes -= static_cast<size_t>(written);
    }
    return true;
}

} // namespace

EncoderFeed::EncoderFeed(std::shared_ptr<const OutputPlan> plan, const QSize& size)
    : mPlan(std::move(plan))
    , mSize(size)
    , mComposer(std::make_unique<FrameComposer>(*mPlan, size))
    , mMaker(size)
    , mPictures(*mPlan, mCancel)
{
}

EncoderFeed::~EncoderFeed()
{
    Cancel();
    if (mThread.joinable())
        mThread.join();
}

void EncoderFeed::Start(int pipe)
{
    using Pipeline = OrderedPipeline<FetchedFrame, Made>;
    mPipeline = std::make_unique<Pipeline>(
        mPlan->FrameCount(), Pipeline::WorkersFor(mPlan->FrameCount()),
        [this](int index) { return mPictures.Fetch(index); },
        [this](int index, FetchedFrame& fetched) { return Make(index, fetched); });
    mThread = std::thread([this, pipe] { Run(pipe); });
}

void EncoderFeed::Cancel()
{
    mCancel.Cancel();
    if (mPipeline)
        mPipeline->Cancel();
}

EncoderFeed::Made EncoderFeed::Make(int index, FetchedFrame& fetched) const
{
    Made made;
    const FetchedPicture& single = fetched[static_cast<size_t>(mPlan->singleViewer)];
    // Two conversions and a copy less, and not a bit of the picture lost before the encoder.
    if (mComposer->IsPlain(index) && single.stored && mMaker.CanPass(*single.stored))
    {
        made.frame.stored = single.stored;
        return made;
    }
    std::array<QImage, 2> pictures;
    for (size_t viewer = 0; viewer < fetched.size(); ++viewer)
    {
        FetchedPicture& picture = fetched[viewer];
        if (picture.finish)
        {
            const ReadResult result = picture.finish();
            pictures[viewer] = result.image;
            picture.problem = result.text;
        }
        if (!picture.problem.isEmpty())
            made.problems << picture.problem;
    }
    const QImage frame = mComposer->Compose(index, pictures);
    if (!frame.isNull())
        made.frame = mMaker.Convert(frame);
    return made;
}

bool EncoderFeed::Write(int pipe, const VideoFrame& frame)
{
    if (!frame.stored)
        return WriteAll(pipe, frame.bytes.data(), frame.bytes.size());
    for (int plane = 0; plane < 3; ++plane)
    {
        const auto width = static_cast<size_t>(plane == 0 ? mSize.width() : mSize.width() / 2);
        const auto height = static_cast<size_t>(plane == 0 ? mSize.height() : mSize.height() / 2);
        const uint8_t* data = frame.stored->data[plane];
        const int stride = frame.stored->linesize[plane];
        if (stride != static_cast<int>(width))
        {
            mPacked.resize(width * height);
            for (size_t row = 0; row < height; ++row)
                std::memcpy(mPacked.data() + row * width, data + static_cast<ptrdiff_t>(row) * stride, width);
            data = mPacked.data();
        }
        if (!WriteAll(pipe, data, width * height))
            return false;
    }
    return true;
}

void EncoderFeed::Run(int pipe)
{
    // A reader that has gone is told by the write itself.
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);

    int frames = 0;
    QString error;
    Made made;
    while (mPipeline->Next(&made))
    {
        for (const QString& problem : made.problems)
            Q_EMIT Problem(problem);
        if (!made.frame.stored && made.frame.bytes.empty())
        {
            error = tr("Memory is short for frame %1.").arg(mPlan->frames[static_cast<size_t>(frames)]);
            break;
        }
        if (!Write(pipe, made.frame))
            break;
        ++frames;
    }
    ::close(pipe);
    Q_EMIT Ended(frames, error);
}
