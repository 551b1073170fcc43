// SPDX-License-Identifier: MIT
#pragma once

#include "media/FrameCache.h"
#include "media/MediaReader.h"

#include <QObject>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

class LoaderLane;

/// Which frame of a medium is wanted, and what will be wanted after it.
struct FrameRequest
{
    /// 1-based; clamped to the medium.
    int frame = 1;
    /// 1 to read ahead forwards, -1 backwards. A step back is a request backwards.
    int direction = 1;
    /// Requests follow each other at the clock's pace; a frame that comes late is still delivered, so that
    /// the picture goes on where decoding can't keep up.
    bool isPlaying = false;
    /// The range that play goes round in if @c loops; @c last 0 stands for the last frame.
    int first = 1;
    int last = 0;
    bool loops = false;
    /// How many frames to read ahead at most; -1 for as many as the cache takes.
    int readAhead = -1;
};

/// Decodes the frames of any number of media on threads of its own, behind one cache.
///
/// It lives on the GUI thread, where every call is made and every signal arrives; no call decodes or waits
/// for decoding. The frame that is wanted comes first, then those that will be. A movie has one thread that
/// decodes and one that converts; pictures of a sequence are read by several threads at once. None of them is
/// of Qt's global pool, which scales the viewer's pictures.
class FrameLoader : public QObject
{
    Q_OBJECT

public:
    /// The cache's bound is Settings::cacheSize. @p workers is the number of threads that read a sequence; 0
    /// for as many as the machine has cores, 8 at most.
    explicit FrameLoader(QObject* parent = nullptr, int workers = 0);
    /// Ends all work and waits for the threads, which takes no longer than one frame.
    ~FrameLoader() override;

    /// Bounds the cache by @p megabytes; call it when Settings::cacheSize changes.
    void SetCacheSize(int megabytes);

    /// Opens @p path as medium @p mediaID, closing what had that number. Answers MediaOpened() or
    /// OpenFailed().
    void Open(int mediaID, const QString& path, const MediaOptions& options = MediaOptions());
    /// Forgets medium @p mediaID and its frames; nothing more is heard of it. Unknown numbers are ignored.
    void Close(int mediaID);
    /// Tells that @p media alone are shown now: they share the cache's room, the others rest and keep their
    /// frames as long as nobody needs the room. Unknown numbers are ignored.
    void ShareCacheAmong(const std::set<int>& media);
    /// What is known of medium @p mediaID; null before MediaOpened(). Valid until it is closed.
    const MediaInfo* Info(int mediaID) const;

    /// Asks for a frame. FrameReady() answers: at once, before this returns, if the frame is kept, else when
    /// it is decoded, unless another request of the medium came first. A request before MediaOpened() is kept
    /// until then. Unknown media are ignored.
    void RequestFrame(int mediaID, const FrameRequest& request);

    /// The frame if it is kept, without asking for it.
    std::optional<ReadResult> CachedFrame(int mediaID, int frame) const;
    /// Ranges of the frames that are kept: first frame to last, in order.
    std::map<int, int> CachedRanges(int mediaID) const;

Q_SIGNALS:
    /// Medium @p mediaID is open.
    void MediaOpened(int mediaID, const MediaInfo& info);
    /// Medium @p mediaID can't be opened and is closed again; @p text names the file and the reason.
    void OpenFailed(int mediaID, const QString& text);
    /// A frame that was asked for. @p result says whether it is whole, broken or missing.
    ///
    /// It is the frame asked for last, or, where requests come faster than frames, one asked for before: in
    /// play the latest that there is, in scrubbing one about every tenth of a second.
    void FrameReady(int mediaID, int frame, const ReadResult& result);
    /// A frame that was asked for is broken or missing; comes once for each frame, before its FrameReady().
    /// The player logs @p text.
    void FrameFailed(int mediaID, int frame, const QString& text);
    /// CachedRanges() changed; comes at most about ten times a second.
    void CacheChanged(int mediaID);

private:
    friend class LoaderLane;

    struct Medium
    {
        std::shared_ptr<LoaderLane> lane;
        std::optional<MediaInfo> info;
        /// Broken and missing frames that were told.
        std::set<int> failed;
        /// The request, counted, that was answered last.
        int answered = 0;
        bool cacheChangePending = false;
        /// Not among those that are shown.
        bool isResting = false;
    };

    // Reached from the lanes' threads through the event loop; @p lane tells a medium from one of the same
    // number that was closed.
    void OnOpened(const LoaderLane* lane, const MediaInfo& info);
    void OnOpenFailed(const LoaderLane* lane, const QString& text);
    void OnFrame(const LoaderLane* lane, int frame, const ReadResult& result, int serial, bool isLate);
    void OnCacheChanged(const LoaderLane* lane);
    void OnLaneEnded(const LoaderLane* lane);

    Medium* MediumOf(const LoaderLane* lane);
    void Announce(int mediaID, int frame, const ReadResult& result);
    void ShareCache();
    /// How many media share the cache's room.
    int ActiveMedia() const;

    FrameCache mCache;
    int mWorkers;
    std::map<int, Medium> mMedia;
    /// Closed, but with a thread that has not ended yet.
    std::vector<std::shared_ptr<LoaderLane>> mRetired;
};
