// SPDX-License-Identifier: MIT
#include "media/LibavError.h"

#include "media/DecodeErrors.h"

QString LibavErrorText(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof(text));
    return QString::fromLocal8Bit(text);
}

void SilenceLibav()
{
    static const bool done = []
    {
        av_log_set_callback(DecodeErrors::OnLog);
        return true;
    }();
    Q_UNUSED(done)
}
