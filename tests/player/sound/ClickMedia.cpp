// SPDX-License-Identifier: MIT
#include "sound/ClickMedia.h"

#include "media/MediaReader.h"
#include "media/NumberedMedia.h"
#include "sound/AudioReader.h"

#include <cmath>

namespace
{

/// Length of a click, in seconds.
constexpr double ClickLength = 0.001;
constexpr double ClickLevel = 0.8;

} // namespace

QString ClickMedia::Movie(const QString& name, const Options& options)
{
    const double period =
        double(FramesPerClick) * options.rateDenominator * options.sampleRate / options.rateNumerator;
    const QString tone =
        QStringLiteral("if(between(n-round(floor((n+1)/%1)*%1),0,%2),%3,0.1*sin(n*n/4000000))")
            .arg(period, 0, 'f', 6)
            .arg(std::lround(options.sampleRate * ClickLength) - 1)
            .arg(ClickLevel);
    QStringList arguments{
        QStringLiteral("-f"),
        QStringLiteral("lavfi"),
        QStringLiteral("-i"),
        QStringLiteral("color=black:s=64x36:r=%1/%2").arg(options.rateNumerator).arg(options.rateDenominator),
        QStringLiteral("-itsoffset"),
        QString::number(options.audioDelay),
        QStringLiteral("-f"),
        QStringLiteral("lavfi"),
        QStringLiteral("-i"),
        QStringLiteral("aevalsrc='%1':s=%2:d=%3").arg(tone).arg(options.sampleRate).arg(options.audioSeconds),
        QStringLiteral("-map"),
        QStringLiteral("0:v"),
        QStringLiteral("-map"),
        QStringLiteral("1:a"),
        QStringLiteral("-frames:v"),
        QString::number(std::lround(options.seconds * options.rateNumerator / options.rateDenominator))};
    return NumberedMedia::Made(name, arguments + options.videoEncoder + options.audioEncoder);
}

std::unique_ptr<AudioSource> ClickMedia::Open(const QString& path, int rate, QString* error)
{
    const std::unique_ptr<MediaReader> movie = OpenMedia(path, error);
    if (!movie)
        return nullptr;
    AudioSegment segment{path, 0, 0, movie->Info().duration, movie->Info().startTime};
    return AudioReader::Open(segment, rate, CancelToken(), error);
}

std::vector<float> ClickMedia::ReadThrough(AudioSource* source, int64_t first, int count, int piece)
{
    std::vector<float> stereo(2 * size_t(count));
    for (int done = 0; done < count; done += piece)
        source->Read(first + done, std::min(piece, count - done), stereo.data() + 2 * done);
    return stereo;
}

std::vector<double> ClickMedia::ClicksIn(const std::vector<float>& stereo, int rate)
{
    // Where the sum over a click's length is highest, the click is; the part of its neighbours tells the
    // fraction.
    const int length = std::max(int(std::lround(rate * ClickLength)), 1);
    const int count = int(stereo.size() / 2);
    std::vector<double> sums(size_t(std::max(count - length + 1, 0)));
    double sum = 0.0;
    for (int i = 0; i < count; ++i)
    {
        sum += double(stereo[2 * size_t(i)]);
        if (i >= length)
            sum -= double(stereo[2 * size_t(i - length)]);
        if (i >= length - 1)
            sums[size_t(i - length + 1)] = sum / length;
    }
    std::vector<double> clicks;
    for (int i = 1; i + 1 < int(sums.size()); ++i)
    {
        const double before = sums[size_t(i) - 1];
        const double here = sums[size_t(i)];
        const double after = sums[size_t(i) + 1];
        if (here < 0.5 * ClickLevel || here <= before || here < after)
            continue;
        const double lower = std::min(before, after);
        const double shift = here > lower ? (after - before) / (2.0 * (here - lower)) : 0.0;
        if (clicks.empty() || i - clicks.back() > length)
            clicks.push_back(i + shift);
    }
    return clicks;
}

double ClickMedia::ClickPlace(const Options& options, int number, int rate)
{
    return double(number) * FramesPerClick * options.rateDenominator * rate / options.rateNumerator +
           options.audioDelay * rate;
}
