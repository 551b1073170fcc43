// SPDX-License-Identifier: MIT
// Measures seeking in a movie, from the request to the painted frame, beside the bare decoding from the key
// frame before. Prints a line for each: its name, the median and the 95th percentile in milliseconds.
//
//   torvalen_bench_seek FILE [SEEKS]
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "viewers/ViewerWidget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

extern "C"
{
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace
{

constexpr int DefaultSeeks = 60;
constexpr QSize WindowSize(1600, 900);
constexpr int Media = 1;
constexpr int StepsBack = 48;

void Report(const char* name, std::vector<double> milliseconds)
{
    if (milliseconds.empty())
        return;
    std::sort(milliseconds.begin(), milliseconds.end());
    const auto at = [&](double part)
    { return milliseconds[static_cast<size_t>(part * static_cast<double>(milliseconds.size() - 1))]; };
    std::printf("%-22s median %8.2f ms   p95 %8.2f ms   (%zu)\n", name, at(0.5), at(0.95),
                milliseconds.size());
    std::fflush(stdout);
}

double Milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) * 1e-6;
}

/// The least that a seek can do: go to the key frame before and decode on to the frame.
class BareDecoder
{
public:
    explicit BareDecoder(const char* path)
    {
        const AVCodec* codec = nullptr;
        if (avformat_open_input(&mFormat, path, nullptr, nullptr) < 0 ||
            avformat_find_stream_info(mFormat, nullptr) < 0 ||
            (mStream = av_find_best_stream(mFormat, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0)) < 0)
            return;
        mCodec = avcodec_alloc_context3(codec);
        avcodec_parameters_to_context(mCodec, mFormat->streams[mStream]->codecpar);
        mCodec->thread_count = 2;
        mReady = avcodec_open2(mCodec, codec, nullptr) >= 0;
    }

    ~BareDecoder()
    {
        av_frame_free(&mFrame);
        av_packet_free(&mPacket);
        avcodec_free_context(&mCodec);
        avformat_close_input(&mFormat);
    }

    bool IsReady() const { return mReady; }

    /// Decodes up to @p frame (1-based) at the stream's constant rate. Returns whether it came.
    bool SeekTo(int frame)
    {
        const AVStream* const stream = mFormat->streams[mStream];
        const int64_t start = stream->start_time == AV_NOPTS_VALUE ? 0 : stream->start_time;
        const int64_t target =
            start + av_rescale_q(frame - 1, av_inv_q(stream->avg_frame_rate), stream->time_base);
        av_seek_frame(mFormat, mStream, target, AVSEEK_FLAG_BACKWARD);
        avcodec_flush_buffers(mCodec);
        bool drained = false;
        while (true)
        {
            const int received = avcodec_receive_frame(mCodec, mFrame);
            if (received == 0)
            {
                if (mFrame->pts >= target)
                    return true;
                continue;
            }
            if (received != AVERROR(EAGAIN) || drained)
                return false;
            const bool isEnd = av_read_frame(mFormat, mPacket) < 0;
            if (isEnd || mPacket->stream_index == mStream)
                avcodec_send_packet(mCodec, isEnd ? nullptr : mPacket);
            drained = isEnd;
            av_packet_unref(mPacket);
        }
    }

private:
    AVFormatContext* mFormat = nullptr;
    AVCodecContext* mCodec = nullptr;
    AVFrame* mFrame = av_frame_alloc();
    AVPacket* mPacket = av_packet_alloc();
    int mStream = -1;
    bool mReady = false;
};

/// The player's way from a request to the painted frame.
class PlayerSeeker
{
public:
    explicit PlayerSeeker(const QString& path)
    {
        mViewer.resize(WindowSize);
        mViewer.show();
        QObject::connect(&mLoader, &FrameLoader::FrameReady, &mViewer,
                         [this](int, int frame, const ReadResult& result) { Show(frame, result); });
        QObject::connect(&mLoader, &FrameLoader::MediaOpened, &mLoop, &QEventLoop::quit);
        QObject::connect(&mLoader, &FrameLoader::OpenFailed, &mLoop, &QEventLoop::quit);
        mLoader.Open(Media, path);
        mLoop.exec();
    }

    const MediaInfo* Info() const { return mLoader.Info(Media); }
    bool IsCached(int frame) const { return mLoader.CachedFrame(Media, frame).has_value(); }
    void SetCacheSize(int megabytes) { mLoader.SetCacheSize(megabytes); }

    /// Milliseconds from the request to the painted frame.
    double SeekTo(int frame, int direction, int readAhead)
    {
        QElapsedTimer timer;
        timer.start();
        mWanted = frame;
        mShown = 0;
        FrameRequest request;
        request.frame = frame;
        request.direction = direction;
        request.readAhead = readAhead;
        mLoader.RequestFrame(Media, request);
        if (mShown != frame)
            mLoop.exec();
        return Milliseconds(timer);
    }

    void Settle(int milliseconds)
    {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < milliseconds)
            QApplication::processEvents(QEventLoop::AllEvents, milliseconds);
    }

private:
    void Show(int frame, const ReadResult& result)
    {
        mViewer.SetImage(0, result.image, false);
        mViewer.findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly)->repaint();
        mShown = frame;
        if (frame == mWanted)
            mLoop.quit();
    }

    ViewerWidget mViewer;
    FrameLoader mLoader;
    QEventLoop mLoop;
    int mWanted = 0;
    int mShown = 0;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc < 2)
    {
        std::fprintf(stderr, "usage: %s FILE [SEEKS]\n", argv[0]);
        return 2;
    }
    PlayerSeeker player(QString::fromLocal8Bit(argv[1]));
    BareDecoder bare(argv[1]);
    if (!player.Info() || !bare.IsReady())
    {
        std::fprintf(stderr, "%s can't be opened\n", argv[1]);
        return 1;
    }
    const int seeks = argc > 2 ? std::atoi(argv[2]) : DefaultSeeks;
    const int frames = player.Info()->frameCount;
    std::mt19937 random(20);
    std::uniform_int_distribution<int> anyFrame(1, frames);

    // In turns, so that whatever else the machine does falls on both.
    std::vector<double> bareTimes;
    std::vector<double> uncachedTimes;
    player.SetCacheSize(Settings::MINIMUM_CACHE_SIZE);
    while (static_cast<int>(uncachedTimes.size()) < seeks)
    {
        const int frame = anyFrame(random);
        if (player.IsCached(frame))
            continue;
        QElapsedTimer timer;
        timer.start();
        if (bare.SeekTo(frame))
            bareTimes.push_back(Milliseconds(timer));
        uncachedTimes.push_back(player.SeekTo(frame, 1, 0));
    }
    Report("bare decode", bareTimes);
    Report("player, uncached", uncachedTimes);

    // Back through a whole group at playback rate: the first step decodes it, the others find it.
    std::vector<double> backTimes;
    player.SetCacheSize(Settings::cacheSize);
    const int last = std::max(frames / 2 / StepsBack * StepsBack, 1);
    player.SeekTo(last, 1, 0);
    const int pace = static_cast<int>(1000.0 / player.Info()->frameRate.PerSecond());
    for (int frame = last - 1; frame >= std::max(last - StepsBack, 1); --frame)
    {
        backTimes.push_back(player.SeekTo(frame, -1, -1));
        player.Settle(std::max(1, pace - static_cast<int>(backTimes.back())));
    }
    Report("player, step back", backTimes);

    std::vector<double> cachedTimes;
    while (static_cast<int>(cachedTimes.size()) < seeks)
    {
        std::uniform_int_distribution<int> near(std::max(last - StepsBack, 1), last - 1);
        const int frame = near(random);
        if (player.IsCached(frame))
            cachedTimes.push_back(player.SeekTo(frame, 1, 0));
        else
            player.SeekTo(frame, 1, 0);
    }
    Report("player, cached", cachedTimes);
    return 0;
}
