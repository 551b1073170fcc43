// SPDX-License-Identifier: MIT
#include "host/Bookmarks.h"

#include <algorithm>

TimeBookmark::TimeBookmark() = default;
TimeBookmark::TimeBookmark(int64_t bookmarkTime) : time(bookmarkTime) {}
TimeBookmark::TimeBookmark(const TimeBookmark& other) = default;
TimeBookmark& TimeBookmark::operator=(const TimeBookmark& other) = default;
TimeBookmark::~TimeBookmark() = default;

RangeBookmark::RangeBookmark() = default;
RangeBookmark::RangeBookmark(int64_t rangeStartTime, int64_t rangeEndTime)
    : startTime(rangeStartTime), endTime(rangeEndTime)
{
}
RangeBookmark::RangeBookmark(const RangeBookmark& other) = default;
RangeBookmark& RangeBookmark::operator=(const RangeBookmark& other) = default;
RangeBookmark::~RangeBookmark() = default;

namespace
{

template<typename Bookmark, typename Matches>
bool RemoveMatching(QList<Bookmark>& bookmarks, Matches matches)
{
    const auto kept = std::remove_if(bookmarks.begin(), bookmarks.end(), matches);
    const bool found = kept != bookmarks.end();
    bookmarks.erase(kept, bookmarks.end());
    return found;
}

} // namespace

const QList<TimeBookmark>& Bookmarks::GetTimeBookmarks() const
{
    return mTimeBookmarks;
}

const QList<RangeBookmark>& Bookmarks::GetRangeBookmarks() const
{
    return mRangeBookmarks;
}

void Bookmarks::AddTimeBookmark(const TimeBookmark& bookmark)
{
    mTimeBookmarks.append(bookmark);
}

bool Bookmarks::RemoveTimeBookmark(int64_t time)
{
    return RemoveMatching(mTimeBookmarks, [time](const TimeBookmark& each) { return each.time == time; });
}

void Bookmarks::AddRangeBookmark(const RangeBookmark& bookmark)
{
    mRangeBookmarks.append(bookmark);
}

bool Bookmarks::RemoveRangeBookmark(int64_t startTime, int64_t endTime)
{
    return RemoveMatching(mRangeBookmarks, [=](const RangeBookmark& each)
                          { return each.startTime == startTime && each.endTime == endTime; });
}

void Bookmarks::Clear()
{
    mTimeBookmarks.clear();
    mRangeBookmarks.clear();
}
