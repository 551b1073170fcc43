// SPDX-License-Identifier: MIT
#pragma once

#include "media/DecodeErrors.h"
#include "media/LibavPointers.h"
#include "media/MediaReader.h"
#include "media/MovieIndex.h"

#include <vector>

class PictureConverter;

/// Reads a movie through the decoding library.
///
/// Each packet goes to the decoder with the number of its frame in the place of its time, so that a picture
/// that comes out says which frame it is, whatever the container's times are.
class MovieReader : public MediaReader
{
public:
    /// Opens @p path. Returns null on failure and tells why in @p error.
    static std::unique_ptr<MovieReader> Open(const QString& path, const MediaOptions& options,
                                             QString* error);
    ~MovieReader() override;

    const MediaInfo& Info() const override { return mInfo; }
    DecodedFrame DecodeFrame(int frame, const CancelToken& cancel) override;
    int GroupStart(int frame) const override;

private:
    enum class Outcome
    {
        Whole,
        Damaged,
        Absent,
        Cancelled
    };

    explicit MovieReader(const MediaOptions& options);

    bool OpenFile(QString* error);
    bool OpenDecoder(QString* error);
    bool BuildIndex(QString* error);
    void FillInfo();

    /// Whether @p frame comes out by decoding on from where the decoder stands.
    bool CanReadOn(int frame) const;
    /// Empties the decoder and makes the packet of index @p packet the next that it gets.
    bool SeekTo(int packet);
    /// Moves the file to @p packet or before it, in the @p attempt-th of several ways.
    bool SeekFile(int packet, int attempt);
    /// Reads the first packet after a seek; false if it comes after @p packet.
    bool FindPlace(int packet);
    /// Decodes on until @p frame or a later one has come out.
    Outcome ReadUntil(int frame, const CancelToken& cancel);
    /// Gives the decoder one more packet, or the end, on the way to @p frame.
    void FeedDecoder(int frame);
    /// Reads the next packet that the decoder needs into mPacket.
    bool ReadPacket();
    /// Writes its frame's number into mPacket, which is that of index @p index.
    void TakePacket(int index);
    /// Whether part of mPicture could not be decoded.
    bool IsPictureDamaged() const;
    /// Takes what comes out of the decoder; false if that is nothing.
    bool ReceivePicture();
    DecodedFrame Answer(int frame, Outcome outcome) const;
    AVRational PixelAspect(const AVFrame& frame) const;
    QString FrameText(int frame, const QString& reason) const;

    static int Interrupted(void* reader);

    MediaOptions mOptions;
    MediaInfo mInfo;
    MovieIndex mIndex;
    LibavPointer<AVFormatContext> mFormat;
    /// Stands before the decoder, whose threads write to it.
    DecodeErrors mErrors;
    LibavPointer<AVCodecContext> mDecoder;
    LibavPointer<AVPacket> mPacket;
    /// The picture that came out of the decoder last; its frame's number is mPictureFrame, 0 if there is
    /// none.
    LibavPointer<AVFrame> mPicture;
    std::shared_ptr<PictureConverter> mConverter;
    int mStreamIndex = -1;
    /// Between this frame and mPictureFrame no picture came out though each was wanted; 0 if nothing is
    /// known.
    int mAbsentAfter = 0;
    /// Frames before this one may have been left out since the last seek.
    int mSkippedBelow = 0;
    int mPictureFrame = 0;
    /// Index of the next packet that the file gives; -1 if unknown.
    int mNextPacket = -1;
    /// The packet that decoding began with after the last seek.
    int mFirstPacket = 0;
    /// mPacket holds one that the decoder has not taken yet.
    bool mHasPacket = false;
    bool mDrained = false;
    /// A whole picture came out since the last seek, so it went to a true key picture.
    bool mIsProven = false;
    bool mIsIntraOnly = false;
    bool mCanSkip = false;
    QString mLastError;
};
