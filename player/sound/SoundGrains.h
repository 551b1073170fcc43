// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

/// Short pieces of sound, one for each place that the user scrubs over, faded in and out and into each other.
///
/// While a grain has just begun a newer place waits for it; of several that wait the last one is taken.
class SoundGrains
{
public:
    /// Writes the sound's frames from a place on.
    using Reader = std::function<void(int64_t first, int count, float* stereo)>;

    /// Starts afresh, at @p rate sample frames a second.
    void Reset(int rate);
    /// Asks for the grain that begins at @p place.
    void Request(int64_t place) { mRequested = place; }
    /// Writes the next @p count frames to @p stereo. Returns false, and silence, once nothing sounds and
    /// nothing waits.
    bool Render(const Reader& read, int count, float* stereo);

    /// Frames of a grain, its fades included, and of a fade.
    int GrainFrames() const;
    int FadeFrames() const;

private:
    struct Voice
    {
        std::vector<float> frames;
        int position = 0;
        int fadeOutAt = 0;
    };

    void BeginGrain(const Reader& read);
    float Envelope(const Voice& voice) const;

    int mRate = 1;
    std::optional<int64_t> mRequested;
    std::vector<Voice> mVoices;
};
