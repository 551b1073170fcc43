// SPDX-License-Identifier: MIT
#include "media/MovieReader.h"

#include "media/LibavError.h"
#include "media/PictureConverter.h"

#include <algorithm>

namespace
{

// How often a damaged picture is tried again from an earlier key picture: some streams call pictures keys
// that others before them are needed for.
constexpr int MaximumRetries = 3;
// Rather than seeking, up to this many packets before the key picture are decoded.
constexpr int PacketsWorthDecoding = 4;
// Ways of seeking that SeekFile() knows.
constexpr int SeekAttempts = 6;
// How many packets of unknown times may come after a seek before it counts as failed.
constexpr int MaximumStrangers = 64;

} // namespace

MovieReader::MovieReader(const MediaOptions& options)
    : mOptions(options), mPacket(av_packet_alloc()), mPicture(av_frame_alloc())
{
}

MovieReader::~MovieReader() = default;

int MovieReader::Interrupted(void* reader)
{
    return static_cast<const MovieReader*>(reader)->mOptions.cancel.IsCancelled() ? 1 : 0;
}

int MovieReader::GroupStart(int frame) const
{
    return mIndex.GroupStart(std::clamp(frame, 1, mInfo.frameCount));
}

DecodedFrame MovieReader::DecodeFrame(int frame, const CancelToken& cancel)
{
    if (frame < 1 || frame > mInfo.frameCount)
        return {ReadStatus::Missing, FrameText(frame, QStringLiteral("the movie has no such frame")), {}};
    if (cancel.IsCancelled())
        return {};
    mLastError.clear();
    if (mAbsentAfter > 0 && frame > mAbsentAfter && frame < mPictureFrame)
        return Answer(frame, Outcome::Absent);
    Outcome outcome = Outcome::Absent;
    if (CanReadOn(frame))
    {
        outcome = ReadUntil(frame, cancel);
        if (outcome == Outcome::Whole || outcome == Outcome::Cancelled || mIsProven)
            return Answer(frame, outcome);
    }
    int tried = mIndex.PacketCount();
    for (int retry = 0; retry <= MaximumRetries; ++retry)
    {
        const int start = mIndex.StartPacket(frame, retry);
        if (start == tried)
            break;
        tried = start;
        if (!SeekTo(start))
            continue;
        outcome = ReadUntil(frame, cancel);
        if (outcome == Outcome::Whole || outcome == Outcome::Cancelled || mIsIntraOnly)
            break;
    }
    return Answer(frame, outcome);
}

bool MovieReader::CanReadOn(int frame) const
{
    if (frame == mPictureFrame)
        return mPicture->data[0] != nullptr;
    if (mNextPacket < 0 || mDrained || frame < mPictureFrame || frame < mSkippedBelow)
        return false;
    const int start = mIndex.StartPacket(frame);
    return start >= mFirstPacket && start <= mNextPacket + PacketsWorthDecoding;
}

MovieReader::Outcome MovieReader::ReadUntil(int frame, const CancelToken& cancel)
{
    while (mPictureFrame < frame)
    {
        if (cancel.IsCancelled())
            return Outcome::Cancelled;
        if (ReceivePicture())
            continue;
        if (mDrained)
            return Outcome::Absent;
        FeedDecoder(frame);
    }
    if (mPictureFrame > frame)
    {
        mAbsentAfter = frame;
        return Outcome::Absent;
    }
    return IsPictureDamaged() ? Outcome::Damaged : Outcome::Whole;
}

bool MovieReader::IsPictureDamaged() const
{
    return (mPicture->flags & AV_FRAME_FLAG_CORRUPT) != 0 || mPicture->decode_error_flags != 0 ||
           mErrors.Has(mPictureFrame);
}

bool MovieReader::ReceivePicture()
{
    const int result = avcodec_receive_frame(mDecoder.get(), mPicture.get());
    if (result == AVERROR(EAGAIN))
        return false;
    if (result == AVERROR_EOF)
    {
        mDrained = true;
        return false;
    }
    if (result < 0)
    {
        // The picture that failed does not come out; the next ones do.
        mLastError = LibavErrorText(result);
        return true;
    }
    // A picture without a number is one of no packet of ours.
    if (mPicture->pts > 0 && mPicture->pts <= mInfo.frameCount)
        mPictureFrame = int(mPicture->pts);
    mIsProven = mIsProven || !IsPictureDamaged();
    return true;
}

void MovieReader::FeedDecoder(int frame)
{
    if (!mHasPacket && !ReadPacket())
        return;
    const int number = mPacket->pts == AV_NOPTS_VALUE ? 0 : int(mPacket->pts);
    const bool isSkipped = mCanSkip && number > 0 && number < frame;
    mDecoder->skip_frame = isSkipped ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
    if (isSkipped)
        mSkippedBelow = std::max(mSkippedBelow, frame);
    mErrors.Forget(number);
    mDecoder->reordered_opaque = number;
    const int result = avcodec_send_packet(mDecoder.get(), mPacket.get());
    if (result == AVERROR(EAGAIN))
        return;
    av_packet_unref(mPacket.get());
    mHasPacket = false;
    if (result < 0)
        mLastError = LibavErrorText(result);
}

bool MovieReader::ReadPacket()
{
    const int result = av_read_frame(mFormat.get(), mPacket.get());
    if (result == AVERROR(EAGAIN))
        return false;
    if (result < 0)
    {
        // The end of the file, or of what is left of it: the decoder gives what it still holds.
        avcodec_send_packet(mDecoder.get(), nullptr);
        return false;
    }
    const int index =
        mPacket->stream_index == mStreamIndex ? mIndex.Find(*mPacket, std::max(mNextPacket, 0)) : -1;
    if (index >= 0)
        mNextPacket = index + 1;
    if (index < mFirstPacket || mPacket->size <= 0)
    {
        av_packet_unref(mPacket.get());
        return false;
    }
    TakePacket(index);
    return true;
}

void MovieReader::TakePacket(int index)
{
    const int number = mIndex.At(index).frame;
    mPacket->pts = number > 0 ? number : AV_NOPTS_VALUE;
    mPacket->dts = index + 1;
    mHasPacket = true;
}

bool MovieReader::SeekTo(int packet)
{
    avcodec_flush_buffers(mDecoder.get());
    av_frame_unref(mPicture.get());
    mDrained = false;
    mPictureFrame = 0;
    mAbsentAfter = 0;
    mSkippedBelow = 0;
    mIsProven = false;
    mFirstPacket = packet;
    // Containers seek by rules of their own; what counts is the packet that comes then.
    for (int attempt = 0; attempt < SeekAttempts; ++attempt)
    {
        av_packet_unref(mPacket.get());
        mHasPacket = false;
        mNextPacket = -1;
        if (SeekFile(packet, attempt) && FindPlace(packet))
            return true;
        if (mOptions.cancel.IsCancelled())
            break;
    }
    mNextPacket = -1;
    return false;
}

bool MovieReader::FindPlace(int packet)
{
    for (int strangers = 0; strangers < MaximumStrangers; ++strangers)
    {
        if (av_read_frame(mFormat.get(), mPacket.get()) < 0)
            return false;
        const int index = mPacket->stream_index == mStreamIndex ? mIndex.Find(*mPacket, packet) : -1;
        if (index > packet)
            return false;
        if (index == packet && mPacket->size > 0)
            TakePacket(index);
        else
            av_packet_unref(mPacket.get());
        if (index < 0)
            continue;
        mNextPacket = index + 1;
        return true;
    }
    return false;
}

bool MovieReader::SeekFile(int packet, int attempt)
{
    const MovieIndex::Packet& wanted = mIndex.At(packet);
    const int64_t time = wanted.dts != AV_NOPTS_VALUE ? wanted.dts : wanted.pts;
    const AVRational base = mFormat->streams[mStreamIndex]->time_base;
    const int64_t second = std::max<int64_t>(av_rescale(1, base.den, std::max(base.num, 1)), 1);
    switch (attempt)
    {
    case 0:
        // Some containers index decoding times, others presentation times.
        return wanted.pts != AV_NOPTS_VALUE && wanted.pts != wanted.dts && packet > 0 &&
               av_seek_frame(mFormat.get(), mStreamIndex, wanted.pts, AVSEEK_FLAG_BACKWARD) >= 0;
    case 1:
        return time != AV_NOPTS_VALUE &&
               av_seek_frame(mFormat.get(), mStreamIndex, time, AVSEEK_FLAG_BACKWARD) >= 0;
    case 2:
    case 3:
        return time != AV_NOPTS_VALUE &&
               av_seek_frame(mFormat.get(), mStreamIndex, time - second * (attempt == 2 ? 2 : 20),
                             AVSEEK_FLAG_BACKWARD) >= 0;
    case 4:
        return wanted.position >= 0 && (mFormat->iformat->flags & AVFMT_NO_BYTE_SEEK) == 0 &&
               av_seek_frame(mFormat.get(), mStreamIndex, wanted.position, AVSEEK_FLAG_BYTE) >= 0;
    default:
        break;
    }
    QString ignored;
    return OpenFile(&ignored);
}

AVRational MovieReader::PixelAspect(const AVFrame& frame) const
{
    return av_guess_sample_aspect_ratio(mFormat.get(), mFormat->streams[mStreamIndex],
                                        const_cast<AVFrame*>(&frame));
}

DecodedFrame MovieReader::Answer(int frame, Outcome outcome) const
{
    if (outcome == Outcome::Cancelled || (outcome == Outcome::Absent && mOptions.cancel.IsCancelled()))
        return {};
    DecodedFrame answer;
    answer.status = outcome == Outcome::Whole ? ReadStatus::Ok : ReadStatus::Broken;
    if (outcome == Outcome::Damaged)
        answer.text = FrameText(frame, QStringLiteral("part of its data is damaged"));
    else if (outcome == Outcome::Absent)
        answer.text = FrameText(
            frame, mLastError.isEmpty() ? QStringLiteral("no picture came out of the decoder") : mLastError);
    if (outcome == Outcome::Absent)
        return answer;
    const std::shared_ptr<AVFrame> picture(av_frame_clone(mPicture.get()), LibavDeleter());
    if (!picture)
        return {ReadStatus::Broken, FrameText(frame, QStringLiteral("memory is short")), {}};
    const AVRational aspect = PixelAspect(*picture);
    answer.convert = [picture, converter = mConverter, aspect]
    { return converter->Convert(*picture, aspect); };
    if (mConverter->ShowsAsStored(*picture, aspect))
        answer.stored = picture;
    return answer;
}

QString MovieReader::FrameText(int frame, const QString& reason) const
{
    return QStringLiteral("%1: frame %2 can't be shown: %3").arg(mInfo.path).arg(frame).arg(reason);
}
