// SPDX-License-Identifier: MIT
#pragma once

#include "media/LibavPointers.h"

#include <mutex>
#include <set>

/// The frames that a decoder complained about.
///
/// Decoders that work on several frames at once hide damage without marking the picture; but they log it,
/// from the context of the frame that they are at. This listens to what they log.
class DecodeErrors
{
public:
    /// Listens to @p decoder, which must go before this does. Before each packet the caller writes the number
    /// of its frame into the decoder's @c reordered_opaque.
    void ListenTo(AVCodecContext* decoder);

    /// Forgets what was said about @p frame, which is about to be decoded.
    void Forget(int frame);
    bool Has(int frame) const;

    /// Takes the place of the library's own writing on the terminal.
    static void OnLog(void* source, int level, const char* format, va_list arguments);

private:
    mutable std::mutex mMutex;
    std::set<int> mFrames;
};
