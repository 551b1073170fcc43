// SPDX-License-Identifier: MIT
#include "sound/SoundRig.h"

#include "host/Logger.h"
#include "project/MediaSource.h"

#include <algorithm>
#include <cmath>

namespace
{

// Both sides together carry 28 bits, which is more than an hour.
constexpr int64_t Base = 1 << 14;
constexpr double SlopeLength = double(1 << 23);

} // namespace

WarningList::WarningList()
{
    connect(Logger::GetInstance(), SIGNAL(WarningLogged(QString)), this, SLOT(OnWarning(QString)));
}

void TellingSource::Read(int64_t first, int count, float* stereo)
{
    for (int i = 0; i < count; ++i)
    {
        const int64_t place = std::max<int64_t>(first + i, 0);
        const bool isExact = mKind == Exact;
        stereo[2 * i] = isExact ? float(place % Base) / float(Base) : float(double(place) / SlopeLength);
        stereo[2 * i + 1] = isExact ? float(place / Base) / float(Base) : stereo[2 * i];
    }
}

int64_t TellingSource::ExactPlace(const float* frame)
{
    return std::llround(double(frame[0]) * Base) + std::llround(double(frame[1]) * Base) * Base;
}

double TellingSource::SlopePlace(const float* frame)
{
    return double(frame[0]) * SlopeLength;
}

AudioOpener TellingSource::Opener(Kind kind)
{
    return [kind](const AudioSegment&, int, QString*) { return std::make_unique<TellingSource>(kind); };
}

std::shared_ptr<MediaTimeline> SoundRig::MakeTimeline(const MediaInfo& info)
{
    // Of a medium without a file, so that pictures take no time.
    return std::make_shared<MediaTimeline>(
        std::make_shared<const MediaSource>(QUuid::createUuid(), info, true));
}

SoundRig::SoundRig(const Options& given) : options(given)
{
    MediaInfo info;
    info.path = QStringLiteral("/media/told.mov");
    info.frameCount = options.frameCount;
    info.frameRate = options.rate;
    info.duration = options.rate.FrameToTime(int64_t(options.frameCount) + 1);
    info.hasAudio = options.hasSound;
    timeline = MakeTimeline(info);
    playback = std::make_unique<PlaybackController>(&loader, nullptr);
    auto nullSink = std::make_unique<NullSink>(options.sampleRate, options.latency);
    sink = nullSink.get();
    if (options.segments.empty())
        options.segments = AudioSegmentsOf(info);
    player = std::make_unique<SoundPlayer>(
        [this] { return options.segments; }, std::move(nullSink),
        options.opener ? options.opener : TellingSource::Opener(options.kind), options.threading, nullptr);
    // Simulated time stands still while the test thinks.
    player->SetPatience(600000);
    player->Lead(playback.get());
    playback->SetTimeline(0, timeline);
}

SoundRig::~SoundRig() = default;

void SoundRig::Tick()
{
    QMetaObject::invokeMethod(playback.get(), "OnTick", Qt::DirectConnection);
}

std::vector<float> SoundRig::Run(int frames, int block)
{
    std::vector<float> heard;
    for (int done = 0; done < frames; done += block)
    {
        if (options.threading == SoundRenderer::Threading::ByPump)
            player->Renderer()->Pump();
        const std::vector<float> stereo = sink->Advance(std::min(block, frames - done));
        heard.insert(heard.end(), stereo.begin(), stereo.end());
        Tick();
    }
    return heard;
}

int SoundRig::FrameOfPlace(double place) const
{
    const double frames = place * options.rate.numerator / options.rate.denominator / options.sampleRate;
    // Clocks count in microseconds.
    const double microsecond = 1.1e-6 * options.rate.numerator / options.rate.denominator;
    return int(std::floor(frames + microsecond)) + 1;
}
