// SPDX-License-Identifier: MIT
#include "output/FinishedFile.h"

#include "media/MediaReader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace
{

QString FinishedFileText(const char* text)
{
    return QCoreApplication::translate("FinishedFile", text);
}

bool Rename(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

QString FinishedFile::Check(const QString& path, int frames, const FrameRate& rate, const CancelToken& cancel)
{
    MediaOptions options;
    options.cancel = cancel;
    QString error;
    const std::unique_ptr<MediaReader> reader = OpenMedia(path, &error, options);
    if (!reader)
        return FinishedFileText("The movie that was written can't be read: %1").arg(error);
    if (reader->Info().frameCount != frames)
        return FinishedFileText("The movie that was written has %1 frames instead of %2.")
            .arg(reader->Info().frameCount)
            .arg(frames);
    // A single frame has no rate.
    if (frames > 1 && reader->Info().frameRate != rate)
        return FinishedFileText("The movie that was written has %1 frames per second instead of %2.")
            .arg(reader->Info().frameRate.PerSecond(), 0, 'g', 6)
            .arg(rate.PerSecond(), 0, 'g', 6);
    return {};
}

QString FinishedFile::Move(const QString& file, const QString& path)
{
    if (Rename(file, path))
        return {};
    if (errno != EXDEV)
        return QString::fromLocal8Bit(std::strerror(errno));
    const QString beside = UnfinishedName(QFileInfo(path).path(), QFileInfo(path).suffix());
    QFile source(file);
    if (!source.copy(beside))
    {
        const QString reason = source.errorString();
        QFile::remove(beside);
        return reason;
    }
    if (!Rename(beside, path))
    {
        const QString reason = QString::fromLocal8Bit(std::strerror(errno));
        QFile::remove(beside);
        return reason;
    }
    source.remove();
    return {};
}

QString FinishedFile::UnfinishedName(const QString& directory, const QString& suffix)
{
    return QDir(directory).filePath(
        QStringLiteral(".torvalen-%1.%2").arg(QUuid::createUuid().toString(QUuid::Id128).left(16), suffix));
}
