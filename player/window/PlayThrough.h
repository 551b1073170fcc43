// SPDX-License-Identifier: MIT
#pragma once

#include "window/ViewerBackEndChoice.h"

#include <QString>

/// Plays the medium at @p path through decoding, conversion and the viewer as fast as they go, each frame
/// painted through the back end of @p choice, in a window of @p size ("WIDTHxHEIGHT"; empty for 1600x900),
/// and prints frames, seconds and frames a second. Returns the program's exit status: 0, 1 if the medium
/// can't be played, 2 for a bad size.
int RunPlayThrough(const QString& path, const QString& size, ViewerBackEndChoice choice);
