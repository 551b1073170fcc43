// SPDX-License-Identifier: MIT
#pragma once

#include "sound/AudioSource.h"

#include <QSet>

#include <cstdint>
#include <list>
#include <vector>

/// Gives the sound of a timeline, which is made of segments. Belongs to one thread.
///
/// A medium whose sound can't be had, or not wholly, is silent there; the log says so once for each.
class TimelineSound
{
public:
    explicit TimelineSound(AudioOpener opener) : mOpener(std::move(opener)) {}

    /// Takes another timeline, at @p rate sample frames a second. Media that stay are kept open.
    void SetSegments(std::vector<AudioSegment> segments, int rate);
    /// Opens the media that playback will need first, so that it can begin at once.
    void OpenMedia();
    /// Writes @p count frames, from @p first on, to @p stereo.
    void Read(int64_t first, int count, float* stereo);
    /// Writes the same frames, the last one first.
    void ReadBackwards(int64_t first, int count, float* stereo);
    int Rate() const { return mRate; }

private:
    struct Placed
    {
        AudioSegment segment;
        /// In sample frames of the timeline; the end is not included.
        int64_t begin = 0;
        int64_t end = 0;
        /// What makes a place in the timeline one in the medium.
        int64_t shift = 0;
    };
    struct Opened
    {
        QString path;
        int64_t pictureStart = 0;
        /// Null if it can't be opened.
        std::unique_ptr<AudioSource> source;
    };

    AudioSource* SourceOf(const AudioSegment& segment);
    void Report(const QString& path, const QString& problem);

    AudioOpener mOpener;
    int mRate = 0;
    std::vector<Placed> mSegments;
    /// Those used last come first.
    std::list<Opened> mOpened;
    QSet<QString> mReported;
    std::vector<float> mMixed;
    /// The frames from mBlockFirst on, which are being played backwards.
    std::vector<float> mBlock;
    int64_t mBlockFirst = 0;
};
