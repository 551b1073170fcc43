// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaInfo.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QString>

#include <memory>
#include <vector>

class FrameLoader;
class MediaTimeline;

/// The media that the user has opened, in order, each with its timeline.
class MediaLibrary : public QObject
{
    Q_OBJECT

public:
    struct Entry
    {
        QString path;
        /// The loader's number for the medium.
        int media = -1;
        std::shared_ptr<MediaTimeline> timeline;
    };

    /// Pictures arrive as @p pictureFormat: QImage::Format_RGB32 or QImage::Format_RGB888.
    MediaLibrary(FrameLoader* loader, QImage::Format pictureFormat, QObject* parent);

    const std::vector<Entry>& Entries() const;

    /// Opens the medium at @p path on a worker thread. One that is open already is not opened again. Answers
    /// with Opened() or Failed(), and @p viewer comes back with it.
    void Open(const QString& path, int viewer);
    /// Whether any medium is still being opened.
    bool IsOpening() const;

Q_SIGNALS:
    /// Entry @p index is open and was asked for viewer @p viewer (-1 for none).
    void Opened(int index, int viewer);
    /// A medium can't be opened; @p text says which and why.
    void Failed(const QString& text);

private Q_SLOTS:
    void OnMediaOpened(int media, const MediaInfo& info);
    void OnOpenFailed(int media, const QString& text);

private:
    struct Pending
    {
        QString path;
        int viewer = -1;
    };

    FrameLoader* mLoader;
    std::vector<Entry> mEntries;
    QHash<int, Pending> mPending;
    QImage::Format mPictureFormat;
    int mNextMedia = 1;
};
