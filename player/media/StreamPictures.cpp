// SPDX-License-Identifier: MIT
#include "media/StreamPictures.h"

namespace
{

bool IsVp9FrameShown(const uint8_t* data, int size)
{
    if (size < 1 || (data[0] & 0xC0) != 0x80)
        return true;
    // Frame marker, two bits of the profile, one reserved bit in profile 3; then come "show existing frame",
    // the frame type and "show frame".
    const int shift = (data[0] & 0x30) == 0x30 ? 2 : 3;
    const bool showsExisting = (data[0] >> shift & 1) != 0;
    if (showsExisting)
        return true;
    const int showBit = shift - 2;
    return (data[0] >> showBit & 1) != 0;
}

bool IsVp9Shown(const uint8_t* data, int size)
{
    const uint8_t marker = data[size - 1];
    if ((marker & 0xE0) != 0xC0)
        return IsVp9FrameShown(data, size);
    const int frames = (marker & 7) + 1;
    const int sizeBytes = (marker >> 3 & 3) + 1;
    const int indexBytes = 2 + frames * sizeBytes;
    if (size < indexBytes || data[size - indexBytes] != marker)
        return IsVp9FrameShown(data, size);
    const uint8_t* entry = data + size - indexBytes + 1;
    int64_t offset = 0;
    for (int i = 0; i < frames; ++i)
    {
        int64_t bytes = 0;
        for (int k = 0; k < sizeBytes; ++k)
            bytes |= int64_t(*entry++) << (8 * k);
        if (bytes <= 0 || offset + bytes > size)
            return true;
        if (IsVp9FrameShown(data + offset, int(bytes)))
            return true;
        offset += bytes;
    }
    return false;
}

} // namespace

bool StreamPictures::IsShown(AVCodecID codec, const uint8_t* data, int size)
{
    if (size <= 0)
        return false;
    if (codec == AV_CODEC_ID_VP8)
        return (data[0] >> 4 & 1) != 0;
    if (codec == AV_CODEC_ID_VP9)
        return IsVp9Shown(data, size);
    return true;
}

bool StreamPictures::CanSkipNonReference(AVCodecID codec)
{
    return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_MPEG2VIDEO || codec == AV_CODEC_ID_MPEG4;
}

bool StreamPictures::IsIntraOnly(AVCodecID codec)
{
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(codec);
    return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_INTRA_ONLY) != 0;
}
