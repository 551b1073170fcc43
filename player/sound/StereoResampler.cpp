// SPDX-License-Identifier: MIT
#include "sound/StereoResampler.h"

extern "C"
{
#include <libavutil/channel_layout.h>
}

#include <algorithm>

namespace
{

/// Twice the length of the library's filter, in frames of the lower rate.
constexpr int SettlingLength = 64;

} // namespace

int StereoResampler::SettlingFrames(int inRate, int outRate)
{
    return inRate == outRate ? 0 : SettlingLength * (1 + inRate / outRate);
}

bool StereoResampler::Start(int inRate, int outRate)
{
    mContext.reset();
    if (inRate == outRate)
        return true;
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    SwrContext* context = nullptr;
    if (swr_alloc_set_opts2(&context, &stereo, AV_SAMPLE_FMT_FLT, outRate, &stereo, AV_SAMPLE_FMT_FLT, inRate,
                            0, nullptr) < 0)
        return false;
    mContext.reset(context);
    if (swr_init(context) >= 0)
        return true;
    mContext.reset();
    return false;
}

void StereoResampler::Push(const float* stereo, int count, std::vector<float>* out)
{
    if (!mContext)
    {
        out->insert(out->end(), stereo, stereo + 2 * static_cast<size_t>(count));
        return;
    }
    const int room = std::max(swr_get_out_samples(mContext.get(), count), 0);
    const size_t before = out->size();
    out->resize(before + 2 * static_cast<size_t>(room));
    auto* to = reinterpret_cast<uint8_t*>(out->data() + before);
    const auto* from = reinterpret_cast<const uint8_t*>(stereo);
    const int made = swr_convert(mContext.get(), &to, room, &from, count);
    out->resize(before + 2 * static_cast<size_t>(std::max(made, 0)));
}
