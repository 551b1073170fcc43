// SPDX-License-Identifier: MIT
// Measures the sound of a movie: what reading it costs beside the bare decoder, how long it takes from a
// request to the first sample, what playing costs, and how evenly the device's clock goes.
//
//   torvalen_bench_sound FILE [SEEKS] [--device]
//
// Without --device a device without a sound takes the place of the system's: blocks of 10 ms, at the pace of
// real time.
#include "media/LibavInput.h"
#include "media/MediaReader.h"
#include "sound/AudioReader.h"
#include "sound/NullSink.h"
#include "sound/PortAudioSink.h"
#include "sound/SoundRenderer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <thread>
#include <vector>

namespace
{

constexpr int Rate = 48000;
constexpr int DefaultSeeks = 100;
constexpr int PieceFrames = 512;
/// How long to wait for a device, in milliseconds.
constexpr double Patience = 5000.0;

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double ProcessorSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void Report(const char* name, std::vector<double> milliseconds)
{
    std::sort(milliseconds.begin(), milliseconds.end());
    const auto at = [&](double part)
    { return milliseconds[static_cast<size_t>(part * static_cast<double>(milliseconds.size() - 1))]; };
    std::printf("%-34s median %7.2f ms   p95 %7.2f ms   max %7.2f ms\n", name, at(0.5), at(0.95), at(1.0));
}

/// Processor time, in seconds, that the library alone needs for the sound of the file.
double BareDecode(const QString& path)
{
    const double before = ProcessorSeconds();
    const LibavPointer<AVFormatContext> format = OpenLibavInput(path, {}, nullptr);
    const AVCodec* codec = nullptr;
    const int stream = format ? av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0) : -1;
    if (stream < 0)
        return 0.0;
    for (unsigned i = 0; i < format->nb_streams; ++i)
        format->streams[i]->discard = int(i) == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    const LibavPointer<AVCodecContext> decoder(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), format->streams[stream]->codecpar);
    avcodec_open2(decoder.get(), codec, nullptr);
    const LibavPointer<AVPacket> packet(av_packet_alloc());
    const LibavPointer<AVFrame> frame(av_frame_alloc());
    while (av_read_frame(format.get(), packet.get()) >= 0)
    {
        if (packet->stream_index == stream && avcodec_send_packet(decoder.get(), packet.get()) >= 0)
            while (avcodec_receive_frame(decoder.get(), frame.get()) >= 0)
            {
            }
        av_packet_unref(packet.get());
    }
    return ProcessorSeconds() - before;
}

/// Pulls at the pace of real time from a thread of its own.
class PacedDevice
{
public:
    explicit PacedDevice(NullSink* sink)
        : mThread(
              [this, sink]
              {
                  auto next = Clock::now();
                  while (!mEnds)
                  {
                      sink->Advance(Rate / 100);
                      std::this_thread::sleep_until(next += std::chrono::milliseconds(10));
                  }
              })
    {
    }
    ~PacedDevice()
    {
        mEnds = true;
        mThread.join();
    }

private:
    std::atomic<bool> mEnds{false};
    std::thread mThread;
};

class Measurement
{
public:
    Measurement(const MediaInfo& info, SoundRenderer* renderer)
        : mInfo(info), mSegments(AudioSegmentsOf(info)), mRenderer(renderer)
    {
    }

    int Play(int frame, float speed)
    {
        return mRenderer->Play(
            mSegments,
            PlaybackStart{mInfo.frameRate, {frame, 1, false}, {1, mInfo.frameCount}, Loop, speed, false});
    }

    void Seeks(int count)
    {
        std::vector<double> written;
        std::vector<double> heard;
        std::mt19937 random(1);
        for (int turn = 0; turn < count; ++turn)
        {
            const auto start = Clock::now();
            const int run = Play(std::uniform_int_distribution<int>(1, mInfo.frameCount)(random), 1.0f);
            while (mRenderer->ProgressOf(run).state == SoundRenderer::State::Pending &&
                   MillisecondsSince(start) < Patience)
                std::this_thread::sleep_for(std::chrono::microseconds(50));
            written.push_back(MillisecondsSince(start));
            while (mRenderer->ProgressOf(run).played == 0 && MillisecondsSince(start) < Patience)
                std::this_thread::sleep_for(std::chrono::microseconds(50));
            heard.push_back(MillisecondsSince(start));
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
        Report("from the request to the feed", written);
        Report("from the request to being heard", heard);
    }

    void Cost(float speed)
    {
        Play(1, speed);
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        const double before = ProcessorSeconds();
        const auto start = Clock::now();
        std::this_thread::sleep_for(std::chrono::seconds(5));
        const double percent = 100000.0 * (ProcessorSeconds() - before) / MillisecondsSince(start);
        std::printf("playing at speed %-5g               %.2f %% of one core, the device included\n",
                    static_cast<double>(speed), percent);
    }

    /// How far the clock strays from a line through all that was looked at.
    void Evenness()
    {
        const int run = Play(1, 1.0f);
        auto start = Clock::now();
        while (mRenderer->ProgressOf(run).played == 0 && MillisecondsSince(start) < Patience)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::vector<std::pair<double, double>> looks;
        start = Clock::now();
        while (MillisecondsSince(start) < 10000.0)
        {
            const double now = MillisecondsSince(start);
            looks.emplace_back(now, static_cast<double>(mRenderer->ProgressOf(run).played) * 1e-3);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        double meanX = 0.0;
        double meanY = 0.0;
        for (const auto& [x, y] : looks)
        {
            meanX += x / static_cast<double>(looks.size());
            meanY += y / static_cast<double>(looks.size());
        }
        double xx = 0.0;
        double xy = 0.0;
        for (const auto& [x, y] : looks)
        {
            xx += (x - meanX) * (x - meanX);
            xy += (x - meanX) * (y - meanY);
        }
        double square = 0.0;
        double largest = 0.0;
        for (const auto& [x, y] : looks)
        {
            const double off = y - meanY - xy / xx * (x - meanX);
            square += off * off / static_cast<double>(looks.size());
            largest = std::max(largest, std::abs(off));
        }
        std::printf("clock over 10 s                    rate %.6f, strays %.2f ms (rms), %.2f ms at most\n",
                    xy / xx, std::sqrt(square), largest);
        mRenderer->Stop();
    }

private:
    MediaInfo mInfo;
    std::vector<AudioSegment> mSegments;
    SoundRenderer* mRenderer;
};

} // namespace

int main(int argc, char** argv)
{
    const bool usesDevice = argc > 1 && std::strcmp(argv[argc - 1], "--device") == 0;
    const int arguments = argc - (usesDevice ? 1 : 0);
    if (arguments < 2)
    {
        std::fprintf(stderr, "usage: %s FILE [SEEKS] [--device]\n", argv[0]);
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    const int seeks = arguments > 2 ? std::max(std::atoi(argv[2]), 1) : DefaultSeeks;
    QString error;
    const std::unique_ptr<MediaReader> movie = OpenMedia(path, &error);
    const MediaInfo info = movie ? movie->Info() : MediaInfo();
    const std::vector<AudioSegment> segments = AudioSegmentsOf(info);
    auto start = Clock::now();
    std::unique_ptr<AudioReader> reader =
        segments.empty() ? nullptr : AudioReader::Open(segments[0], Rate, CancelToken(), &error);
    if (!reader)
    {
        std::fprintf(stderr, "%s\n", error.isEmpty() ? "the movie has no sound" : qPrintable(error));
        return 1;
    }
    std::printf("opening the sound                  %.2f ms\n", MillisecondsSince(start));

    const double seconds = static_cast<double>(info.duration) * 1e-6;
    const double bare = BareDecode(path);
    double before = ProcessorSeconds();
    std::vector<float> piece(2 * PieceFrames);
    for (int64_t first = 0; first < int64_t(seconds * Rate); first += PieceFrames)
        reader->Read(first, PieceFrames, piece.data());
    const double read = ProcessorSeconds() - before;
    std::printf(
        "reading through                    %.3f ms a second of sound; bare decoding %.3f, ratio %.2f\n",
        1000.0 * read / seconds, 1000.0 * bare / seconds, read / bare);

    std::vector<double> places;
    std::mt19937 random(1);
    for (int turn = 0; turn < seeks; ++turn)
    {
        const auto first = std::uniform_int_distribution<int64_t>(0, int64_t(seconds * Rate))(random);
        start = Clock::now();
        reader->Read(first, PieceFrames, piece.data());
        places.push_back(MillisecondsSince(start));
    }
    Report("reading at any place", places);

    std::unique_ptr<AudioSink> sink;
    std::unique_ptr<PacedDevice> paced;
    if (usesDevice)
    {
        sink = std::make_unique<PortAudioSink>();
    }
    else
    {
        auto null = std::make_unique<NullSink>(Rate, 0, Rate / 100);
        paced = std::make_unique<PacedDevice>(null.get());
        sink = std::move(null);
    }
    {
        SoundRenderer renderer(
            std::move(sink),
            [](const AudioSegment& segment, int rate, QString* reason)
            { return AudioReader::Open(segment, rate, CancelToken(), reason); },
            SoundRenderer::Threading::Own);
        Measurement measurement(info, &renderer);
        measurement.Seeks(1);
        std::printf("after the first one, which opens the device and the file:\n");
        measurement.Seeks(seeks);
        for (const float speed : {1.0f, 0.5f, 2.0f, 16.0f})
            measurement.Cost(speed);
        measurement.Evenness();
        // The device's thread must not outlive the device.
        paced.reset();
    }
    return 0;
}
