// SPDX-License-Identifier: MIT
#pragma once

#include "media/FrameLoader.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <set>
#include <thread>

/// The threads that open and read one medium for a FrameLoader, and what they do next.
class LoaderLane
{
public:
    LoaderLane(FrameLoader* loader, FrameCache* cache, int mediaID, QString path, const MediaOptions& options,
               int workers);
    /// Stops and waits for the threads.
    ~LoaderLane();

    int ID() const { return mID; }

    /// Starts the thread that opens the medium.
    void Start();
    /// Ends all work soon, without waiting; FrameLoader::OnLaneEnded() is called when it has ended.
    void Stop();

    /// Makes @p request the current one. Returns its frame if that is kept; @p frame becomes its number,
    /// clamped.
    std::optional<ReadResult> Request(const FrameRequest& request, int* frame);
    /// How many requests there were.
    int Serial() const;
    /// Whether @p frame is the one asked for last.
    bool IsWanted(int frame) const;
    /// Looks anew at what there is to do, since the cache's bound changed.
    void Reconsider();
    /// Ends all work until the next request; what is kept goes first when the cache needs room.
    void Rest();
    /// Between how many media the cache is shared.
    void SetShare(int media);
    /// The loader told of changes in the cache, and wants to hear of the next one.
    void CacheChangeTold() const { mCacheChangePosted = false; }

private:
    struct Job
    {
        int frame;
        CancelToken token;
        DecodedFrame decoded;
    };

    void Run();
    bool OpenReader();
    /// Decodes what is wanted until stopped; converts too unless @p hasConverter.
    void Decode(bool hasConverter);
    void Convert();
    void Complete(int frame, const ReadResult& result);
    template<typename Call>
    void Post(Call call) const;

    // With mMutex held:

    /// The next frame to decode, 0 if there is nothing to do.
    int PickFrame();
    int PickAhead() const;
    int PickBackwards();
    /// How many frames ahead of the playhead the cache has room for.
    int Window() const;
    bool IsKeptOrComing(int frame) const;
    /// Whether work under way leads to @p request too, so that it need not be cancelled.
    bool LeadsTo(const FrameRequest& request) const;
    void ClampRequest();
    /// Whether @p frame is on the way from the last one delivered to the one wanted.
    bool IsProgress(int frame) const;

    FrameLoader* const mLoader;
    FrameCache* const mCache;
    const int mID;
    const QString mPath;
    MediaOptions mOptions;
    const int mWorkers;
    std::unique_ptr<MediaReader> mReader;
    MediaInfo mInfo;
    bool mIsParallel = false;
    std::thread mThread;
    mutable std::atomic<bool> mCacheChangePosted{false};

    mutable std::mutex mMutex;
    std::condition_variable mWork;
    std::condition_variable mConversion;
    bool mIsOpen = false;
    bool mIsStopping = false;
    std::optional<FrameRequest> mRequest;
    int mSerial = 0;
    /// The current request is answered.
    bool mIsAnswered = false;
    /// The cache takes no more for the current request.
    bool mIsFull = false;
    int mShare = 1;
    /// Ends the work under way.
    CancelToken mToken;
    std::set<int> mComing;
    /// Decoded and not converted yet.
    std::deque<Job> mDecoded;
    /// Frames of a group that is played backwards, in the order of decoding.
    std::deque<int> mGroup;
    /// A superseded frame that is delivered all the same.
    int mGraceFrame = 0;
    /// The frame delivered last, and when anything was.
    int mLastFrame = 0;
    std::chrono::steady_clock::time_point mLastTime;
};
