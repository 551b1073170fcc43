// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What the error number @p code of the decoding library means, in words.
QString LibavErrorText(int code);

/// Once a process: keeps the decoding library from writing on the terminal; errors reach the user as text.
void SilenceLibav();
