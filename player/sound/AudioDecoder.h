// SPDX-License-Identifier: MIT
#pragma once

#include "media/CancelToken.h"
#include "media/LibavPointers.h"
#include "sound/StereoMixer.h"

#include <QString>

#include <memory>
#include <vector>

/// Decodes a medium's sound block by block, as stereo at the sound's own rate.
///
/// Positions count sample frames at that rate from time 0 of the file's clock; they may be negative.
class AudioDecoder
{
public:
    /// Opens the main sound of the file at @p path. Returns null on failure, with the reason in @p error.
    /// @p cancel ends any reading early, for good.
    static std::unique_ptr<AudioDecoder> Open(const QString& path, const CancelToken& cancel, QString* error);

    /// Sample frames a second.
    int Rate() const { return mDecoder->sample_rate; }

    /// Goes to where decoding gives the frame at @p position and all after it, or, if the sound begins later,
    /// to its beginning.
    void Seek(int64_t position);
    /// Decodes the next block; false at the end.
    bool Next();

    /// Position of the block's first frame.
    int64_t Position() const { return mPosition; }
    /// The block, left before right.
    const std::vector<float>& Block() const { return mBlock; }
    int BlockFrames() const { return static_cast<int>(mBlock.size() / 2); }

    /// What could not be decoded first; empty if nothing went wrong.
    const QString& Problem() const { return mProblem; }

private:
    AudioDecoder(const QString& path, const CancelToken& cancel);

    bool OpenFile(QString* error);
    bool OpenCodec(QString* error);
    /// Finds out how long the blocks are that the file is cut into, where they are all alike.
    void MeasureBlocks();
    /// How much has to be decoded before a position for it to come out right.
    int64_t Preroll() const;
    /// Whether the pictures' index is the way to a time of the sound.
    bool SeeksByPictures() const;
    bool SeekToStart();
    /// Asks the file for @p position or before it; false if it ends up behind.
    bool SeekFile(int stream, int64_t position);
    /// Empties the decoder and reads the first packet.
    bool BeginReading();
    bool ReadPacket();
    /// Position of a time of the stream, or of the block that begins there if the times are coarse.
    int64_t PositionOf(int64_t time) const;
    void TakeFrame();
    void Note(const QString& reason);

    static int Interrupted(void* decoder);

    QString mPath;
    CancelToken mCancel;
    LibavPointer<AVFormatContext> mFormat;
    LibavPointer<AVCodecContext> mDecoder;
    LibavPointer<AVPacket> mPacket;
    LibavPointer<AVFrame> mFrame;
    StereoMixer mMixer;
    int mStreamIndex = -1;
    bool mHasPacket = false;
    bool mIsAtStart = true;
    bool mHasPosition = false;
    int64_t mPosition = 0;
    /// Where the next block is to begin if nothing is missing.
    int64_t mExpected = 0;
    /// Blocks begin every mBlockLength frames from mFirstBlock on; 0 if that isn't known.
    int64_t mFirstBlock = 0;
    int mBlockLength = 0;
    std::vector<float> mBlock;
    QString mProblem;
};
