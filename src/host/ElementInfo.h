// SPDX-License-Identifier: MIT
#pragma once

#include <QUuid>

/// What a timeline tells of one of its elements.
struct ElementInfo
{
    /// Frame of the timeline, counted from 1, on which the element begins.
    int startFrame = 1;
    /// Length in frames.
    int frameCount = 0;
    /// The element's identity; the timeline widgets only copy it.
    QUuid id;
};
