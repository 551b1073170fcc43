// SPDX-License-Identifier: MIT
#pragma once

class MediaTimeline;

/// A greeting for who starts the player for the first time.
namespace DemoDrawing
{

/// Draws an oval, an arrow and a text on the first second of @p timeline.
void AddTo(MediaTimeline* timeline);

} // namespace DemoDrawing
