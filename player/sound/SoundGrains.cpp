// SPDX-License-Identifier: MIT
#include "sound/SoundGrains.h"

#include <algorithm>
#include <cmath>

namespace
{

// In milliseconds.
constexpr int GrainLength = 80;
constexpr int FadeLength = 10;
/// How long a grain sounds at least before the next one may take its place.
constexpr int ShortestGrain = 30;
constexpr int MillisecondsPerSecond = 1000;
constexpr float HalfTurn = 3.14159265f;

} // namespace

void SoundGrains::Reset(int rate)
{
    mRate = rate;
    mRequested.reset();
    mVoices.clear();
}

int SoundGrains::GrainFrames() const
{
    return mRate * GrainLength / MillisecondsPerSecond;
}

int SoundGrains::FadeFrames() const
{
    return mRate * FadeLength / MillisecondsPerSecond;
}

void SoundGrains::BeginGrain(const Reader& read)
{
    for (Voice& voice : mVoices)
        voice.fadeOutAt = std::min(voice.fadeOutAt, voice.position);
    Voice voice;
    voice.frames.resize(2 * static_cast<size_t>(GrainFrames()));
    voice.fadeOutAt = GrainFrames() - FadeFrames();
    read(*mRequested, GrainFrames(), voice.frames.data());
    mRequested.reset();
    mVoices.push_back(std::move(voice));
}

float SoundGrains::Envelope(const Voice& voice) const
{
    const int fade = FadeFrames();
    const int left = voice.fadeOutAt + fade - voice.position;
    const int part = std::min(std::min(voice.position, left), fade);
    return 0.5f - 0.5f * std::cos(HalfTurn * static_cast<float>(part) / static_cast<float>(fade));
}

bool SoundGrains::Render(const Reader& read, int count, float* stereo)
{
    std::fill(stereo, stereo + 2 * count, 0.0f);
    const int shortest = mRate * ShortestGrain / MillisecondsPerSecond;
    if (mRequested && (mVoices.empty() || mVoices.back().position >= shortest))
        BeginGrain(read);
    if (mVoices.empty())
        return false;
    for (Voice& voice : mVoices)
    {
        const int end = std::min(voice.fadeOutAt + FadeFrames(), GrainFrames());
        for (int i = 0; i < count && voice.position < end; ++i, ++voice.position)
        {
            const float level = Envelope(voice);
            stereo[2 * i] += level * voice.frames[2 * static_cast<size_t>(voice.position)];
            stereo[2 * i + 1] += level * voice.frames[2 * static_cast<size_t>(voice.position) + 1];
        }
    }
    const auto isOver = [&](const Voice& voice) { return voice.position >= voice.fadeOutAt + FadeFrames(); };
    mVoices.erase(std::remove_if(mVoices.begin(), mVoices.end(), isOver), mVoices.end());
    return true;
}
