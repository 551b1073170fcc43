// SPDX-License-Identifier: MIT
#include "sound/StereoMixer.h"

extern "C"
{
#include <libavutil/channel_layout.h>
}

#include <utility>

namespace
{

/// Up to this number the usual layout is a fair guess where nobody says what the channels are.
constexpr int MostUsualChannels = 8;

} // namespace

StereoMixer::~StereoMixer()
{
    av_channel_layout_uninit(&mLayout);
}

bool StereoMixer::Prepare(const AVFrame& frame)
{
    const AVChannelLayout& given = frame.ch_layout;
    if (mContext && mFormat == frame.format && mRate == frame.sample_rate &&
        av_channel_layout_compare(&mLayout, &given) == 0)
        return true;
    mContext.reset();
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    AVChannelLayout layout = {};
    const int channels = given.nb_channels;
    const bool isNamed = given.order != AV_CHANNEL_ORDER_UNSPEC && av_channel_layout_check(&given) != 0;
    const bool takesFirstTwo = channels == 1 || (!isNamed && channels > MostUsualChannels);
    if (!isNamed)
        av_channel_layout_default(&layout, channels);
    else
        av_channel_layout_copy(&layout, &given);
    std::vector<double> firstTwo(2 * static_cast<size_t>(channels), 0.0);
    firstTwo[0] = 1.0;
    firstTwo[static_cast<size_t>(channels) + (channels > 1 ? 1 : 0)] = 1.0;
    for (const bool isPlain : {takesFirstTwo, true})
    {
        SwrContext* context = nullptr;
        const int result =
            swr_alloc_set_opts2(&context, &stereo, AV_SAMPLE_FMT_FLT, frame.sample_rate, &layout,
                                static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
        LibavPointer<SwrContext> mixer(context);
        if (result < 0 || (isPlain && swr_set_matrix(context, firstTwo.data(), channels) < 0) ||
            swr_init(context) < 0)
            continue;
        mContext = std::move(mixer);
        break;
    }
    av_channel_layout_uninit(&layout);
    av_channel_layout_uninit(&mLayout);
    av_channel_layout_copy(&mLayout, &given);
    mFormat = frame.format;
    mRate = frame.sample_rate;
    return mContext != nullptr;
}

bool StereoMixer::Mix(const AVFrame& frame, std::vector<float>* stereo)
{
    stereo->clear();
    if (frame.nb_samples <= 0 || frame.ch_layout.nb_channels <= 0 || !Prepare(frame))
        return false;
    stereo->resize(2 * static_cast<size_t>(frame.nb_samples));
    auto* to = reinterpret_cast<uint8_t*>(stereo->data());
    const int made = swr_convert(mContext.get(), &to, frame.nb_samples,
                                 const_cast<const uint8_t**>(frame.extended_data), frame.nb_samples);
    if (made == frame.nb_samples)
        return true;
    stereo->clear();
    return false;
}
