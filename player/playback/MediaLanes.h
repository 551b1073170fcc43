// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

class FrameLoader;
class MediaSource;

/// The loader's media that playback uses: opened when they are first wanted, closed when long unused.
///
/// The loader answers one request of a medium at a time. Two places that want different frames of one source
/// at the same time, two viewers or two stretches that follow each other, therefore use two copies of it.
class MediaLanes
{
public:
    /// How many unused media stay open.
    static constexpr size_t IdleLimit = 8;

    explicit MediaLanes(FrameLoader* loader);

    /// The format in which pictures are wanted: QImage::Format_RGB32 or QImage::Format_RGB888.
    void SetPictureFormat(QImage::Format format);

    /// Tells that the loader has @p source open as medium @p media, which is its first copy from now on.
    /// Ignored if it has one, or if the medium is closed again.
    void Adopt(const std::shared_ptr<const MediaSource>& source, int media);
    /// The same for a medium that is closed where it isn't adopted; @p source may be null.
    void TakeOver(const std::shared_ptr<const MediaSource>& source, int media);
    /// The loader's number for copy @p copy of @p source, which is opened if it isn't.
    int Use(const std::shared_ptr<const MediaSource>& source, int copy);
    /// The same without opening; -1 if it is not open.
    int Find(const std::shared_ptr<const MediaSource>& source, int copy) const;
    /// Everything that is open: the loader's numbers by source and copy.
    std::map<std::pair<const MediaSource*, int>, int> Open() const;
    /// Tells that medium @p media can't be opened. Returns whether it is one of these; it stays known so that
    /// nobody tries again.
    bool SetFailed(int media);
    bool HasFailed(int media) const;
    /// Whether a copy of @p source couldn't be opened.
    bool HasFailed(const MediaSource& source) const;
    /// Closes every copy of sources with the identity of @p source, since its file is read anew.
    void Forget(const MediaSource& source);
    /// Tells which media are shown now; of the others the @c IdleLimit used last stay open.
    void KeepInUse(const std::set<int>& media);

private:
    struct Lane
    {
        std::weak_ptr<const MediaSource> source;
        int copy = 0;
        int media = -1;
        bool hasFailed = false;
    };

    void Close(const Lane& lane);

    FrameLoader* mLoader;
    QImage::Format mPictureFormat = QImage::Format_RGB32;
    /// The one used last stands last.
    std::vector<Lane> mLanes;
    int mNextMedia;
};
