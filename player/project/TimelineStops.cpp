// SPDX-License-Identifier: MIT
#include "project/TimelineStops.h"

#include "host/ElementInfo.h"
#include "host/Timeline.h"

#include <algorithm>
#include <utility>

namespace
{

/// Keeps the nearest of the frames that lie in one direction.
class NearestStop
{
public:
    NearestStop(int frame, int direction) : mFrame(frame), mDirection(direction) {}

    void Consider(int candidate)
    {
        const int64_t distance = (int64_t(candidate) - mFrame) * mDirection;
        if (distance > 0 && (mNearest == 0 || distance < mDistance))
        {
            mNearest = candidate;
            mDistance = distance;
        }
    }
    int Frame() const { return mNearest; }

private:
    int mFrame;
    int mDirection;
    int mNearest = 0;
    int64_t mDistance = 0;
};

} // namespace

namespace TimelineStops
{

int NextStop(Timeline* timeline, int frame, int direction)
{
    NearestStop nearest(frame, direction);
    nearest.Consider(NextBookmarkedFrame(timeline, frame, direction));
    for (const RangeBookmark& bookmark : timeline->GetBookmarks()->GetRangeBookmarks())
    {
        nearest.Consider(timeline->TimeToFrame(bookmark.startTime));
        nearest.Consider(timeline->TimeToFrame(bookmark.endTime));
    }
    for (const ElementInfo& element : timeline->GetElementInfos())
        nearest.Consider(element.startFrame);
    return nearest.Frame();
}

int NextBookmarkedFrame(Timeline* timeline, int frame, int direction)
{
    NearestStop nearest(frame, direction);
    for (const TimeBookmark& bookmark : timeline->GetBookmarks()->GetTimeBookmarks())
        nearest.Consider(timeline->TimeToFrame(bookmark.time));
    return nearest.Frame();
}

QList<RangeBookmark> SortedRanges(Timeline* timeline)
{
    QList<RangeBookmark> ranges = timeline->GetBookmarks()->GetRangeBookmarks();
    std::sort(ranges.begin(), ranges.end(),
              [](const RangeBookmark& left, const RangeBookmark& right) {
                  return std::make_pair(left.startTime, left.endTime) <
                         std::make_pair(right.startTime, right.endTime);
              });
    return ranges;
}

} // namespace TimelineStops
