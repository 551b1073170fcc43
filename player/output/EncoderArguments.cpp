// SPDX-License-Identifier: MIT
#include "output/EncoderArguments.h"

#include "output/VideoFrame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

namespace
{

constexpr int CommonSampleRate = 48000;
constexpr int BitsOfChannel = 96000;
constexpr double MicrosecondsPerSecond = 1000000.0;

template<typename Type, size_t Count>
const Type& Chosen(const std::array<Type, Count>& choices, int value)
{
    return choices[value < 0 || value >= static_cast<int>(Count) ? Count - 1 : static_cast<size_t>(value)];
}

QString Seconds(int64_t time)
{
    return QString::number(static_cast<double>(time) / MicrosecondsPerSecond, 'f', 6);
}

/// What all stretches of sound are brought to.
struct SoundFormat
{
    int sampleRate = CommonSampleRate;
    int channels = 2;

    QString Layout() const { return channels == 1 ? QStringLiteral("mono") : QStringLiteral("stereo"); }
    int64_t SampleAt(int64_t time) const
    {
        return std::llround(static_cast<double>(time) * sampleRate / MicrosecondsPerSecond);
    }
};

/// That of the media where they agree and the encoder has it; a common one otherwise.
SoundFormat FormatOf(const OutputPlan& plan)
{
    static const std::set<int> encodable = {22050, 24000, 32000, 44100, 48000, 88200, 96000};
    std::set<int> rates;
    int channels = 1;
    for (const OutputSound& sound : plan.sound)
    {
        const MediaInfo& info = plan.media[static_cast<size_t>(sound.media)];
        rates.insert(info.audioSampleRate);
        channels = std::max(channels, std::min(info.audioChannels, 2));
    }
    SoundFormat format;
    format.channels = channels;
    if (rates.size() == 1 && encodable.count(*rates.begin()) > 0)
        format.sampleRate = *rates.begin();
    return format;
}

QStringList SoundInputs(const OutputPlan& plan)
{
    QStringList arguments;
    for (const OutputSound& sound : plan.sound)
    {
        const MediaInfo& info = plan.media[static_cast<size_t>(sound.media)];
        // By the file's own times: counted from its start, sound that begins before the picture would move.
        arguments << QStringLiteral("-seek_timestamp") << QStringLiteral("1") << QStringLiteral("-ss")
                  << Seconds(info.startTime + sound.mediaTime) << QStringLiteral("-t")
                  << Seconds(sound.end - sound.start) << QStringLiteral("-vn") << QStringLiteral("-i")
                  << QStringLiteral("file:") + info.path;
    }
    return arguments;
}

/// Puts the stretches one after the other, to the sample, with silence where there is none.
QString SoundFilter(const OutputPlan& plan, const SoundFormat& format)
{
    QStringList chains;
    QString labels;
    int64_t position = 0;
    int parts = 0;
    const auto addPart = [&](const QString& source, int64_t samples)
    {
        chains << QStringLiteral("%1atrim=end_sample=%2,asetpts=PTS-STARTPTS[s%3]")
                      .arg(source)
                      .arg(samples)
                      .arg(parts);
        labels += QStringLiteral("[s%1]").arg(parts++);
        position += samples;
    };
    const auto addSilence = [&](int64_t until)
    {
        if (until > position)
            addPart(QStringLiteral("anullsrc=r=%1:cl=%2,aformat=sample_fmts=fltp,")
                        .arg(format.sampleRate)
                        .arg(format.Layout()),
                    until - position);
    };
    int input = 1;
    for (const OutputSound& sound : plan.sound)
    {
        addSilence(format.SampleAt(sound.start));
        const int64_t samples = format.SampleAt(sound.end) - position;
        // Sound that begins late or ends early is filled up with silence.
        const QString chain =
            QStringLiteral("[%1:a:0]aresample=%2:async=1:first_pts=0,aformat=sample_fmts=fltp:"
                           "channel_layouts=%3,apad=whole_len=%4,")
                .arg(input++)
                .arg(format.sampleRate)
                .arg(format.Layout())
                .arg(samples);
        addPart(chain, samples);
    }
    addSilence(format.SampleAt(plan.Duration()));
    chains << QStringLiteral("%1concat=n=%2:v=0:a=1[sound]").arg(labels).arg(parts);
    return chains.join(QLatin1Char(';'));
}

} // namespace

QString EncoderProfile(ExportProfile profile)
{
    static const std::array<QString, 3> profiles = {QStringLiteral("high"), QStringLiteral("main"),
                                                    QStringLiteral("baseline")};
    return Chosen(profiles, profile);
}

int EncoderRateFactor(ExportQuality quality)
{
    static const std::array<int, 4> factors = {14, 18, 23, 29};
    return Chosen(factors, quality);
}

QString EncoderPreset(ExportPreset preset)
{
    static const std::array<QString, 9> presets = {
        QStringLiteral("veryslow"), QStringLiteral("slower"),    QStringLiteral("slow"),
        QStringLiteral("medium"),   QStringLiteral("fast"),      QStringLiteral("faster"),
        QStringLiteral("veryfast"), QStringLiteral("superfast"), QStringLiteral("ultrafast")};
    return Chosen(presets, preset);
}

QSize EncodableSize(const QSize& size)
{
    return QSize((size.width() + 1) & ~1, (size.height() + 1) & ~1);
}

QStringList EncoderArguments(const OutputPlan& plan, const ExportOptions& options, const QSize& size,
                             const QString& file)
{
    // Each line tells its level, so that an error can be told from what is said after it.
    QStringList arguments = {QStringLiteral("-hide_banner"),
                             QStringLiteral("-nostdin"),
                             QStringLiteral("-y"),
                             QStringLiteral("-nostats"),
                             QStringLiteral("-loglevel"),
                             QStringLiteral("level+info"),
                             QStringLiteral("-progress"),
                             QStringLiteral("pipe:1"),
                             QStringLiteral("-f"),
                             QStringLiteral("rawvideo"),
                             QStringLiteral("-pixel_format"),
                             QStringLiteral("yuv420p"),
                             QStringLiteral("-video_size"),
                             QStringLiteral("%1x%2").arg(size.width()).arg(size.height()),
                             QStringLiteral("-framerate"),
                             QStringLiteral("%1/%2").arg(plan.rate.numerator).arg(plan.rate.denominator),
                             QStringLiteral("-i"),
                             QStringLiteral("pipe:0")};
    arguments << SoundInputs(plan);
    arguments << QStringLiteral("-map") << QStringLiteral("0:v:0");
    if (!plan.sound.empty())
    {
        const SoundFormat format = FormatOf(plan);
        arguments << QStringLiteral("-filter_complex") << SoundFilter(plan, format) << QStringLiteral("-map")
                  << QStringLiteral("[sound]") << QStringLiteral("-c:a") << QStringLiteral("aac")
                  << QStringLiteral("-b:a") << QString::number(BitsOfChannel * format.channels);
    }
    const QString matrix = VideoFrameMaker(size).Matrix() == SWS_CS_ITU709 ? QStringLiteral("bt709")
                                                                           : QStringLiteral("smpte170m");
    arguments << QStringLiteral("-c:v") << QStringLiteral("libx264") << QStringLiteral("-profile:v")
              << EncoderProfile(options.profile) << QStringLiteral("-preset") << EncoderPreset(options.preset)
              << QStringLiteral("-crf") << QString::number(EncoderRateFactor(options.quality))
              << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p") << QStringLiteral("-color_range")
              << QStringLiteral("tv") << QStringLiteral("-colorspace") << matrix
              << QStringLiteral("-color_primaries") << matrix << QStringLiteral("-color_trc") << matrix
              << QStringLiteral("-movflags") << QStringLiteral("+faststart") << QStringLiteral("-f")
              << QStringLiteral("mp4") << QStringLiteral("file:") + file;
    return arguments;
}
