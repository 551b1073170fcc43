// SPDX-License-Identifier: MIT
#include "media/SequenceReader.h"

#include "kit/VectorState.h"
#include "media/ImageFile.h"

#include <utility>

namespace
{

// How many files after a broken one are asked for the size of the pictures.
constexpr int MaximumHeadersTried = 16;

} // namespace

SequenceReader::SequenceReader(SequenceFiles files, const MediaOptions& options)
    : mFiles(std::move(files)), mOptions(options)
{
}

std::unique_ptr<SequenceReader> SequenceReader::Open(const QString& path, const MediaOptions& options,
                                                     QString* error)
{
    std::unique_ptr<SequenceReader> reader(new SequenceReader(SequenceFiles::Of(path), options));
    const SequenceFiles& files = reader->mFiles;
    ImageFileInfo header;
    QString reason;
    bool isReadable = ImageFile::ReadInfo(path, &header, &reason);
    int tried = 0;
    for (int frame = 1; !isReadable && frame <= files.FrameCount() && tried < MaximumHeadersTried; ++frame)
    {
        bool exists = false;
        const QString other = files.PathOf(frame, &exists);
        QString ignored;
        if (exists && frame != files.NamedFrame() && ++tried > 0)
            isReadable = ImageFile::ReadInfo(other, &header, &ignored);
    }
    if (!isReadable)
    {
        if (error != nullptr)
            *error = QStringLiteral("%1 can't be opened: %2").arg(path, reason);
        return nullptr;
    }
    MediaInfo& info = reader->mInfo;
    info.path = path;
    info.width = header.size.width();
    info.height = header.size.height();
    info.frameCount = files.FrameCount();
    info.frameRate = options.sequenceRate;
    info.duration = info.frameRate.FrameToTime(int64_t(info.frameCount) + 1);
    info.codecName = header.formatName;
    info.containerName = files.IsSequence() ? QStringLiteral("sequence") : QStringLiteral("picture");
    info.pixelFormat = header.pixelType;
    info.isSequence = files.IsSequence();
    info.firstSequenceNumber = files.IsSequence() ? files.FirstNumber() : 0;
    info.missingFrames = files.MissingFrames();
    return reader;
}

DecodedFrame SequenceReader::DecodeFrame(int frame, const CancelToken& cancel)
{
    if (cancel.IsCancelled())
        return {};
    if (frame < 1 || frame > mInfo.frameCount)
        return {ReadStatus::Missing,
                QStringLiteral("%1: frame %2 can't be shown: the sequence has no such frame")
                    .arg(mInfo.path)
                    .arg(frame),
                {}};
    bool exists = false;
    const QString path = mFiles.PathOf(frame, &exists);
    if (!exists)
        return {ReadStatus::Missing,
                QStringLiteral("%1: frame %2 can't be shown: there is no such file").arg(path).arg(frame),
                {}};
    // Unpacking is code of narrow instructions.
    VectorState::ClearUpperHalves();
    QString reason;
    const QImage image = ImageFile::Read(path, mOptions.pictureFormat, cancel, &reason);
    if (cancel.IsCancelled())
        return {};
    if (reason.isEmpty() && image.isNull())
        reason = QStringLiteral("memory is short");
    DecodedFrame answer;
    answer.status = reason.isEmpty() ? ReadStatus::Ok : ReadStatus::Broken;
    if (!reason.isEmpty())
        answer.text =
            QStringLiteral("%1: frame %2 can't be shown whole: %3").arg(path).arg(frame).arg(reason);
    if (!image.isNull())
        answer.convert = [image] { return image; };
    return answer;
}
