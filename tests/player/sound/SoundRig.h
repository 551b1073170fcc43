// SPDX-License-Identifier: MIT
#pragma once

#include "media/FrameLoader.h"
#include "playback/PlaybackController.h"
#include "project/MediaTimeline.h"
#include "sound/NullSink.h"
#include "sound/SoundPlayer.h"

#include <QStringList>

#include <memory>
#include <vector>

/// The warnings that the log gets while it lives.
class WarningList : public QObject
{
    Q_OBJECT

public:
    WarningList();

    QStringList texts;

private Q_SLOTS:
    void OnWarning(const QString& text) { texts << text; }
};

/// A sound whose samples tell their place: exactly, or as a slope that a change of the rate leaves as it is.
class TellingSource : public AudioSource
{
public:
    enum Kind
    {
        Exact,
        Slope
    };
    explicit TellingSource(Kind kind) : mKind(kind) {}

    void Read(int64_t first, int count, float* stereo) override;

    /// The place that a heard frame of an exact sound tells.
    static int64_t ExactPlace(const float* frame);
    /// The place that a heard frame of a slope tells.
    static double SlopePlace(const float* frame);
    /// Opens such a sound for any medium.
    static AudioOpener Opener(Kind kind);

private:
    Kind mKind;
};

/// A playback of one medium, with its sound and a device whose time the test drives.
struct SoundRig
{
    struct Options
    {
        FrameRate rate{24, 1};
        int frameCount = 2400;
        int sampleRate = 48000;
        int latency = 1500;
        bool hasSound = true;
        TellingSource::Kind kind = TellingSource::Exact;
        SoundRenderer::Threading threading = SoundRenderer::Threading::ByPump;
        /// What opens the media; the telling sound if it is null.
        AudioOpener opener;
        /// The sound of the timeline that leads; that of one medium if there are none.
        std::vector<AudioSegment> segments;
    };

    explicit SoundRig(const Options& options);
    ~SoundRig();

    /// The timeline of a medium that @p info tells of, whose pictures take no time.
    static std::shared_ptr<MediaTimeline> MakeTimeline(const MediaInfo& info);
    /// Lets the renderer work, @p frames frames of the device's time go by, and the controller look at the
    /// clock. Returns what was audible.
    std::vector<float> Run(int frames, int block = 480);
    /// Lets the controller look at the clock, as its timer does.
    void Tick();
    /// The frame of the picture to which place @p place of the sound belongs.
    int FrameOfPlace(double place) const;

    Options options;
    WarningList warnings;
    FrameLoader loader{nullptr};
    NullSink* sink = nullptr;
    std::unique_ptr<PlaybackController> playback;
    std::unique_ptr<SoundPlayer> player;
    std::shared_ptr<MediaTimeline> timeline;
};
