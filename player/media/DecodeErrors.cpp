// SPDX-License-Identifier: MIT
#include "media/DecodeErrors.h"

void DecodeErrors::ListenTo(AVCodecContext* decoder)
{
    // The copies of the context that the decoder's threads work with inherit it.
    decoder->opaque = this;
}

void DecodeErrors::Forget(int frame)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mFrames.erase(frame);
}

bool DecodeErrors::Has(int frame) const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mFrames.count(frame) != 0;
}

void DecodeErrors::OnLog(void* source, int level, const char*, va_list)
{
    if (source == nullptr || level > AV_LOG_ERROR || *static_cast<AVClass**>(source) != avcodec_get_class())
        return;
    const auto* const decoder = static_cast<const AVCodecContext*>(source);
    auto* const errors = static_cast<DecodeErrors*>(decoder->opaque);
    if (errors == nullptr || decoder->reordered_opaque <= 0)
        return;
    const std::lock_guard<std::mutex> lock(errors->mMutex);
    errors->mFrames.insert(int(decoder->reordered_opaque));
}
