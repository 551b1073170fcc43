// SPDX-License-Identifier: MIT
#include "timelines/GlobalTimelineWidget.h"

#include "host/Bookmarks.h"
#include "host/Settings.h"
#include "timelines/TimelineFills.h"
#include "timelines/TimelineMapping.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <limits>

using TimelineFills::FillOverlapping;
using TimelineFills::FillSpan;
using TimelineFills::FillStretches;
using TimelineFills::FillTriangle;
using TimelineFills::FlagPainter;
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
/// The cache line keeps to this constant on every timeline; CacheColor() colours nothing, and is meant so.
const QColor CacheLineColor(0, 54, 143, 127);

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
    FillStretches(painter, rect(), lefts, end, mElementStripY, ElementStripHeight(), ElementStripColor(),
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
    FillStretches(painter, rect(), lefts, right, mScrubBarY, barHeight, ScrubBarColor(), ScrubBarAltColor());

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
    FillOverlapping(painter, rect(), spans, mElementStripY - 1 + ElementStripHeight(), 2, RangeBookmarkColor);
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
    FlagPainter flags(painter, rect(), mPlayheadY, PlayheadHeight(), plainColor, annotatedColor);
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

void GlobalTimelineWidget::SetFontSize(QPainter* painter, int pointSize)
{
    QFont font(painter->font());
    font.setPointSize(pointSize);
    painter->setFont(font);
}
