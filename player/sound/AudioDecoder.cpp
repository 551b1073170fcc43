// SPDX-License-Identifier: MIT
#include "sound/AudioDecoder.h"

#include "media/LibavError.h"
#include "media/LibavInput.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{

// A decoder that goes by what came before has settled after this part of a second.
constexpr int PrerollsPerSecond = 4;
// A step between two blocks' times counts as a gap in the sound from this part of a second on; what is less
// is the inexactness of the file's clock.
constexpr int GapsPerSecond = 200;
// How much further back to look each time that a seek ends up too late, in seconds.
constexpr int SeekSteps[] = {0, 1, 8};
constexpr int MaximumChannels = 64;

QString TextOfCodec(AVCodecID id)
{
    return QString::fromUtf8(avcodec_get_name(id));
}

} // namespace

AudioDecoder::AudioDecoder(const QString& path, const CancelToken& cancel)
    : mPath(path), mCancel(cancel), mPacket(av_packet_alloc()), mFrame(av_frame_alloc())
{
}

int AudioDecoder::Interrupted(void* decoder)
{
    return static_cast<const AudioDecoder*>(decoder)->mCancel.IsCancelled() ? 1 : 0;
}

std::unique_ptr<AudioDecoder> AudioDecoder::Open(const QString& path, const CancelToken& cancel,
                                                 QString* error)
{
    std::unique_ptr<AudioDecoder> decoder(new AudioDecoder(path, cancel));
    QString reason;
    if (!decoder->mPacket || !decoder->mFrame)
        reason = QStringLiteral("%1: memory is short").arg(path);
    else if (decoder->OpenFile(&reason) && decoder->OpenCodec(&reason))
        decoder->MeasureBlocks();
    if (reason.isEmpty())
        return decoder;
    if (error != nullptr)
        *error = reason;
    return nullptr;
}

bool AudioDecoder::OpenFile(QString* error)
{
    mFormat = OpenLibavInput(mPath, {&AudioDecoder::Interrupted, this}, error);
    if (!mFormat)
        return false;
    mStreamIndex = av_find_best_stream(mFormat.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (mStreamIndex < 0)
    {
        *error = QStringLiteral("%1 holds no sound").arg(mPath);
        return false;
    }
    for (unsigned i = 0; i < mFormat->nb_streams; ++i)
        mFormat->streams[i]->discard = int(i) == mStreamIndex ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    return true;
}

bool AudioDecoder::OpenCodec(QString* error)
{
    const AVStream* const stream = mFormat->streams[mStreamIndex];
    const AVCodecParameters* const parameters = stream->codecpar;
    const AVCodec* const codec = avcodec_find_decoder(parameters->codec_id);
    if (codec == nullptr)
    {
        *error = QStringLiteral("%1: there is no decoder for its sound (%2)")
                     .arg(mPath, TextOfCodec(parameters->codec_id));
        return false;
    }
    mDecoder.reset(avcodec_alloc_context3(codec));
    int result = mDecoder ? avcodec_parameters_to_context(mDecoder.get(), parameters) : AVERROR(ENOMEM);
    if (result >= 0)
    {
        mDecoder->thread_count = 1;
        mDecoder->pkt_timebase = stream->time_base;
        result = avcodec_open2(mDecoder.get(), codec, nullptr);
    }
    if (result < 0)
    {
        *error = QStringLiteral("%1: its sound can't be decoded: the %2 decoder says: %3")
                     .arg(mPath, QString::fromUtf8(codec->name), LibavErrorText(result));
        return false;
    }
    if (mDecoder->sample_rate > 0 && mDecoder->ch_layout.nb_channels > 0 &&
        mDecoder->ch_layout.nb_channels <= MaximumChannels)
        return true;
    *error = QStringLiteral("%1: its sound can't be decoded: %2 channels at %3 Hz")
                 .arg(mPath)
                 .arg(mDecoder->ch_layout.nb_channels)
                 .arg(mDecoder->sample_rate);
    return false;
}

void AudioDecoder::MeasureBlocks()
{
    // The first block may be cut short by the encoder's lead; those after it show the length.
    if (!Next() || BlockFrames() == 0)
        return;
    const int64_t second = mPosition + BlockFrames();
    int lengths[2] = {};
    for (int& length : lengths)
    {
        const int64_t expected = mExpected;
        length = Next() && mPosition == expected ? BlockFrames() : -1;
    }
    if (lengths[0] != lengths[1] || lengths[0] <= 0)
        return;
    mFirstBlock = second;
    mBlockLength = lengths[0];
}

int64_t AudioDecoder::Preroll() const
{
    const AVCodecDescriptor* const codec = avcodec_descriptor_get(mDecoder->codec_id);
    if (codec != nullptr && (codec->props & AV_CODEC_PROP_LOSSY) == 0)
        return 0;
    return std::max(mFormat->streams[mStreamIndex]->codecpar->seek_preroll, Rate() / PrerollsPerSecond);
}

bool AudioDecoder::SeeksByPictures() const
{
    // Files of these kinds list the places of key pictures alone. To get at a time of the sound by its own
    // stream the library would read everything before it.
    const QByteArray container = mFormat->iformat->name;
    return container.contains("matroska") || container.contains("flv");
}

void AudioDecoder::Seek(int64_t position)
{
    const AVStream* const stream = mFormat->streams[mStreamIndex];
    const int64_t wanted = position - Preroll();
    const bool isNearStart =
        stream->start_time != AV_NOPTS_VALUE &&
        wanted <= av_rescale_q(stream->start_time, stream->time_base, AVRational{1, Rate()});
    if (!isNearStart)
    {
        const int pictures = SeeksByPictures()
                                 ? av_find_best_stream(mFormat.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0)
                                 : -1;
        for (const int step : SeekSteps)
        {
            if (SeekFile(pictures >= 0 ? pictures : mStreamIndex, wanted - int64_t(step) * Rate()) &&
                mExpected <= wanted)
                return;
        }
    }
    SeekToStart();
}

bool AudioDecoder::SeekFile(int stream, int64_t position)
{
    const AVRational base = mFormat->streams[stream]->time_base;
    const int64_t time = av_rescale_q_rnd(position, AVRational{1, Rate()}, base, AV_ROUND_DOWN);
    if (av_seek_frame(mFormat.get(), stream, time, AVSEEK_FLAG_BACKWARD) < 0 || !BeginReading() ||
        mPacket->pts == AV_NOPTS_VALUE)
        return false;
    mExpected = PositionOf(mPacket->pts);
    mIsAtStart = false;
    return true;
}

bool AudioDecoder::SeekToStart()
{
    mIsAtStart = true;
    const AVStream* const stream = mFormat->streams[mStreamIndex];
    const int64_t start = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
    if (av_seek_frame(mFormat.get(), mStreamIndex, start, AVSEEK_FLAG_BACKWARD) >= 0 && BeginReading() &&
        (mPacket->pts == AV_NOPTS_VALUE || mPacket->pts <= start))
        return true;
    // A file that can't be sought in is opened again.
    QString error;
    return OpenFile(&error) && BeginReading();
}

bool AudioDecoder::BeginReading()
{
    avcodec_flush_buffers(mDecoder.get());
    av_packet_unref(mPacket.get());
    mHasPacket = false;
    mHasPosition = false;
    mBlock.clear();
    return ReadPacket();
}

bool AudioDecoder::ReadPacket()
{
    while (!mCancel.IsCancelled())
    {
        const int result = av_read_frame(mFormat.get(), mPacket.get());
        if (result == AVERROR(EAGAIN))
            continue;
        if (result < 0)
            return false;
        if (mPacket->stream_index == mStreamIndex)
        {
            mHasPacket = true;
            return true;
        }
        av_packet_unref(mPacket.get());
    }
    return false;
}

bool AudioDecoder::Next()
{
    while (!mCancel.IsCancelled())
    {
        const int received = avcodec_receive_frame(mDecoder.get(), mFrame.get());
        if (received >= 0)
        {
            TakeFrame();
            if (!mBlock.empty())
                return true;
            continue;
        }
        if (received == AVERROR_EOF)
            return false;
        if (received != AVERROR(EAGAIN))
        {
            Note(LibavErrorText(received));
            continue;
        }
        // At the end of the file the decoder gives what it still holds.
        const bool isEnd = !mHasPacket && !ReadPacket();
        const int sent = avcodec_send_packet(mDecoder.get(), isEnd ? nullptr : mPacket.get());
        if (sent == AVERROR(EAGAIN))
            continue;
        av_packet_unref(mPacket.get());
        mHasPacket = false;
        if (sent == AVERROR_EOF)
            return false;
        if (sent < 0)
            Note(LibavErrorText(sent));
    }
    return false;
}

int64_t AudioDecoder::PositionOf(int64_t time) const
{
    const AVRational base = mFormat->streams[mStreamIndex]->time_base;
    const int64_t position = av_rescale_q(time, base, AVRational{1, Rate()});
    const bool isExact = base.den % (int64_t(base.num) * Rate()) == 0;
    if (isExact || mBlockLength <= 0)
        return position;
    const int64_t tick = av_rescale_q_rnd(1, base, AVRational{1, Rate()}, AV_ROUND_UP);
    const double blocks =
        std::round(static_cast<double>(position - mFirstBlock) / static_cast<double>(mBlockLength));
    const int64_t nearest = mFirstBlock + static_cast<int64_t>(blocks) * mBlockLength;
    return std::abs(nearest - position) <= tick ? nearest : position;
}

void AudioDecoder::TakeFrame()
{
    mBlock.clear();
    if (mFrame->nb_samples <= 0)
        return;
    if (mFrame->sample_rate != Rate())
    {
        Note(QStringLiteral("its rate changes to %1 Hz").arg(mFrame->sample_rate));
        return;
    }
    if (!mMixer.Mix(*mFrame, &mBlock))
    {
        Note(QStringLiteral("its %1 channels can't be mixed").arg(mFrame->ch_layout.nb_channels));
        return;
    }
    const int64_t time = mFrame->pts != AV_NOPTS_VALUE ? mFrame->pts : mFrame->best_effort_timestamp;
    const int64_t told = time != AV_NOPTS_VALUE ? PositionOf(time) : mExpected;
    const AVRational base = mFormat->streams[mStreamIndex]->time_base;
    const int64_t tick = av_rescale_q_rnd(1, base, AVRational{1, Rate()}, AV_ROUND_UP);
    const int64_t tolerated = std::max<int64_t>(2 * tick, Rate() / GapsPerSecond);
    const bool goesOn = mHasPosition && std::abs(told - mExpected) <= tolerated;
    if (!mHasPosition && time == AV_NOPTS_VALUE)
        mPosition = mIsAtStart ? 0 : mExpected;
    else
        mPosition = goesOn ? mExpected : told;
    mHasPosition = true;
    mExpected = mPosition + mFrame->nb_samples;
}

void AudioDecoder::Note(const QString& reason)
{
    if (!mProblem.isEmpty())
        return;
    const double seconds = static_cast<double>(mExpected) / Rate();
    mProblem = QStringLiteral("%1: its sound is damaged near %2 s: %3")
                   .arg(mPath)
                   .arg(seconds, 0, 'f', 2)
                   .arg(reason);
}
