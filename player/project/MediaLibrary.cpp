// SPDX-License-Identifier: MIT
#include "project/MediaLibrary.h"

#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"

#include <QFileInfo>

#include <algorithm>

MediaLibrary::MediaLibrary(FrameLoader* loader, QImage::Format pictureFormat, QObject* parent)
    : QObject(parent), mLoader(loader), mPictureFormat(pictureFormat)
{
    connect(loader, SIGNAL(MediaOpened(int, const MediaInfo&)), this,
            SLOT(OnMediaOpened(int, const MediaInfo&)));
    connect(loader, SIGNAL(OpenFailed(int, const QString&)), this, SLOT(OnOpenFailed(int, const QString&)));
}

const std::vector<MediaLibrary::Entry>& MediaLibrary::Entries() const
{
    return mEntries;
}

bool MediaLibrary::IsOpening() const
{
    return !mPending.isEmpty();
}

void MediaLibrary::Open(const QString& path, int viewer)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (size_t index = 0; index < mEntries.size(); ++index)
    {
        if (mEntries[index].path == absolute)
        {
            Q_EMIT Opened(static_cast<int>(index), viewer);
            return;
        }
    }
    for (auto pending = mPending.begin(); pending != mPending.end(); ++pending)
    {
        if (pending->path == absolute)
        {
            pending->viewer = std::max(pending->viewer, viewer);
            return;
        }
    }
    const int media = mNextMedia++;
    mPending.insert(media, Pending{absolute, viewer});
    MediaOptions options;
    options.pictureFormat = mPictureFormat;
    options.sequenceRate = FrameRate::FromPerSecond(Settings::globalImageSequenceFrameRate);
    mLoader->Open(media, absolute, options);
}

void MediaLibrary::OnMediaOpened(int media, const MediaInfo& info)
{
    // The loader opens media for others too.
    if (!mPending.contains(media))
        return;
    const Pending pending = mPending.take(media);
    const auto source = std::make_shared<const MediaSource>(QUuid::createUuid(), info);
    mEntries.push_back(Entry{pending.path, media, std::make_shared<MediaTimeline>(source)});
    Q_EMIT Opened(static_cast<int>(mEntries.size()) - 1, pending.viewer);
}

void MediaLibrary::OnOpenFailed(int media, const QString& text)
{
    if (mPending.remove(media) > 0)
        Q_EMIT Failed(text);
}
