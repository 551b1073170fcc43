// SPDX-License-Identifier: MIT
#pragma once

#include "media/LibavPointers.h"

/// What the packets of a video stream tell without being decoded.
namespace StreamPictures
{

/// Whether the @p size bytes at @p data hold a picture that is shown. Some codecs send pictures that only
/// serve as a reference for others, in packets of their own.
bool IsShown(AVCodecID codec, const uint8_t* data, int size);

/// Whether a picture that no other refers to may be left out in decoding without harm to those that follow.
bool CanSkipNonReference(AVCodecID codec);

/// Whether each picture stands alone.
bool IsIntraOnly(AVCodecID codec);

} // namespace StreamPictures
