// SPDX-License-Identifier: MIT
#include "media/LibavError.h"
#include "media/LibavInput.h"
#include "media/MovieReader.h"
#include "media/Orientation.h"
#include "media/PictureConverter.h"
#include "media/StreamPictures.h"

extern "C"
{
#include <libavutil/pixdesc.h>
}

#include <QThread>

#include <algorithm>

namespace
{

void SetError(QString* error, const QString& text)
{
    if (error != nullptr)
        *error = text;
}

QString TextOf(const char* text)
{
    return text != nullptr ? QString::fromUtf8(text) : QString();
}

Orientation OrientationOf(const AVStream& stream)
{
    size_t bytes = 0;
    const uint8_t* const data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &bytes);
    if (data == nullptr || bytes < 9 * sizeof(int32_t))
        return {};
    return Orientation::FromDisplayMatrix(reinterpret_cast<const int32_t*>(data));
}

} // namespace

std::unique_ptr<MovieReader> MovieReader::Open(const QString& path, const MediaOptions& options,
                                               QString* error)
{
    SilenceLibav();
    std::unique_ptr<MovieReader> reader(new MovieReader(options));
    reader->mInfo.path = path;
    if (!reader->mPacket || !reader->mPicture)
    {
        SetError(error, QStringLiteral("%1 can't be opened: memory is short").arg(path));
        return nullptr;
    }
    if (!reader->OpenFile(error) || !reader->BuildIndex(error) || !reader->OpenDecoder(error))
        return nullptr;
    reader->FillInfo();
    return reader;
}

bool MovieReader::OpenFile(QString* error)
{
    mFormat = OpenLibavInput(mInfo.path, {&MovieReader::Interrupted, this}, error);
    if (!mFormat)
        return false;
    AVFormatContext* const format = mFormat.get();
    mStreamIndex = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    // A sound file's cover is no movie.
    if (mStreamIndex < 0 || (format->streams[mStreamIndex]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
    {
        SetError(error, QStringLiteral("%1 holds no pictures").arg(mInfo.path));
        mFormat.reset();
        return false;
    }
    for (unsigned i = 0; i < format->nb_streams; ++i)
        format->streams[i]->discard = int(i) == mStreamIndex ? AVDISCARD_NONE : AVDISCARD_ALL;
    return true;
}

bool MovieReader::BuildIndex(QString* error)
{
    bool finished = mIndex.Build(mFormat.get(), mStreamIndex, mOptions.cancel);
    if (finished && mIndex.NeedsOrder())
    {
        if (!OpenFile(error))
            return false;
        finished = mIndex.AssignOrder(mFormat.get(), mStreamIndex, mOptions.cancel);
    }
    if (!finished)
    {
        SetError(error, QStringLiteral("%1: opening was cancelled").arg(mInfo.path));
        return false;
    }
    if (mIndex.FrameCount() == 0)
    {
        SetError(error, QStringLiteral("%1 holds no pictures: its video stream is empty").arg(mInfo.path));
        return false;
    }
    mInfo.frameCount = mIndex.FrameCount();
    return true;
}

bool MovieReader::OpenDecoder(QString* error)
{
    const AVStream* const stream = mFormat->streams[mStreamIndex];
    const AVCodecParameters* const parameters = stream->codecpar;
    const AVCodec* const codec = avcodec_find_decoder(parameters->codec_id);
    if (codec == nullptr)
    {
        SetError(error, QStringLiteral("%1 can't be opened: there is no decoder for %2")
                            .arg(mInfo.path, TextOf(avcodec_get_name(parameters->codec_id))));
        return false;
    }
    mDecoder.reset(avcodec_alloc_context3(codec));
    int result = mDecoder ? avcodec_parameters_to_context(mDecoder.get(), parameters) : AVERROR(ENOMEM);
    if (result >= 0)
    {
        const int threads = mOptions.decoderThreads > 0 ? std::min(mOptions.decoderThreads, 16)
                                                        : std::clamp(QThread::idealThreadCount(), 1, 8);
        mErrors.ListenTo(mDecoder.get());
        mDecoder->thread_count = threads;
        mDecoder->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
        mDecoder->pkt_timebase = stream->time_base;
        // Damaged pictures come out and say so, instead of being kept back.
        mDecoder->flags |= AV_CODEC_FLAG_OUTPUT_CORRUPT;
        mDecoder->has_b_frames = std::max(mDecoder->has_b_frames, mIndex.ReorderDepth());
        result = avcodec_open2(mDecoder.get(), codec, nullptr);
    }
    if (result < 0)
    {
        SetError(error, QStringLiteral("%1 can't be opened: the %2 decoder says: %3")
                            .arg(mInfo.path, TextOf(codec->name), LibavErrorText(result)));
        return false;
    }
    mIsIntraOnly = StreamPictures::IsIntraOnly(parameters->codec_id);
    mCanSkip = StreamPictures::CanSkipNonReference(parameters->codec_id);
    mConverter = std::make_shared<PictureConverter>(mOptions.pictureFormat, OrientationOf(*stream));
    return true;
}

void MovieReader::FillInfo()
{
    AVStream* const stream = mFormat->streams[mStreamIndex];
    const AVCodecParameters* const parameters = stream->codecpar;
    const AVRational aspect = av_guess_sample_aspect_ratio(mFormat.get(), stream, nullptr);
    mInfo.width = PictureConverter::ShownWidth(parameters->width, aspect);
    mInfo.height = parameters->height;
    if (OrientationOf(*stream).IsTurned())
        std::swap(mInfo.width, mInfo.height);
    mInfo.frameRate =
        mIndex.GuessRate(stream->time_base, av_guess_frame_rate(mFormat.get(), stream, nullptr));
    mInfo.duration = mInfo.frameRate.FrameToTime(int64_t(mInfo.frameCount) + 1);
    const int64_t first = mIndex.FirstTime();
    if (first != AV_NOPTS_VALUE)
        mInfo.startTime = av_rescale_q(first, stream->time_base, AV_TIME_BASE_Q);
    mInfo.codecName = TextOf(avcodec_get_name(parameters->codec_id));
    mInfo.containerName = TextOf(mFormat->iformat->name);
    mInfo.pixelFormat = TextOf(av_get_pix_fmt_name(AVPixelFormat(parameters->format)));
    const int audio = av_find_best_stream(mFormat.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (audio < 0)
        return;
    const AVCodecParameters* const sound = mFormat->streams[audio]->codecpar;
    mInfo.hasAudio = true;
    mInfo.audioCodecName = TextOf(avcodec_get_name(sound->codec_id));
    mInfo.audioChannels = sound->ch_layout.nb_channels;
    mInfo.audioSampleRate = sound->sample_rate;
}
