// SPDX-License-Identifier: MIT
#include "sound/PortAudioSink.h"

#include "sound/SoundFeed.h"

#include <QtGlobal>

#include <portaudio.h>

#include <algorithm>
#include <chrono>

#ifdef Q_OS_LINUX
#include <dlfcn.h>
#endif

namespace
{

constexpr double NanosecondsPerSecond = 1e9;
// Latency to ask for, in seconds: below it the desktop's mixers run dry, above it playback starts late.
constexpr double LowestLatency = 0.02;
constexpr double HighestLatency = 0.1;
/// A latency beyond this, in seconds, is a device's slip.
constexpr double PlausibleLatency = 2.0;

int64_t NowInNanoseconds()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

#ifdef Q_OS_LINUX
extern "C" void KeepQuiet(const char*, ...) {}
extern "C" void KeepQuietJack(const char*) {}
#endif

/// While PortAudio looks for devices, the libraries below it write on the terminal about each one that isn't
/// there. The reason for a failure reaches the log in words instead.
void SilenceDeviceLibraries()
{
#ifdef Q_OS_LINUX
    using AlsaHandler = void (*)(const char*, ...);
    using JackHandler = void (*)(const char*);
    if (void* const set = dlsym(RTLD_DEFAULT, "snd_lib_error_set_handler"))
        reinterpret_cast<int (*)(AlsaHandler)>(set)(&KeepQuiet);
    for (const char* const name : {"jack_set_error_function", "jack_set_info_function"})
        if (void* const set = dlsym(RTLD_DEFAULT, name))
            reinterpret_cast<void (*)(JackHandler)>(set)(&KeepQuietJack);
#endif
}

} // namespace

PortAudioSink::~PortAudioSink()
{
    Close();
}

bool PortAudioSink::Open(SoundFeed* feed, QString* error)
{
    Close();
    mFeed = feed;
    SilenceDeviceLibraries();
    const PaError result = Pa_Initialize();
    mIsInitialized = result == paNoError;
    if (mIsInitialized && OpenStream(error))
        return true;
    if (!mIsInitialized && error != nullptr)
        *error = QString::fromUtf8(Pa_GetErrorText(result));
    Close();
    return false;
}

bool PortAudioSink::OpenStream(QString* error)
{
    const PaDeviceIndex device = Pa_GetDefaultOutputDevice();
    const PaDeviceInfo* const info = device == paNoDevice ? nullptr : Pa_GetDeviceInfo(device);
    if (info == nullptr)
    {
        if (error != nullptr)
            *error = QStringLiteral("there is no sound device");
        return false;
    }
    mRate = qRound(info->defaultSampleRate);
    PaStreamParameters output = {};
    output.device = device;
    output.channelCount = 2;
    output.sampleFormat = paFloat32;
    output.suggestedLatency = std::clamp(info->defaultLowOutputLatency, LowestLatency, HighestLatency);
    PaError result = Pa_OpenStream(&mStream, nullptr, &output, mRate, paFramesPerBufferUnspecified,
                                   paClipOff | paDitherOff, &PortAudioSink::OnCallback, this);
    if (result == paNoError)
    {
        if (const PaStreamInfo* const stream = Pa_GetStreamInfo(mStream))
            mUsualLatency = static_cast<int64_t>(stream->outputLatency * NanosecondsPerSecond);
        result = Pa_StartStream(mStream);
    }
    if (result == paNoError)
        return true;
    if (error != nullptr)
        *error = QStringLiteral("the sound device \"%1\" can't be used: %2")
                     .arg(QString::fromUtf8(info->name), QString::fromUtf8(Pa_GetErrorText(result)));
    return false;
}

void PortAudioSink::Close()
{
    if (mStream != nullptr)
    {
        Pa_AbortStream(mStream);
        Pa_CloseStream(mStream);
        mStream = nullptr;
    }
    if (mIsInitialized)
        Pa_Terminate();
    mIsInitialized = false;
}

int PortAudioSink::OnCallback(const void* input, void* output, unsigned long frames,
                              const PaStreamCallbackTimeInfo* times, unsigned long flags, void* sink)
{
    Q_UNUSED(input)
    Q_UNUSED(flags)
    static_cast<PortAudioSink*>(sink)->Fill(static_cast<float*>(output), static_cast<int>(frames), times);
    return paContinue;
}

void PortAudioSink::Fill(float* stereo, int frames, const PaStreamCallbackTimeInfo* times)
{
    const int64_t now = NowInNanoseconds();
    const SoundFeed::Pulled pulled = mFeed->Pull(stereo, frames);
    if (pulled.frames == 0)
        return;
    int64_t latency = mUsualLatency;
    // Some devices leave the times out.
    if (times != nullptr && times->currentTime > 0.0 && times->outputBufferDacTime > times->currentTime &&
        times->outputBufferDacTime - times->currentTime < PlausibleLatency)
        latency =
            static_cast<int64_t>((times->outputBufferDacTime - times->currentTime) * NanosecondsPerSecond);
    const uint32_t changes = mChanges.load(std::memory_order_relaxed);
    mChanges.store(changes + 1);
    mBlockPosition.store(pulled.position);
    mBlockFrames.store(pulled.frames);
    mBlockTime.store(now + latency);
    mChanges.store(changes + 2);
}

int64_t PortAudioSink::HeardPosition() const
{
    int64_t position = 0;
    int64_t frames = 0;
    int64_t time = 0;
    uint32_t changes = 0;
    do
    {
        changes = mChanges.load();
        position = mBlockPosition.load();
        frames = mBlockFrames.load();
        time = mBlockTime.load();
    } while ((changes & 1) != 0 || mChanges.load() != changes);
    if (changes == 0)
        return 0;
    const double since = static_cast<double>(NowInNanoseconds() - time) / NanosecondsPerSecond;
    // Before the block comes what was pulled before it.
    return position + std::min(static_cast<int64_t>(since * mRate), frames);
}
