// SPDX-License-Identifier: MIT
#include "timelines/TimelineReference.h"

#include "host/Settings.h"
#include "timelines/TimelineFormulas.h"
#include "timelines/TimelineWidget.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace
{

/// Draws a timeline plainly: every element, bookmark and line, one after the other.
class ReferencePainter
{
public:
    ReferencePainter(const TimelineState& s, bool range, const QFont& font, QImage::Format format)
        : mS(s)
        , mRange(range)
        , mImage(QSize(s.width, range ? 46 : 40) * s.pixelRatio, format)
        , mMargin(range ? 50 : 100)
        , mBar(s.width - 2 * mMargin)
    {
        mImage.setDevicePixelRatio(s.pixelRatio);
        mP.begin(&mImage);
        mP.setFont(font);
        if (mS.timeline && !mS.timeline->elements.isEmpty())
        {
            mStart = mS.timeline->startTime;
            mEnd = mS.timeline->endTime;
            for (const ElementInfo& element : mS.timeline->elements)
                mCount += element.frameCount;
        }
        mRangeStart = mS.rangeStart < mStart ? mStart : mS.rangeStart;
        mRangeEnd = mS.rangeEnd > mEnd ? mEnd : mS.rangeEnd;
        mFirst = Frame(mRangeStart);
        mLast = Frame(mRangeEnd);
        mNow = Frame(mS.playback);
        if (mNow != 0)
            mNowTime = mS.timeline ? mS.timeline->frameToTime(mNow) : 0;
        mFrameWidth = range ? Formula::RangeFrameWidth(mBar, int64_t(mLast) - mFirst + 1)
                            : Formula::GlobalFrameWidth(mBar, mCount);
    }

    QImage Global()
    {
        mP.setRenderHint(QPainter::Antialiasing);
        Rect(0, 0, mS.width, 40, QColor(0, 0, 0));
        GlobalStrip();
        GlobalRange();
        if (Settings::globalTimelineShowTimeBookmarks)
            Flags(25, 10, INT64_MIN, mEnd, QColor(200, 200, 200, 200));
        Hover();
        Playhead();
        if (mRangeStart != mStart || mRangeEnd != mEnd)
        {
            mP.setPen(QColor(255, 255, 255, 200));
            const int shown = mS.displayType == FrameNumbersRange ? mNow : mNow - mFirst + 1;
            mP.drawText(QRect(10, 0, 200, 20), Qt::AlignLeft, QString::number(shown));
        }
        Panels();
        mP.end();
        return mImage;
    }

    QImage Range()
    {
        Rect(0, 0, mS.width, 46, QColor(0, 0, 0));
        const QColor dark(64, 64, 64);
        Rect(50, 29, mBar, 1, dark);
        if (Settings::rangeTimelineShowCache && Frame2(mS.cacheEnd) >= Frame2(mS.cacheStart))
        {
            const int from = Pixel(Frame2(mS.cacheStart));
            const int to = std::min(RightOf(Frame2(mS.cacheEnd)), 50 + mBar);
            if (to > from)
                Rect(from, 29, to - from, 1, QColor(0, 54, 143, 127));
        }
        Rect(50, 18, 2, 23, dark);
        Rect(mS.width - 50, 18, 2, 23, dark);
        if (Settings::rangeTimelineShowTimeBookmarks)
            Flags(18, 23, mRangeStart, std::min(mRangeEnd, mEnd), QColor(200, 200, 200, 255));
        const QRect leftPanel(0, 14, 44, 32);
        const QRect rightPanel(mS.width - 44, 14, 50, 32);
        if (mS.cursor && !leftPanel.contains(*mS.cursor) && !rightPanel.contains(*mS.cursor))
            Hover();
        if (mNowTime >= mRangeStart && mNowTime <= mRangeEnd)
            Playhead();
        SetSize(8);
        mP.setPen(QColor(140, 140, 140));
        mP.drawText(leftPanel, Qt::AlignRight | Qt::AlignVCenter, Text(mFirst));
        mP.drawText(rightPanel, Qt::AlignLeft | Qt::AlignVCenter, Text(mLast));
        mP.end();
        return mImage;
    }

private:
    void GlobalStrip()
    {
        if (!HasElements())
            Rect(100, 27, mBar, 6, QColor(64, 64, 64));
        for (int i = 0; HasElements() && i < mS.timeline->elements.size(); ++i)
        {
            const int x = Pixel(mS.timeline->elements[i].startFrame);
            const int grey = i & 1 ? 74 : 64;
            Rect(x, 27, 100 + mBar - x, 6, QColor(grey, grey, grey));
        }
    }

    void GlobalRange()
    {
        const int left = Pixel(mFirst);
        const int right = RightOf(mLast);
        const QColor bright(200, 200, 200);
        if (mS.hoverRange && !(mS.hoverStart || mS.hoverEnd))
            Rect(left, 25, right - left, 10, bright);
        if (!HasElements())
            Rect(left, 26, right - left, 8, QColor(140, 140, 140));
        for (int i = 0; HasElements() && i < mS.timeline->elements.size(); ++i)
        {
            int x = Pixel(mS.timeline->elements[i].startFrame);
            if (x < left)
                x = left;
            const int grey = i & 1 ? 160 : 140;
            if (right - x > 0)
                Rect(x, 26, right - x, 8, QColor(grey, grey, grey));
        }
        if (Settings::globalTimelineShowCache && mS.cacheEnd > mS.cacheStart)
        {
            const int from = Pixel(Frame2(mS.cacheStart));
            const int to = RightOf(Frame2(mS.cacheEnd));
            if (to > from)
                Rect(from, 30, to - from, 3, QColor(0, 54, 143, 127));
        }
        if (Settings::globalTimelineShowRangeBookmarks && mS.timeline)
            for (const RangeBookmark& bookmark : mS.timeline->GetBookmarks()->GetRangeBookmarks())
            {
                const int from = Pixel(Frame(bookmark.startTime));
                Rect(from, 32, RightOf(Frame(bookmark.endTime)) - from, 2, QColor(255, 255, 0, 150));
            }
        Rect(left, 25, 2, 10, QColor(140, 140, 140));
        Rect(right, 25, 2, 10, QColor(140, 140, 140));
        if (mS.hoverStart || mS.hoverRange)
        {
            Triangle(left - 12, 30, left + 2, 23, left + 2, 37, bright);
            Rect(left, 23, 2, 14, bright);
        }
        if (mS.hoverEnd || mS.hoverRange)
        {
            Triangle(right + 14, 30, right, 23, right, 37, bright);
            Rect(right, 23, 2, 14, bright);
        }
    }

    void Flags(int y, int height, int64_t from, int64_t to, const QColor& plain)
    {
        if (!mS.timeline)
            return;
        int last = -1;
        for (const TimeBookmark& bookmark : mS.timeline->GetBookmarks()->GetTimeBookmarks())
        {
            // No bookmark behind the timeline's end shows on either timeline.
            if (bookmark.time < from || bookmark.time > to)
                continue;
            const int x = Pixel(Frame(bookmark.time));
            if (x == last)
                continue;
            const QColor color = bookmark.drawings.size() > 0 ? QColor(30, 200, 30, 200) : plain;
            Rect(x, y, 1, height, color);
            Triangle(x, y, x - 3, y - 3, x + 4, y - 3, color);
            last = x;
        }
    }

    void Hover()
    {
        if (!mS.cursor || mS.hoverRange || mS.hoverStart || mS.hoverEnd)
            return;
        const int frame = mRange ? Formula::RangeFrame(mS.cursor->x(), mFirst, mLast, 50, mBar, mBar)
                                 : Formula::GlobalFrame(mS.cursor->x(), mCount, 100, mBar);
        if (frame == mNow)
            return;
        Marker(frame, QColor(200, 200, 200, 90), QColor(200, 200, 200, 90), QColor(200, 200, 200, 70));
    }

    void Playhead()
    {
        if (Pixel(mNow) < 0)
            return;
        bool green = false;
        if (mS.timeline)
            for (const TimeBookmark& bookmark : mS.timeline->GetBookmarks()->GetTimeBookmarks())
                green = green || (Frame(bookmark.time) == mNow && !bookmark.drawings.isEmpty());
        if (green)
            Marker(mNow, QColor(30, 200, 30, 200), QColor(30, 200, 30, 200), QColor(30, 200, 30, 127));
        else
            Marker(mNow, QColor(255, 255, 255, 200), QColor(255, 255, 255, 200), QColor(255, 255, 255, 127));
    }

    /// A playhead with its label on top and its frame beside it.
    void Marker(int frame, const QColor& text, const QColor& head, const QColor& span)
    {
        const int x = Pixel(frame);
        SetSize(mRange ? 12 : 15);
        mP.setPen(text);
        const int box = Formula::Cut(double(mFrameWidth) / 2 + x - 100);
        mP.drawText(QRect(box, 0, 200, mRange ? 14 : 20), Qt::AlignHCenter | Qt::AlignVCenter,
                    Text(std::min(frame, mCount)));
        if (mRange)
            Rect(x, 18, 2, 23, head);
        else
            Rect(x, 25, 2, 10, head);
        if (!(mFrameWidth > 2.0f))
            return;
        const int next = frame + 1 <= mCount ? Pixel(frame + 1) : mMargin + mBar;
        if (mRange)
            Rect(x + 2, 18, next - x - 2, 23, span);
        else
            Rect(x + 2, 26, next - x - 2, 8, span);
    }

    void Panels()
    {
        const int frames = mLast - mFirst + 1;
        QString length;
        if (mS.displayType == FrameNumbersGlobal || mS.displayType == FrameNumbersRange)
            length = QStringLiteral("%1 frames").arg(frames);
        else if (mS.displayType == Seconds)
            length = Text(frames) + QStringLiteral(" sec");
        else
            length = Text(frames);
        SetSize(8);
        const QColor grey(140, 140, 140);
        mP.setPen(grey);
        mP.drawText(QRect(10, 22, 90, 20), Qt::AlignLeft, length);
        const int x = mS.width - 90;
        mP.drawText(QRect(x, 22, 100, 20), Qt::AlignLeft, QString::number(double(mS.desiredRate), 'f', 2));
        QString second;
        if (mS.stepped)
            second = QStringLiteral("Step");
        else if (mS.multiplier < 1.0f || mS.multiplier > 1.0f)
            second = QString::number(double(mS.multiplier), 'f', 2) + QLatin1Char('x');
        if (second.isEmpty())
        {
            mP.drawText(QRect(x + 36, 22, 100, 20), Qt::AlignLeft,
                        QString::number(double(mS.actualRate), 'f', 1));
            mP.drawText(QRect(x + 65, 22, 100, 20), Qt::AlignLeft, QStringLiteral("fps"));
            return;
        }
        mP.setPen(QColor(255, 255, 255, 200));
        mP.drawText(QRect(x + 36, 22, 100, 20), Qt::AlignLeft, second);
    }

    bool HasElements() const { return mS.timeline && !mS.timeline->elements.isEmpty(); }
    int Frame(int64_t time) const { return mS.timeline ? mS.timeline->timeToFrame(time) : 1; }
    /// Frame of a cached end: a widget never told of a cache holds frame 0.
    int Frame2(int64_t time) const { return mS.cacheStart == 0 && mS.cacheEnd == 0 ? 0 : Frame(time); }
    int Pixel(int frame) const
    {
        return mRange ? Formula::RangePixel(frame, mFirst, mLast, 50, mBar)
                      : Formula::GlobalPixel(frame, mCount, 100, mBar);
    }
    int RightOf(int frame) const { return Formula::Cut(double(float(Pixel(frame)) + mFrameWidth)); }
    QString Text(int frame) const
    {
        switch (mS.displayType)
        {
        case FrameNumbersGlobal:
            return QString::number(frame);
        case FrameNumbersRange:
            return QString::number(frame - mFirst + 1);
        case TimeCode:
            return Formula::TimeCode(frame, mS.desiredRate);
        case Seconds:
            break;
        }
        const int64_t time = mS.timeline ? mS.timeline->frameToTime(frame) : 0;
        return QString::asprintf("%.2f", double(time < mEnd ? time : mEnd) / 1e6);
    }
    void SetSize(int points)
    {
        QFont font = mP.font();
        font.setPointSize(points);
        mP.setFont(font);
    }
    void Rect(int x, int y, int width, int height, const QColor& color)
    {
        mP.fillRect(QRectF(x, y, width, height), QBrush(color));
    }
    void Triangle(int x1, int y1, int x2, int y2, int x3, int y3, const QColor& color)
    {
        QPainterPath path;
        path.addPolygon(QPolygonF({QPointF(x1, y1), QPointF(x2, y2), QPointF(x3, y3), QPointF(x1, y1)}));
        mP.fillPath(path, QBrush(color));
    }

    const TimelineState& mS;
    const bool mRange;
    QImage mImage;
    QPainter mP;
    const int mMargin;
    const int mBar;
    int mCount = 0;
    int64_t mStart = 0;
    int64_t mEnd = 0;
    int64_t mRangeStart = 0;
    int64_t mRangeEnd = 0;
    int64_t mNowTime = 0;
    int mFirst = 0;
    int mLast = 0;
    int mNow = 0;
    float mFrameWidth = 0;
};

void AddRandomBookmarks(FakeTimeline& timeline, QRandomGenerator& random, int frames)
{
    const int times = random.bounded(3) == 0 ? 0 : random.bounded(60);
    for (int i = 0; i < times; ++i)
        timeline.MarkFrame(random.bounded(-2, frames + 20), random.bounded(3) == 0);
    const int ranges = random.bounded(3) == 0 ? 0 : random.bounded(40);
    for (int i = 0; i < ranges; ++i)
    {
        const int from = random.bounded(-2, frames + 20);
        const int to =
            random.bounded(2) == 0 ? from + random.bounded(-2, 5) : random.bounded(-2, frames + 20);
        timeline.GetBookmarks()->AddRangeBookmark(
            RangeBookmark(timeline.frameToTime(from), timeline.frameToTime(to)));
    }
}

std::shared_ptr<FakeTimeline> RandomTimeline(QRandomGenerator& random)
{
    static const QList<int> longest{1, 1, 2, 5, 30, 200, 5000};
    static const QList<int> mostElements{1, 2, 7, 40, 300};
    QList<int> lengths;
    const int most = longest[random.bounded(longest.size())];
    const int elements = random.bounded(mostElements[random.bounded(mostElements.size())] + 1);
    for (int i = 0; i < elements; ++i)
        lengths << 1 + random.bounded(most);
    const int64_t start = random.bounded(2) == 0 ? 0 : random.bounded(5000000);
    auto timeline = std::make_shared<FakeTimeline>(lengths, 24, start);
    const int frames = std::max(timeline->timeToFrame(timeline->endTime), 1);
    AddRandomBookmarks(*timeline, random, frames);
    // Elements out of order and past the ends, as a host in the middle of an edit may hand them out.
    if (random.bounded(4) == 0)
        for (ElementInfo& element : timeline->elements)
            element.startFrame = random.bounded(-3, frames * 2 + 3);
    // A host whose conversions follow no order.
    if (random.bounded(5) == 0)
    {
        const auto scale = static_cast<unsigned>(frames);
        const auto salt = random.generate() | 1u;
        timeline->timeToFrame = [scale, salt](int64_t time)
        { return 1 + static_cast<int>(static_cast<unsigned>(time / 1000) * salt % scale); };
    }
    return timeline;
}

} // namespace

TimelineState RandomTimelineState(QRandomGenerator& random)
{
    static const QList<int> widths{1,   2,   40,  90,  99,  100, 101, 102, 110, 150, 199,
                                   200, 201, 202, 210, 300, 457, 640, 799, 800, 801, 1600};
    static const QList<float> rates{24.0f, 23.976f, 25.0f, 29.97f, 60.0f, 0.3f, 0.0f, -24.0f};
    TimelineState state;
    state.width = widths[random.bounded(widths.size())];
    if (random.bounded(20) != 0)
        state.timeline = RandomTimeline(random);
    const auto time = [&]() -> int64_t
    {
        if (!state.timeline)
            return random.bounded(1000000);
        const int frames =
            std::max(int((state.timeline->endTime - state.timeline->startTime) * 24 / 1000000), 1);
        return state.timeline->frameToTime(random.bounded(-1, frames + 4));
    };
    state.rangeStart = random.bounded(3) == 0 ? INT64_MIN : time();
    state.rangeEnd = random.bounded(3) == 0 ? INT64_MAX : time();
    if (random.bounded(4) != 0 && state.rangeStart > state.rangeEnd)
        std::swap(state.rangeStart, state.rangeEnd);
    state.playback = time();
    state.cacheStart = time();
    state.cacheEnd = random.bounded(4) == 0 ? state.cacheStart : time();
    state.desiredRate = rates[random.bounded(rates.size())];
    state.actualRate = static_cast<float>(random.bounded(70.0));
    state.multiplier = random.bounded(2) == 0 ? 1.0f : static_cast<float>(random.bounded(4.0));
    state.stepped = random.bounded(3) == 0;
    state.displayType = static_cast<TimelineDisplayType>(random.bounded(4));
    state.hoverRange = random.bounded(3) == 0;
    state.hoverStart = random.bounded(3) == 0;
    state.hoverEnd = random.bounded(3) == 0;
    if (random.bounded(2) == 0)
        state.cursor = QPoint(random.bounded(state.width), random.bounded(40));
    for (bool* flag : {&Settings::globalTimelineShowTimeBookmarks,
                       &Settings::globalTimelineShowRangeBookmarks, &Settings::globalTimelineShowCache,
                       &Settings::rangeTimelineShowTimeBookmarks, &Settings::rangeTimelineShowCache})
        *flag = random.bounded(5) != 0;
    return state;
}

void ApplyTimelineState(TimelineWidget* widget, const TimelineState& state)
{
    widget->SetTimeline(state.timeline);
    widget->SetPlaybackRange(state.rangeStart, state.rangeEnd);
    widget->SetPlaybackTime(state.playback);
    widget->SetCachedRange(state.cacheStart, state.cacheEnd);
    widget->SetDesiredFrameRate(state.desiredRate);
    widget->SetActualFrameRate(state.actualRate);
    widget->SetPlaybackSpeedMultiplier(state.multiplier);
    widget->SetSteppedPlaybackEnabled(state.stepped);
    QMetaObject::invokeMethod(widget, "SetDisplayType", Q_ARG(TimelineDisplayType, state.displayType));
}

QImage GlobalTimelinePicture(const TimelineState& state, const QFont& font, QImage::Format format)
{
    return ReferencePainter(state, false, font, format).Global();
}

QImage RangeTimelinePicture(const TimelineState& state, const QFont& font, QImage::Format format)
{
    return ReferencePainter(state, true, font, format).Range();
}
