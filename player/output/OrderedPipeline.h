// SPDX-License-Identifier: MIT
#pragma once

#include "kit/VectorState.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

/// Works on numbered items on threads of its own and gives the results out in order.
///
/// One thread feeds the items in order, several work on them. Not more than a few are under way at once, so
/// that memory stays bounded however slowly the results are taken.
template<typename Item, typename Result>
class OrderedPipeline
{
public:
    /// Makes item @p index of 0 to the count; called in order on one thread.
    using Feed = std::function<Item(int index)>;
    /// Makes the result of an item; called by several threads at once.
    using Work = std::function<Result(int index, Item& item)>;

    OrderedPipeline(int count, int workers, Feed feed, Work work)
        : mCount(count), mLimit(2 * workers + 4), mFeed(std::move(feed)), mWork(std::move(work))
    {
        mThreads.emplace_back([this] { RunFeed(); });
        for (int worker = 0; worker < workers; ++worker)
            mThreads.emplace_back([this] { RunWork(); });
    }

    ~OrderedPipeline() { Finish(); }

    /// Threads that serve well for @p count items on this machine.
    static int WorkersFor(int count)
    {
        const int cores = static_cast<int>(std::thread::hardware_concurrency());
        return std::max(1, std::min({count, cores, 8}));
    }

    /// Waits for the next result. Returns false after the last one, and once it was cancelled.
    bool Next(Result* result)
    {
        std::unique_lock<std::mutex> lock(mMutex);
        mDone.wait(lock, [this] { return mCancelled || mTaken == mCount || mResults.count(mTaken) > 0; });
        if (mCancelled || mTaken == mCount)
            return false;
        const auto found = mResults.find(mTaken);
        *result = std::move(found->second);
        mResults.erase(found);
        ++mTaken;
        mRoom.notify_one();
        return true;
    }

    /// Cancels, waits for the threads, and gives out the results that Next() didn't, in order.
    std::vector<Result> Finish()
    {
        Cancel();
        for (std::thread& thread : mThreads)
            thread.join();
        mThreads.clear();
        std::vector<Result> results;
        for (auto& [index, result] : mResults)
            results.push_back(std::move(result));
        mResults.clear();
        return results;
    }

    /// Ends the work early; any thread may call. What is under way still finishes.
    void Cancel()
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mCancelled = true;
        mRoom.notify_all();
        mReady.notify_all();
        mDone.notify_all();
    }

private:
    void RunFeed()
    {
        VectorState::ClearUpperHalves();
        for (int index = 0; index < mCount; ++index)
        {
            {
                std::unique_lock<std::mutex> lock(mMutex);
                mRoom.wait(lock, [&] { return mCancelled || index - mTaken < mLimit; });
                if (mCancelled)
                    return;
            }
            Item item = mFeed(index);
            const std::lock_guard<std::mutex> lock(mMutex);
            mItems.emplace_back(index, std::move(item));
            mReady.notify_one();
        }
    }

    void RunWork()
    {
        VectorState::ClearUpperHalves();
        for (;;)
        {
            std::unique_lock<std::mutex> lock(mMutex);
            mReady.wait(lock, [this] { return mCancelled || !mItems.empty() || mStarted == mCount; });
            if (mCancelled || mItems.empty())
                return;
            std::pair<int, Item> item = std::move(mItems.front());
            mItems.pop_front();
            if (++mStarted == mCount)
                mReady.notify_all();
            lock.unlock();
            Result result = mWork(item.first, item.second);
            lock.lock();
            mResults.emplace(item.first, std::move(result));
            mDone.notify_all();
        }
    }

    const int mCount;
    const int mLimit;
    Feed mFeed;
    Work mWork;
    std::mutex mMutex;
    std::condition_variable mRoom;
    std::condition_variable mReady;
    std::condition_variable mDone;
    std::deque<std::pair<int, Item>> mItems;
    std::map<int, Result> mResults;
    int mStarted = 0;
    int mTaken = 0;
    bool mCancelled = false;
    std::vector<std::thread> mThreads;
};
