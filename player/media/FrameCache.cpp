// SPDX-License-Identifier: MIT
#include "media/FrameCache.h"

#include <algorithm>
#include <iterator>

namespace
{

// What a frame costs beside its pixels; bounds the number of broken and missing frames too.
constexpr int64_t EntryBytes = 256;
// Frames behind the playhead go before those ahead, but not all of them: a step back is likely.
constexpr int64_t BehindFactor = 4;

} // namespace

FrameCache::FrameCache(int64_t limit) : mLimit(std::max<int64_t>(limit, 0)) {}

void FrameCache::SetLimit(int64_t bytes)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mLimit = std::max<int64_t>(bytes, 0);
    Trim(0, 0);
}

int64_t FrameCache::Limit() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mLimit;
}

int64_t FrameCache::Bytes() const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mBytes;
}

int64_t FrameCache::BytesOf(const ReadResult& result)
{
    return int64_t(result.image.sizeInBytes()) + EntryBytes;
}

bool FrameCache::Insert(int media, int frame, const ReadResult& result)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (BytesOf(result) > mLimit)
        return false;
    Medium& medium = mMedia[media];
    if (medium.frames.count(frame) != 0)
        Drop(medium, frame);
    medium.frames[frame] = result;
    mBytes += BytesOf(result);
    AddToRuns(medium, frame);
    return Trim(media, frame);
}

std::optional<ReadResult> FrameCache::Find(int media, int frame) const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto medium = mMedia.find(media);
    if (medium == mMedia.end())
        return std::nullopt;
    const auto found = medium->second.frames.find(frame);
    return found == medium->second.frames.end() ? std::nullopt : std::make_optional(found->second);
}

bool FrameCache::Contains(int media, int frame) const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto medium = mMedia.find(media);
    return medium != mMedia.end() && medium->second.frames.count(frame) != 0;
}

std::pair<int, int> FrameCache::Range(int media, int frame) const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto medium = mMedia.find(media);
    if (medium == mMedia.end())
        return {0, -1};
    const auto& runs = medium->second.runs;
    auto run = runs.upper_bound(frame);
    if (run == runs.begin() || (--run)->second < frame)
        return {0, -1};
    return *run;
}

std::map<int, int> FrameCache::Ranges(int media) const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto medium = mMedia.find(media);
    return medium == mMedia.end() ? std::map<int, int>() : medium->second.runs;
}

void FrameCache::SetPlayhead(int media, const Playhead& playhead)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mMedia[media].playhead = playhead;
}

void FrameCache::ClearPlayhead(int media)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto medium = mMedia.find(media);
    if (medium != mMedia.end())
        medium->second.playhead.reset();
}

void FrameCache::Remove(int media)
{
    // Pictures are freed after the lock is.
    Medium removed;
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto medium = mMedia.find(media);
    if (medium == mMedia.end())
        return;
    for (const auto& [frame, result] : medium->second.frames)
        mBytes -= BytesOf(result);
    std::swap(removed, medium->second);
    mMedia.erase(medium);
}

int64_t FrameCache::Cost(const Playhead& playhead, int frame)
{
    const int64_t ahead = (int64_t(frame) - playhead.frame) * (playhead.direction < 0 ? -1 : 1);
    const int64_t cost = ahead >= 0 ? ahead : -ahead * BehindFactor;
    const int64_t span = int64_t(playhead.last) - playhead.first + 1;
    const bool comesRound =
        playhead.loops && ahead < 0 && frame >= playhead.first && frame <= playhead.last && ahead + span > 0;
    return comesRound ? std::min(cost, ahead + span) : cost;
}

std::pair<int64_t, int> FrameCache::Worst(const Medium& medium)
{
    if (medium.frames.empty())
        return {-1, 0};
    const int first = medium.frames.begin()->first;
    if (!medium.playhead)
        return {INT64_MAX, first};
    const Playhead& playhead = *medium.playhead;
    std::pair<int64_t, int> worst{-1, 0};
    const auto consider = [&](int frame) { worst = std::max(worst, {Cost(playhead, frame), frame}); };
    // The cost grows away from the playhead on either side, so the ends are what counts; where play goes
    // round, it falls again beyond the point from which the way round is the shorter.
    consider(first);
    consider(medium.frames.rbegin()->first);
    if (playhead.loops)
    {
        const int64_t span = int64_t(playhead.last) - playhead.first + 1;
        const int64_t sign = playhead.direction < 0 ? -1 : 1;
        const int turn = int(playhead.frame - sign * (span / (BehindFactor + 1)));
        auto next = medium.frames.lower_bound(turn);
        for (int i = 0; i < 2 && next != medium.frames.end(); ++i, ++next)
            consider(next->first);
        auto before = medium.frames.lower_bound(turn);
        for (int i = 0; i < 2 && before != medium.frames.begin(); ++i)
            consider((--before)->first);
    }
    return worst;
}

void FrameCache::AddToRuns(Medium& medium, int frame)
{
    int first = frame;
    int last = frame;
    auto next = medium.runs.upper_bound(frame);
    if (next != medium.runs.begin())
    {
        const auto before = std::prev(next);
        if (before->second == frame - 1)
        {
            first = before->first;
            medium.runs.erase(before);
        }
    }
    if (next != medium.runs.end() && next->first == frame + 1)
    {
        last = next->second;
        medium.runs.erase(next);
    }
    medium.runs[first] = last;
}

void FrameCache::RemoveFromRuns(Medium& medium, int frame)
{
    const auto run = std::prev(medium.runs.upper_bound(frame));
    const auto [first, last] = *run;
    medium.runs.erase(run);
    if (first < frame)
        medium.runs[first] = frame - 1;
    if (last > frame)
        medium.runs[frame + 1] = last;
}

void FrameCache::Drop(Medium& medium, int frame)
{
    const auto found = medium.frames.find(frame);
    mBytes -= BytesOf(found->second);
    medium.frames.erase(found);
    RemoveFromRuns(medium, frame);
}

bool FrameCache::Trim(int media, int frame)
{
    bool survived = true;
    while (mBytes > mLimit)
    {
        auto worst = mMedia.end();
        std::pair<int64_t, int> worstFrame{-1, 0};
        for (auto medium = mMedia.begin(); medium != mMedia.end(); ++medium)
        {
            const auto candidate = Worst(medium->second);
            if (candidate.first > worstFrame.first)
            {
                worst = medium;
                worstFrame = candidate;
            }
        }
        if (worst == mMedia.end())
            break;
        survived = survived && !(worst->first == media && worstFrame.second == frame);
        Drop(worst->second, worstFrame.second);
    }
    return survived;
}
