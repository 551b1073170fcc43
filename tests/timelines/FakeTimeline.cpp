// SPDX-License-Identifier: MIT
#include "timelines/FakeTimeline.h"

#include <algorithm>

FakeTimeline::FakeTimeline(const QList<int>& lengths, int framesPerSecond, int64_t start) : startTime(start)
{
    frameToTime = [start, framesPerSecond](int frame)
    {
        const int64_t scaled = (static_cast<int64_t>(frame) - 1) * 1000000;
        return start + (scaled + (scaled > 0 ? framesPerSecond - 1 : 0)) / framesPerSecond;
    };
    timeToFrame = [start, framesPerSecond](int64_t time)
    {
        const int64_t scaled =
            (std::clamp<int64_t>(time, -1000000000000, 1000000000000) - start) * framesPerSecond;
        const int64_t down = scaled >= 0 ? scaled / 1000000 : (scaled - 999999) / 1000000;
        return static_cast<int>(down + 1);
    };
    int next = 1;
    for (const int length : lengths)
    {
        ElementInfo info;
        info.startFrame = next;
        info.frameCount = length;
        elements << info;
        next += length;
    }
    endTime = frameToTime(std::max(next - 1, 1));
}

void FakeTimeline::Mark(int64_t time, bool annotated)
{
    TimeBookmark bookmark(time);
    if (annotated)
        bookmark.drawings << DrawData();
    GetBookmarks()->AddTimeBookmark(bookmark);
}
