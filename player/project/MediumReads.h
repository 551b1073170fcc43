// SPDX-License-Identifier: MIT
#pragma once

#include "media/FrameLoader.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <map>

/// Finds out what media are, a few at a time, on the threads of a frame loader, and closes them again.
class MediumReads : public QObject
{
    Q_OBJECT

public:
    /// Called once: with what is known of the medium, or with null and what is wrong with which file.
    using Done = std::function<void(const MediaInfo* info, const QString& error)>;

    /// Without @p loader every read fails.
    MediumReads(FrameLoader* loader, QImage::Format pictureFormat, QObject* parent);

    /// Reads the medium at @p path, pictures of a sequence counted at @p sequenceRate a second. Returns a
    /// number for Cancel(). @p done is called later, never from within. With @p keepOpen the medium stays
    /// open in the loader under that number, and is the caller's from then on.
    int Read(const QString& path, double sequenceRate, Done done, bool keepOpen = false);
    /// Ends a read; it is not called done.
    void Cancel(int number);
    void CancelAll();
    /// Closes a medium that was kept open.
    void Close(int number);
    bool IsReading() const;

private Q_SLOTS:
    void OnMediaOpened(int media, const MediaInfo& info);
    void OnOpenFailed(int media, const QString& text);
    void StartNext();

private:
    struct Pending
    {
        QString path;
        double sequenceRate = 0.0;
        Done done;
        bool keepOpen = false;
        bool started = false;
    };

    void Finish(int number, const MediaInfo* info, const QString& error);
    void StartLater();

    QPointer<FrameLoader> mLoader;
    QImage::Format mPictureFormat;
    /// In the order of asking.
    std::map<int, Pending> mPending;
    int mNextNumber;
};
