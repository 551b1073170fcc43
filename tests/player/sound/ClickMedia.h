// SPDX-License-Identifier: MIT
#pragma once

#include "sound/AudioSource.h"

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

/// Movies with a click at the start of every 24th frame, over a quiet tone that never repeats, and what tests
/// read from them.
namespace ClickMedia
{

/// Frames of the picture from one click to the next.
constexpr int FramesPerClick = 24;

struct Options
{
    /// Frames a second, as a ratio.
    int rateNumerator = 24;
    int rateDenominator = 1;
    int sampleRate = 48000;
    QStringList videoEncoder = {QStringLiteral("-c:v"), QStringLiteral("mpeg4"), QStringLiteral("-g"),
                                QStringLiteral("24")};
    QStringList audioEncoder = {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")};
    double seconds = 12.0;
    double audioSeconds = 12.0;
    /// By how much the sound is put later (above 0) or earlier in the file, in seconds. Clicks move with it.
    double audioDelay = 0.0;
};

/// Path of a movie called @p name. Empty if it can't be made.
QString Movie(const QString& name, const Options& options);

/// Opens the sound of the movie at @p path as the player does: by the segment of its source timeline. Null
/// with the reason in @p error if that fails.
std::unique_ptr<AudioSource> Open(const QString& path, int rate, QString* error = nullptr);

/// All @p count frames from @p first on, read in pieces of @p piece frames.
std::vector<float> ReadThrough(AudioSource* source, int64_t first, int count, int piece = 777);

/// Frames at which clicks begin in @p stereo, as the left side has them, to a fraction of a frame. @p rate is
/// that of the frames.
std::vector<double> ClicksIn(const std::vector<float>& stereo, int rate);

/// Where click @p number (0-based) is, in frames at @p rate.
double ClickPlace(const Options& options, int number, int rate);

} // namespace ClickMedia

Q_DECLARE_METATYPE(ClickMedia::Options)
