// SPDX-License-Identifier: MIT
#pragma once

#include <QPainter>
#include <QPointF>

struct DrawData;
struct DrawSpace;

/// The painting of one drawing, without a widget; any thread may call.
namespace DrawDataPainting
{

/// QPainter::HighQualityAntialiasing, whose name is deprecated.
constexpr auto HighQualityAntialiasingHint = static_cast<QPainter::RenderHint>(0x08);

/// How a whole overlay is painted.
constexpr QPainter::RenderHints OverlayRenderHints =
    QPainter::RenderHints(QPainter::Antialiasing | HighQualityAntialiasingHint | QPainter::TextAntialiasing);

/// The end, in draw space, of one barb of an arrow from @p tail to @p tip; @p angle (radians) turns it off
/// the shaft.
QPointF ArrowHeadPoint(const QPointF& tail, const QPointF& tip, float angle);

/// Paints @p drawing as it stands in @p space, and leaves its composition mode on @p painter. A freehand
/// drawing goes on from its point @p startPoint; -1 paints it whole. An @p alpha of 0 to 255 replaces the
/// drawing's own. @p boxed frames a text that is being typed.
void Paint(QPainter* painter, const DrawData& drawing, int startPoint, const DrawSpace& space, int alpha,
           bool boxed);

} // namespace DrawDataPainting
