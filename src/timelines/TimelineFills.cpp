// SPDX-License-Identifier: MIT
#include "timelines/TimelineFills.h"

#include "timelines/TimelineMapping.h"

#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace TimelineFills
{

namespace
{

constexpr int FlagHalfWidth = 3;
constexpr int FlagRise = 3;

/// Whether @p painter paints pixels of 8 bits a channel, as a window's are, their colours ready to be
/// blended. Elsewhere colours are rounded in other places, so that what is put together from parts may lie a
/// shade beside what is painted in one.
bool PaintsByteChannels(const QPainter* painter)
{
    // Not the painter's own device: that is the widget, also where it is rendered into a picture.
    const QPaintDevice* const device = painter->paintEngine()->paintDevice();
    if (device == nullptr || device->devType() != QInternal::Image)
        return false;
    const QImage::Format format = static_cast<const QImage*>(device)->format();
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32_Premultiplied;
}

/// Whether a fill at whole coordinates within @p area, the widget's rectangle, covers whole pixels. What is
/// opaque then hides all below it, and a fill that nobody sees may be left out without changing a bit of the
/// picture.
///
/// A fill that is cut by the device's edge or a clip does not count: the rasteriser may leave its last pixel
/// a shade short of opaque.
bool PaintsWholePixels(const QPainter* painter, const QRect& area)
{
    const auto isWhole = [](qreal value) { return value == std::floor(value); };
    const QTransform transform = painter->deviceTransform();
    if (painter->paintEngine()->type() != QPaintEngine::Raster || !PaintsByteChannels(painter) ||
        painter->compositionMode() != QPainter::CompositionMode_SourceOver || painter->opacity() < 1.0 ||
        painter->hasClipping() || transform.type() > QTransform::TxScale || !isWhole(transform.m11()) ||
        !isWhole(transform.m22()) || !isWhole(transform.dx()) || !isWhole(transform.dy()))
        return false;
    const QRegion exposed = painter->paintEngine()->systemClip();
    return exposed.isEmpty() ||
           (exposed.rectCount() == 1 && exposed.boundingRect().contains(transform.mapRect(area)));
}

/// Whether the columns from @p left to @p right, in either order, lie in @p area.
bool IsInside(const QRect& area, int left, int right)
{
    return std::min(left, right) >= 0 && std::max(left, right) <= area.width();
}

} // namespace

void FillSpan(QPainter* painter, int left, int top, int right, int height, const QColor& color)
{
    // Edges far outside any widget are drawn in so that no painter's own arithmetic overflows.
    constexpr int reach = 1 << 20;
    const int x = std::clamp(left, -reach, reach);
    painter->fillRect(QRectF(x, top, std::clamp(right, -reach, reach) - x, height), color);
}

void FillTriangle(QPainter* painter, const QPointF& a, const QPointF& b, const QPointF& c,
                  const QColor& color)
{
    QPainterPath path(a);
    path.lineTo(b);
    path.lineTo(c);
    path.closeSubpath();
    painter->fillPath(path, color);
}

void FillStretches(QPainter* painter, const QRect& area, const std::vector<int>& lefts, int right, int top,
                   int height, const QColor& evenColor, const QColor& oddColor)
{
    const auto color = [&](size_t index) { return index % 2 == 0 ? evenColor : oddColor; };
    const auto [first, last] = std::minmax_element(lefts.begin(), lefts.end());
    if (!PaintsWholePixels(painter, area) || !IsInside(area, *first, right) ||
        !IsInside(area, *last, right) || evenColor.alpha() < 255 || oddColor.alpha() < 255)
    {
        for (size_t i = 0; i < lefts.size(); ++i)
            FillSpan(painter, lefts[i], top, right, height, color(i));
        return;
    }
    // From the last back: of each stretch only what no later one hides, on either side of the common end.
    int hiddenFrom = right;
    int hiddenTo = right;
    for (size_t i = lefts.size(); i-- > 0;)
    {
        const int left = lefts[i];
        if (left < hiddenFrom)
            FillSpan(painter, left, top, hiddenFrom, height, color(i));
        else if (left > hiddenTo)
            FillSpan(painter, hiddenTo, top, left, height, color(i));
        hiddenFrom = std::min(hiddenFrom, left);
        hiddenTo = std::max(hiddenTo, left);
    }
}

void FillOverlapping(QPainter* painter, const QRect& area, const std::vector<std::pair<int, int>>& spans,
                     int top, int height, const QColor& color)
{
    // Where fills of one translucent colour overlap, only their number counts, and from some number on the
    // colour stays: from this alpha up it settles in fewer than so many fills.
    constexpr int settlingAlpha = 150;
    constexpr int settled = 16;
    const bool isInside =
        std::all_of(spans.begin(), spans.end(),
                    [&area](const auto& span) { return IsInside(area, span.first, span.second); });
    if (!PaintsWholePixels(painter, area) || !isInside || color.alpha() < settlingAlpha ||
        spans.size() < settled)
    {
        for (const auto& [left, right] : spans)
            FillSpan(painter, left, top, right, height, color);
        return;
    }
    const int columns = area.width();
    std::vector<int> change(static_cast<size_t>(columns) + 1, 0);
    for (const auto& [left, right] : spans)
    {
        ++change[static_cast<size_t>(std::clamp(std::min(left, right), 0, columns))];
        --change[static_cast<size_t>(std::clamp(std::max(left, right), 0, columns))];
    }
    for (int layer = 1; layer <= settled; ++layer)
    {
        int depth = 0;
        int from = 0;
        for (int x = 0; x <= columns; ++x)
        {
            const bool wasCovered = depth >= layer;
            depth += change[static_cast<size_t>(x)];
            if (!wasCovered && depth >= layer)
                from = x;
            else if (wasCovered && depth < layer)
                FillSpan(painter, from, top, x, height, color);
        }
    }
}

FlagPainter::FlagPainter(QPainter* painter, const QRect& area, int top, int height, const QColor& plainColor,
                         const QColor& annotatedColor)
    : mPainter(painter)
    , mArea(area)
    , mTop(top)
    , mHeight(height)
    , mColors{plainColor, annotatedColor}
    , mStamps(height > 0 && PaintsWholePixels(painter, area) &&
              painter->deviceTransform().type() <= QTransform::TxTranslate)
{
}

void FlagPainter::Draw(int x, bool annotated)
{
    if (mStamps && x >= FlagHalfWidth && x < mArea.width() - FlagHalfWidth)
        mPainter->drawImage(QPoint(x - FlagHalfWidth, mTop - FlagRise), Stamp(annotated));
    else
        DrawShape(mPainter, x, mTop, mColors[annotated]);
}

const QImage& FlagPainter::Stamp(bool annotated)
{
    QImage& image = mImages[annotated];
    if (image.isNull())
    {
        image = QImage(2 * FlagHalfWidth + 1, FlagRise + mHeight, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHints(mPainter->renderHints());
        DrawShape(&painter, FlagHalfWidth, FlagRise, mColors[annotated]);
    }
    return image;
}

void FlagPainter::DrawShape(QPainter* painter, int x, int y, const QColor& color) const
{
    FillSpan(painter, x, y, TimelineMapping::WrappingSum(x, 1), mHeight, color);
    FillTriangle(painter, QPointF(x, y), QPointF(x - 3.0, y - 3.0), QPointF(x + 4.0, y - 3.0), color);
}

} // namespace TimelineFills
