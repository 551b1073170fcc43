// SPDX-License-Identifier: MIT
#pragma once

#include "output/OutputPlan.h"

#include <QImage>
#include <QSize>

#include <array>

/// Composes frames of a plan: the pictures of the viewers at a chosen size, as a viewer of that size shows
/// them, with annotations burnt in. Any thread may call, several at once.
class FrameComposer
{
public:
    /// @p plan outlives it.
    FrameComposer(const OutputPlan& plan, const QSize& size);

    /// The frame at @p index of the plan from @p pictures (RGB32; null for none) of the viewers A and B, as
    /// RGB32.
    QImage Compose(int index, const std::array<QImage, 2>& pictures) const;
    /// Whether the frame at @p index is nothing but the one picture shown, if that is as large as the frame.
    bool IsPlain(int index) const;

private:
    bool IsShown(int viewer) const;
    QSize SlotSize() const;
    QPoint PlaceOf(int viewer, const QSize& picture) const;

    const OutputPlan& mPlan;
    QSize mSize;
};
