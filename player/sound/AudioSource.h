// SPDX-License-Identifier: MIT
#pragma once

#include "sound/AudioSegment.h"

#include <QString>

#include <functional>
#include <memory>

/// Gives the sound of one medium as stereo at a fixed rate. Belongs to one thread at a time.
///
/// A sample frame is a left and a right sample. They count from 0, the start of the medium's first picture;
/// sound may begin before and end after the pictures do.
class AudioSource
{
public:
    virtual ~AudioSource() = default;

    /// Writes @p count sample frames from @p first on to @p stereo (2 * @p count values, left before right).
    /// What the medium doesn't have, or what can't be decoded, is silence. The same frames come out whatever
    /// was read before. Reading on from the last call costs least.
    virtual void Read(int64_t first, int count, float* stereo) = 0;

    /// What went wrong so far, in words that name the medium; empty if nothing did.
    virtual QString Problem() const { return {}; }
};

/// Opens the medium of a segment as sample frames at a rate (per second); null if its sound can't be had,
/// with the reason in the text.
using AudioOpener =
    std::function<std::unique_ptr<AudioSource>(const AudioSegment& segment, int rate, QString* error)>;
