// SPDX-License-Identifier: MIT
#pragma once

#include "media/LibavPointers.h"

#include <QString>

/// Opens the file at @p path, a plain file of a known container, and finds out what its streams are.
/// @p interrupt ends reading early, also later on. Returns null on failure and tells why in @p error, which
/// names the file.
LibavPointer<AVFormatContext> OpenLibavInput(const QString& path, const AVIOInterruptCB& interrupt,
                                             QString* error);
