// SPDX-License-Identifier: MIT
#pragma once

extern "C"
{
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>

/// Frees what the decoding library allocated.
struct LibavDeleter
{
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(SwrContext* context) const { swr_free(&context); }
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

template<typename Thing>
using LibavPointer = std::unique_ptr<Thing, LibavDeleter>;
