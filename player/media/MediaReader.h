// SPDX-License-Identifier: MIT
#pragma once

#include "media/CancelToken.h"
#include "media/MediaInfo.h"

#include <QImage>
#include <QMetaType>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

struct AVFrame;

/// How the reading of a frame ended.
enum class ReadStatus
{
    /// The picture is whole.
    Ok,
    /// The caller cancelled; nothing was read.
    Cancelled,
    /// The frame can't be decoded, or not wholly; the picture is what could be decoded, or null.
    Broken,
    /// A sequence has no file for the frame; the picture is null.
    Missing
};

/// A frame as it was read.
struct ReadResult
{
    ReadStatus status = ReadStatus::Cancelled;
    QImage image;
    /// Names the file, the frame and the reason when the status is Broken or Missing; empty otherwise.
    QString text;
};

Q_DECLARE_METATYPE(ReadResult)

/// A frame between decoding and conversion.
///
/// @c convert makes the picture; it may be called once, on any thread, also after the reader has gone on or
/// is gone. It is empty if there is nothing to convert.
struct DecodedFrame
{
    ReadStatus status = ReadStatus::Cancelled;
    QString text;
    std::function<QImage()> convert;
    /// The decoder's own picture, where it is shown as it is stored: upright, with square pixels. Null
    /// otherwise, and of pictures of other readers.
    std::shared_ptr<const AVFrame> stored = nullptr;

    /// Converts on the calling thread.
    ReadResult Finish() const { return {status, convert ? convert() : QImage(), text}; }
};

/// How a medium is opened.
struct MediaOptions
{
    /// Format of the pictures: QImage::Format_RGB32 or QImage::Format_RGB888.
    QImage::Format pictureFormat = QImage::Format_RGB32;
    /// Threads of a movie's decoder (1 to 16); 0 for as many as the machine has cores, 8 at most.
    int decoderThreads = 0;
    /// Frames per second of sequences and single pictures.
    FrameRate sequenceRate;
    /// Ends opening early.
    CancelToken cancel;
};

/// Reads the frames of a movie, of a sequence or of a single picture.
///
/// Frame N is exactly frame N of the file in the order of presentation, 1 to Info().frameCount. A reader
/// belongs to one thread at a time, but see CanReadInParallel().
class MediaReader
{
public:
    virtual ~MediaReader() = default;

    virtual const MediaInfo& Info() const = 0;

    /// Decodes @p frame (1-based). Reading frames in order is what costs least. A frame out of range is
    /// Missing.
    virtual DecodedFrame DecodeFrame(int frame, const CancelToken& cancel) = 0;

    /// Decodes and converts @p frame.
    ReadResult ReadFrame(int frame, const CancelToken& cancel = CancelToken())
    {
        return DecodeFrame(frame, cancel).Finish();
    }

    /// The first frame of the group that has to be decoded to get at @p frame; @p frame itself where every
    /// frame stands alone.
    virtual int GroupStart(int frame) const { return frame; }

    /// Whether DecodeFrame() may be called by several threads at once.
    virtual bool CanReadInParallel() const { return false; }
};

/// Opens the movie, the picture or the sequence that @p path names; any file of a sequence names it whole.
///
/// Returns null on failure; @p error then says what is wrong with which file. Reads the whole of a movie's
/// packets once, so call it on a worker thread.
std::unique_ptr<MediaReader> OpenMedia(const QString& path, QString* error,
                                       const MediaOptions& options = MediaOptions());

/// Whether the name of @p path is that of a picture file.
bool IsPictureFileName(const QString& path);

/// Name patterns of the files that OpenMedia() takes, e.g. "*.mov", for a file dialog: movies, then pictures.
QStringList MediaNamePatterns();
