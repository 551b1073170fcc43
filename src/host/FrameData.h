// SPDX-License-Identifier: MIT
#pragma once

#include "host/DrawData.h"

#include <QList>

/// The annotations of one frame. The host owns the records and hands them to the viewers by const pointer; it
/// keeps each alive until it has replaced it there.
struct FrameData
{
    /// The drawings, oldest first.
    QList<DrawData> drawData;
    /// First entry to paint.
    int firstIndex = 0;
    /// Last entry to paint, inclusive; negative paints nothing.
    int lastIndex = -1;
};
