// SPDX-License-Identifier: MIT
#pragma once

#include "media/CancelToken.h"
#include "media/FrameRate.h"

#include <QString>

/// What is done with a movie once the encoder has written it. Any thread may call.
namespace FinishedFile
{

/// Counts the frames of the movie @p path and reads its rate. Returns what is wrong with it; empty if it has
/// @p frames frames at @p rate.
QString Check(const QString& path, int frames, const FrameRate& rate, const CancelToken& cancel);

/// Moves @p file to @p path, replacing what is there in one step, also across file systems. Returns the
/// reason if that fails, or an empty text; nothing is left under @p path then but what was there.
QString Move(const QString& file, const QString& path);

/// The name of a file that is being written, in @p directory: hidden, of its own and of a length that fits
/// anywhere.
QString UnfinishedName(const QString& directory, const QString& suffix);

} // namespace FinishedFile
