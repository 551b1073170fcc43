// SPDX-License-Identifier: MIT
#include "timelines/GlobalTimelineWidget.h"

#include "host/Bookmarks.h"
#include "host/Settings.h"
#include "timelines/TimelineMapping.h"

#include <QCursor>
#include <QGuiApplication>
#include <QImage>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <limits>

using TimelineMapping::Truncated;
using TimelineMapping::WrappingDifference;
using TimelineMapping::WrappingSum;

namespace
{

const QColor BookmarkColor(200, 200, 200, 200);
const QColor AnnotatedColor(30, 200, 30, 200);
const QColor AnnotatedSpanColor(30, 200, 30, 127);
const QColor RangeBookmarkColor(255, 255, 0, 150);
const QColor HoverTextColor(200, 200, 200, 90);
const QColor HoverPlayheadColor(200, 200, 200, 90);
const QColor HoverSpanColor(200, 200, 200, 70);
const QColor CacheLineColor(0, 54, 143, 127);

void FillTriangle(QPainter* painter, const QPointF& a, const QPointF& b, const QPointF& c,
                  const QColor& color)
{
    QPainterPath path(a);
    path.lineTo(b);
    path.lineTo(c);
    path.closeSubpath();
    painter->fillPath(path, color);
}

void FillSpanBetween(QPainter* painter, int left, int top, int right, int height, const QColor& color)
{
    // Edges far outside any widget are drawn in so that no painter's own arithmetic overflows.
    constexpr int reach = 1 << 20;
    const int x = std::clamp(left, -reach, reach);
    painter->fillRect(QRectF(x, top, std::clamp(right, -reach, reach) - x, height), color);
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
    if (painter->paintEngine()->type() != QPaintEngine::Raster || painter->device()->depth() < 24 ||
        painter->hasClipping() || transform.type() > QTransform::TxScale || !isWhole(transform.m11()) ||
        !isWhole(transform.m22()) || !isWhole(transform.dx()) || !isWhole(transform.dy()))
        return false;
    const QRegion exposed = painter->paintEngine()->systemClip();
    return exposed.isEmpty() ||
           (exposed.rectCount() == 1 && exposed.boundingRect().contains(transform.mapRect(area)));
}

/// Draws the flags of frame bookmarks: a line one pixel wide and a triangle that points down onto it.
///
/// Rasterising a triangle costs more than copying its pixels, and a timeline may have thousands: where that
/// gives the same bits, each kind is drawn once into a picture that is then stamped.
class FlagPainter
{
public:
    FlagPainter(QPainter* painter, int top, int height, const QColor& plainColor,
                const QColor& annotatedColor, const QRect& area)
        : mPainter(painter)
        , mTop(top)
        , mHeight(height)
        , mArea(area)
        , mColors{plainColor, annotatedColor}
        , mStamps(height > 0 && PaintsWholePixels(painter, area) &&
                  painter->deviceTransform().type() <= QTransform::TxTranslate)
    {
    }

    void Draw(int x, bool annotated)
    {
        if (mStamps && x >= HalfWidth && x < mArea.width() - HalfWidth)
            mPainter->drawImage(QPoint(x - HalfWidth, mTop - Rise), Stamp(annotated));
        else
            DrawShape(mPainter, x, mTop, mColors[annotated]);
    }

private:
    static constexpr int HalfWidth = 3;
    static constexpr int Rise = 3;

    const QImage& Stamp(bool annotated)
    {
        QImage& image = mImages[annotated];
        if (image.isNull())
        {
            image = QImage(2 * HalfWidth + 1, Rise + mHeight, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            painter.setRenderHints(mPainter->renderHints());
            DrawShape(&painter, HalfWidth, Rise, mColors[annotated]);
        }
        return image;
    }

    void DrawShape(QPainter* painter, int x, int y, const QColor& color) const
    {
        FillSpanBetween(painter, x, y, WrappingSum(x, 1), mHeight, color);
        FillTriangle(painter, QPointF(x, y), QPointF(x - 3.0, y - 3.0), QPointF(x + 4.0, y - 3.0), color);
    }

    QPainter* const mPainter;
    const int mTop;
    const int mHeight;
    const QRect mArea;
    const QColor mColors[2];
    const bool mStamps;
    QImage mImages[2];
};

} // namespace

void GlobalTimelineWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), Qt::black);
    DrawElements(&painter);
    DrawScrubBar(&painter);
    DrawTimeBookmarks(&painter);
    DrawHoverMarker(&painter);
    DrawPlayhead(&painter);
    DrawRangePosition(&painter);
    DrawRangeDuration(&painter);
    DrawFrameRates(&painter);
}

void GlobalTimelineWidget::DrawElements(QPainter* painter)
{
    const int end = WrappingSum(mBarWidth, mBarX);
    std::vector<int> lefts;
    lefts.reserve(static_cast<size_t>(mElementInfos.size()) + 1);
    for (const ElementInfo& element : qAsConst(mElementInfos))
        lefts.push_back(FrameToPixel(element.startFrame));
    if (lefts.empty())
        lefts.push_back(FrameToPixel(1));
    FillStretches(painter, lefts, end, mElementStripY, ElementStripHeight(), ElementStripColor(),
                  ElementStripAltColor());
}

void GlobalTimelineWidget::DrawScrubBar(QPainter* painter)
{
    constexpr int barHeight = 8;
    const int left = FrameToPixel(mRangeStartFrame);
    const int right = RightEdge(mRangeEndFrame);
    QPen pen(painter->pen());
    pen.setColor(ScrubBarHighlightColor());
    pen.setWidth(2);
    painter->setPen(pen);
    if (mHoverRange && !mHoverRangeStart && !mHoverRangeEnd)
        FillSpan(painter, left, mScrubBarY - 1, right, barHeight + 2, ScrubBarHighlightColor());

    std::vector<int> lefts;
    lefts.reserve(static_cast<size_t>(mElementInfos.size()) + 1);
    // What begins past the range's end is left without width.
    for (const ElementInfo& element : qAsConst(mElementInfos))
        lefts.push_back(std::min(std::max(FrameToPixel(element.startFrame), left), right));
    if (lefts.empty())
        lefts.push_back(left);
    FillStretches(painter, lefts, right, mScrubBarY, barHeight, ScrubBarColor(), ScrubBarAltColor());

    if (Settings::globalTimelineShowCache && mCacheEndTime > mCacheStartTime)
    {
        const int cacheLeft = FrameToPixel(mCacheStartFrame);
        const int cacheRight = RightEdge(mCacheEndFrame);
        // Translucent, so that the element colours show through.
        if (cacheRight > cacheLeft)
            FillSpan(painter, cacheLeft, mCacheBarY, cacheRight, 3, CacheLineColor);
    }

    DrawRangeBookmarks(painter);

    painter->setPen(pen);
    FillSpan(painter, left, mHandleY, WrappingSum(left, PlayheadWidth()), PlayheadHeight(), ScrubBarColor());
    FillSpan(painter, right, mHandleY, WrappingSum(right, PlayheadWidth()), PlayheadHeight(),
             ScrubBarColor());
    painter->setBrush(Qt::black);
    if (mHoverRangeStart || mHoverRange)
        DrawRangeGrip(painter, WrappingDifference(left, 12), WrappingSum(left, PlayheadWidth()), left);
    if (mHoverRangeEnd || mHoverRange)
        DrawRangeGrip(painter, WrappingSum(right, PlayheadWidth() + 12), right, right);
}

void GlobalTimelineWidget::DrawRangeGrip(QPainter* painter, int tipX, int baseX, int barX)
{
    const int middle = Truncated(PlayheadHeight() * 0.5 + mHandleY);
    const int top = mHandleY - 2;
    FillTriangle(painter, QPointF(tipX, middle), QPointF(baseX, top),
                 QPointF(baseX, mHandleY + 2 + PlayheadHeight()), ScrubBarHighlightColor());
    FillSpan(painter, barX, top, WrappingSum(barX, PlayheadWidth()), PlayheadHeight() + 4,
             ScrubBarHighlightColor());
}

void GlobalTimelineWidget::DrawRangeBookmarks(QPainter* painter)
{
    const std::shared_ptr<ProjectObject> timeline = mTimelineObject.lock();
    if (!Settings::globalTimelineShowRangeBookmarks || !timeline)
        return;
    painter->setPen(RangeBookmarkColor);
    const Bookmarks* const bookmarks = timeline->GetBookmarks();
    const QList<RangeBookmark> ranges =
        bookmarks != nullptr ? bookmarks->GetRangeBookmarks() : QList<RangeBookmark>();
    std::vector<std::pair<int, int>> spans;
    spans.reserve(static_cast<size_t>(ranges.size()));
    for (const RangeBookmark& range : ranges)
        spans.emplace_back(FrameToPixel(TimeToFrame(range.startTime)), RightEdge(TimeToFrame(range.endTime)));
    FillOverlapping(painter, spans, mElementStripY - 1 + ElementStripHeight(), 2, RangeBookmarkColor);
}

void GlobalTimelineWidget::FillOverlapping(QPainter* painter, const std::vector<std::pair<int, int>>& spans,
                                           int top, int height, const QColor& color)
{
    // Where fills of one translucent colour overlap, only their number counts, and from some number on the
    // colour stays: alpha 150 settles in fewer than this many fills.
    constexpr int settled = 16;
    const bool isInside = std::all_of(spans.begin(), spans.end(),
                                      [this](const auto& span) { return IsInside(span.first, span.second); });
    if (!PaintsWholePixels(painter, rect()) || !isInside || spans.size() < settled)
    {
        for (const auto& [left, right] : spans)
            FillSpan(painter, left, top, right, height, color);
        return;
    }
    const int columns = width();
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

void GlobalTimelineWidget::DrawTimeBookmarks(QPainter* painter)
{
    if (!Settings::globalTimelineShowTimeBookmarks)
        return;
    DrawBookmarkFlags(painter, std::numeric_limits<int64_t>::min(), mEndTime, BookmarkColor, AnnotatedColor);
}

void GlobalTimelineWidget::DrawBookmarkFlags(QPainter* painter, int64_t firstTime, int64_t lastTime,
                                             const QColor& plainColor, const QColor& annotatedColor)
{
    const std::shared_ptr<ProjectObject> timeline = mTimelineObject.lock();
    if (!timeline)
        return;
    painter->setPen(plainColor);
    const Bookmarks* const owner = timeline->GetBookmarks();
    const QList<TimeBookmark> bookmarks =
        owner != nullptr ? owner->GetTimeBookmarks() : QList<TimeBookmark>();
    // Of bookmarks that follow each other on one pixel only the first is drawn, and it decides the colour.
    FlagPainter flags(painter, mPlayheadY, PlayheadHeight(), plainColor, annotatedColor, rect());
    int lastX = -1;
    for (const TimeBookmark& bookmark : bookmarks)
    {
        if (bookmark.time < firstTime || bookmark.time > lastTime)
            continue;
        const int x = FrameToPixel(TimeToFrame(bookmark.time));
        if (x == lastX)
            continue;
        flags.Draw(x, !bookmark.drawings.isEmpty());
        lastX = x;
    }
}

void GlobalTimelineWidget::DrawHoverMarker(QPainter* painter)
{
    if (!underMouse() || QGuiApplication::mouseButtons() == Qt::LeftButton || mHoverRange ||
        mHoverRangeStart || mHoverRangeEnd)
        return;
    const int frame = PixelToFrame(mapFromGlobal(QCursor::pos()).x());
    if (frame == mPlaybackFrame)
        return;
    const int x = FrameToPixel(frame);
    SetFontSize(painter, PositionFontSize());
    painter->setPen(HoverTextColor);
    DrawFrameLabel(painter, frame, x);
    DrawFrameMarker(painter, frame, x, HoverPlayheadColor, HoverSpanColor);
}

void GlobalTimelineWidget::DrawPlayhead(QPainter* painter)
{
    mPlayheadX = FrameToPixel(mPlaybackFrame);
    if (mPlayheadX < 0)
        return;
    const bool annotated = PlaybackFrameIsAnnotated();
    // The font stays in force for the position within the range.
    SetFontSize(painter, PositionFontSize());
    painter->setPen(annotated ? AnnotatedColor : PositionTextColor());
    DrawFrameLabel(painter, mPlaybackFrame, mPlayheadX);
    DrawFrameMarker(painter, mPlaybackFrame, mPlayheadX, annotated ? AnnotatedColor : PlayheadColor(),
                    annotated ? AnnotatedSpanColor : FrameSpanColor());
}

bool GlobalTimelineWidget::PlaybackFrameIsAnnotated()
{
    const std::shared_ptr<ProjectObject> timeline = mTimelineObject.lock();
    const Bookmarks* const owner = timeline ? timeline->GetBookmarks() : nullptr;
    if (owner == nullptr)
        return false;
    const QList<TimeBookmark> bookmarks = owner->GetTimeBookmarks();
    return std::any_of(bookmarks.cbegin(), bookmarks.cend(),
                       [this](const TimeBookmark& bookmark) {
                           return !bookmark.drawings.isEmpty() &&
                                  TimeToFrame(bookmark.time) == mPlaybackFrame;
                       });
}

void GlobalTimelineWidget::DrawFrameLabel(QPainter* painter, int frame, int x)
{
    // Centred on the middle of the frame and not kept inside the widget: near an end it is clipped.
    const int boxX = Truncated(static_cast<double>(mFrameWidth) * 0.5 + x + mLabelOffsetX);
    DrawLabel(painter, boxX, mLabelRowY, LabelBoxWidth(), LabelRowHeight(),
              Qt::AlignHCenter | Qt::AlignVCenter, FormatFrame(std::min(frame, mFrameCount)));
}

void GlobalTimelineWidget::DrawFrameMarker(QPainter* painter, int frame, int x, const QColor& markerColor,
                                           const QColor& spanColor)
{
    FillSpan(painter, x, mPlayheadY, WrappingSum(x, PlayheadWidth()), PlayheadHeight(), markerColor);
    if (mFrameWidth <= static_cast<float>(PlayheadWidth()))
        return;
    const int next = WrappingSum(frame, 1);
    const int nextX = next > mFrameCount ? WrappingSum(mBarWidth, mBarX) : FrameToPixel(next);
    FillSpan(painter, WrappingSum(x, PlayheadWidth()), FrameSpanY(), nextX, FrameSpanHeight(), spanColor);
}

void GlobalTimelineWidget::DrawRangePosition(QPainter* painter)
{
    if (RangeIsWhole())
        return;
    painter->setPen(PositionTextColor());
    // The count that the position label does not give.
    const int position = mDisplayType == FrameNumbersRange
                             ? mPlaybackFrame
                             : WrappingSum(WrappingDifference(mPlaybackFrame, mRangeStartFrame), 1);
    DrawLabel(painter, mLeftPanelX + SidePanelInset(), mLabelRowY, LabelBoxWidth(), LabelRowHeight(),
              Qt::AlignLeft, QString::number(position));
}

void GlobalTimelineWidget::DrawRangeDuration(QPainter* painter)
{
    // In seconds this is the start time of the range's last frame counted from 1, one frame short of its
    // length; meant so.
    const int frames = WrappingSum(WrappingDifference(mRangeEndFrame, mRangeStartFrame), 1);
    QString text;
    switch (mDisplayType)
    {
    case FrameNumbersGlobal:
    case FrameNumbersRange:
        text = QString::number(frames) + tr(" frames");
        break;
    case Seconds:
        text = FormatFrame(frames) + tr(" sec");
        break;
    case TimeCode:
        text = FormatFrame(frames);
        break;
    }
    SetFontSize(painter, SmallFontSize());
    painter->setPen(InfoTextColor());
    DrawLabel(painter, mLeftPanelX + SidePanelInset(), mBodyY + 2, mLeftPanelWidth, mBodyHeight,
              Qt::AlignLeft, text);
}

void GlobalTimelineWidget::DrawFrameRates(QPainter* painter)
{
    const auto drawText = [this, painter](int offset, const QString& text)
    {
        DrawLabel(painter, mRightPanelX + offset, mBodyY + 2, mRightPanelWidth, mBodyHeight, Qt::AlignLeft,
                  text);
    };
    const int secondColumn = Truncated(mRightPanelWidth * 0.36);
    const int unitColumn = Truncated(mRightPanelWidth * 0.65);
    SetFontSize(painter, SmallFontSize());
    painter->setPen(InfoTextColor());
    drawText(0, QString::number(static_cast<double>(mDesiredFrameRate), 'f', 2));
    if (mSteppedPlayback)
    {
        painter->setPen(PositionTextColor());
        drawText(secondColumn, tr("Step"));
    }
    else if (mSpeedMultiplier != 1.0f)
    {
        painter->setPen(PositionTextColor());
        drawText(secondColumn, QString::number(static_cast<double>(mSpeedMultiplier), 'f', 2) + tr("x"));
    }
    else
    {
        drawText(secondColumn, QString::number(static_cast<double>(mActualFrameRate), 'f', 1));
        drawText(unitColumn, tr("fps"));
    }
}

void GlobalTimelineWidget::DrawLabel(QPainter* painter, int x, int y, int width, int height, int flags,
                                     const QString& text)
{
    painter->drawText(QRectF(x, y, width, height), flags, text);
}

bool GlobalTimelineWidget::IsInside(int left, int right) const
{
    return std::min(left, right) >= 0 && std::max(left, right) <= width();
}

void GlobalTimelineWidget::FillStretches(QPainter* painter, const std::vector<int>& lefts, int right, int top,
                                         int height, const QColor& evenColor, const QColor& oddColor)
{
    const auto color = [&](size_t index) { return index % 2 == 0 ? evenColor : oddColor; };
    const auto [first, last] = std::minmax_element(lefts.begin(), lefts.end());
    if (!PaintsWholePixels(painter, rect()) || !IsInside(*first, right) || !IsInside(*last, right) ||
        evenColor.alpha() < 255 || oddColor.alpha() < 255)
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

void GlobalTimelineWidget::FillSpan(QPainter* painter, int left, int top, int right, int height,
                                    const QColor& color)
{
    FillSpanBetween(painter, left, top, right, height, color);
}

void GlobalTimelineWidget::SetFontSize(QPainter* painter, int pointSize)
{
    QFont font(painter->font());
    font.setPointSize(pointSize);
    painter->setFont(font);
}
