// SPDX-License-Identifier: MIT
#include "media/MediaReader.h"

#include "media/MovieReader.h"
#include "media/SequenceReader.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

namespace
{

const QStringList& PictureExtensions()
{
    static const QStringList extensions =
        QStringLiteral("png jpg jpeg jpe tif tiff exr dpx cin bmp tga targa tpic hdr "
                       "rgbe pic psd sgi rgb rgba bw ppm pgm pnm pbm pfm jp2 j2k "
                       "j2c webp iff rla sxr zfile ico heic heif avif")
            .split(QLatin1Char(' '));
    return extensions;
}

const QStringList& MovieExtensions()
{
    static const QStringList extensions =
        QStringLiteral("mov mp4 m4v mkv webm avi mxf mpg mpeg m2v ts mts m2ts wmv "
                       "asf flv f4v ogv ogg nut gif 3gp 3g2 dv y4m ivf h264 264 "
                       "hevc 265 mjpg mjpeg")
            .split(QLatin1Char(' '));
    return extensions;
}

bool HasExtension(const QString& path, const QStringList& extensions)
{
    return extensions.contains(QFileInfo(path).suffix().toLower());
}

/// What keeps @p path from being read at all; empty if nothing does.
QString Obstacle(const QString& path)
{
    const QFileInfo file(path);
    if (path.isEmpty())
        return QStringLiteral("it has no name");
    if (file.isDir())
        return QStringLiteral("it is a folder");
    if (!file.exists())
        return QStringLiteral("there is no such file");
    if (!file.isFile())
        return QStringLiteral("it is not a plain file");
    if (file.size() == 0)
        return QStringLiteral("it is empty");
    QFile opened(path);
    return opened.open(QIODevice::ReadOnly) ? QString() : opened.errorString();
}

} // namespace

bool IsPictureFileName(const QString& path)
{
    return HasExtension(path, PictureExtensions());
}

QStringList MediaNamePatterns()
{
    QStringList patterns;
    for (const QString& extension : MovieExtensions() + PictureExtensions())
        patterns << QStringLiteral("*.") + extension;
    return patterns;
}

std::unique_ptr<MediaReader> OpenMedia(const QString& path, QString* error, const MediaOptions& options)
{
    const bool isPicture = IsPictureFileName(path);
    const QString obstacle = Obstacle(path);
    // An empty frame of a sequence is no obstacle to the others.
    const bool isEmptyFrame = isPicture && QFileInfo(path).isFile() && QFileInfo(path).size() == 0 &&
                              SequenceFiles::Of(path).IsSequence();
    if (!obstacle.isEmpty() && !isEmptyFrame)
    {
        if (error != nullptr)
            *error = QStringLiteral("%1 can't be opened: %2").arg(path, obstacle);
        return nullptr;
    }
    if (isPicture)
        return SequenceReader::Open(path, options, error);
    return MovieReader::Open(path, options, error);
}
