// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRect>

#include <utility>
#include <vector>

class QPainter;

/// The fills that timelines are made of. What many of them paint over each other is put together from what
/// shows, as long as the picture stays the same to the bit.
namespace TimelineFills
{

/// Fills the columns from @p left to @p right, in either order, @p height pixels down from @p top.
void FillSpan(QPainter* painter, int left, int top, int right, int height, const QColor& color);

void FillTriangle(QPainter* painter, const QPointF& a, const QPointF& b, const QPointF& c,
                  const QColor& color);

/// Fills from each of @p lefts, at least one, to @p right, one over the other and in turn with the two
/// colours. @p area is the widget's rectangle.
void FillStretches(QPainter* painter, const QRect& area, const std::vector<int>& lefts, int right, int top,
                   int height, const QColor& evenColor, const QColor& oddColor);

/// Fills each of @p spans, left and right edge, with a translucent colour that adds up where they overlap. @p
/// area is the widget's rectangle.
void FillOverlapping(QPainter* painter, const QRect& area, const std::vector<std::pair<int, int>>& spans,
                     int top, int height, const QColor& color);

/// Draws the flags of frame bookmarks: a line one pixel wide and a triangle that points down onto it.
///
/// Rasterising a triangle costs more than copying its pixels, and a timeline may have thousands: where that
/// gives the same bits, each kind is drawn once into a picture that is then stamped.
class FlagPainter
{
public:
    /// Flags whose line stands @p height pixels down from @p top, in the widget's rectangle @p area.
    FlagPainter(QPainter* painter, const QRect& area, int top, int height, const QColor& plainColor,
                const QColor& annotatedColor);

    /// Draws a flag at the column @p x.
    void Draw(int x, bool annotated);

private:
    const QImage& Stamp(bool annotated);
    void DrawShape(QPainter* painter, int x, int y, const QColor& color) const;

    QPainter* const mPainter;
    const QRect mArea;
    const int mTop;
    const int mHeight;
    const QColor mColors[2];
    const bool mStamps;
    QImage mImages[2];
};

} // namespace TimelineFills
