// SPDX-License-Identifier: MIT
#include "media/LibavInput.h"

#include "media/LibavError.h"

#include <QFile>

namespace
{

// Files alone: no lists that name other files or addresses, nothing that takes text for a picture.
constexpr char Containers[] =
    "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,avi,mpegts,mpeg,mpegvideo,mxf,asf,flv,live_flv,ogg,nut,gif,h264,"
    "hevc,"
    "m4v,mjpeg,ivf,dv,yuv4mpegpipe,rm,gxf,lxf,av1,obu,vc1,vc1test,dnxhd,dirac,wtv,apng,roq,smk,bink,nsv,nuv,"
    "swf,"
    "h263,h261,cavsvideo,wav,mp3,flac,aac,ac3,eac3,aiff,w64,caf,au,amr,dts,wv,ape,tta";

} // namespace

LibavPointer<AVFormatContext> OpenLibavInput(const QString& path, const AVIOInterruptCB& interrupt,
                                             QString* error)
{
    SilenceLibav();
    const auto fail = [&](const QString& reason)
    {
        if (error != nullptr)
            *error = QStringLiteral("%1 can't be opened: %2").arg(path, reason);
        return LibavPointer<AVFormatContext>();
    };
    AVFormatContext* format = avformat_alloc_context();
    if (format == nullptr)
        return fail(QStringLiteral("memory is short"));
    format->interrupt_callback = interrupt;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", Containers, 0);
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    const QByteArray url = "file:" + QFile::encodeName(path);
    // Frees the context on failure.
    int result = avformat_open_input(&format, url.constData(), nullptr, &options);
    av_dict_free(&options);
    if (result < 0)
        return fail(LibavErrorText(result));
    LibavPointer<AVFormatContext> input(format);
    result = avformat_find_stream_info(format, nullptr);
    if (result < 0)
        return fail(LibavErrorText(result));
    return input;
}
