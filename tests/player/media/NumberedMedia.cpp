// SPDX-License-Identifier: MIT
#include "media/NumberedMedia.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <functional>

namespace
{

constexpr int Columns = 8;
// Three of bytes and one that moves.
constexpr int Rows = 4;
// Raised when what a file holds changes, so that older ones are not taken.
constexpr char Version[] = "1";

int CheckByte(int number)
{
    return ((number & 255) * 7 + (number >> 8) * 13 + 85) & 255;
}

QString MakeOnce(const QString& name, const QStringList& arguments,
                 const std::function<void(QProcess&)>& feed = {})
{
    QDir folder(QStringLiteral(TORVALEN_TEST_MEDIA_DIR));
    folder.mkpath(QStringLiteral("."));
    const QByteArray hash =
        QCryptographicHash::hash((arguments.join(QLatin1Char('\n')) + QLatin1String(Version)).toUtf8(),
                                 QCryptographicHash::Md5)
            .toHex()
            .left(8);
    const QString path = folder.filePath(QString::fromLatin1(hash) + QLatin1Char('-') + name);
    if (QFile::exists(path))
        return path;
    // Written beside and renamed, since another test program may make the same file.
    const QString unfinished =
        folder.filePath(QStringLiteral("%1-%2").arg(QCoreApplication::applicationPid()).arg(name));
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QStringLiteral("ffmpeg"),
                  QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")} +
                      arguments + QStringList{unfinished});
    if (!program.waitForStarted())
        return {};
    if (feed)
        feed(program);
    program.closeWriteChannel();
    if (!program.waitForFinished(120000) || program.exitCode() != 0)
        return {};
    if (!QFile::rename(unfinished, path))
        QFile::remove(unfinished);
    return QFile::exists(path) ? path : QString();
}

} // namespace

QImage NumberedMedia::Picture(int number, const QSize& size)
{
    QImage image(size, QImage::Format_Grayscale8);
    const int bytes[] = {number & 255, number >> 8 & 255, CheckByte(number)};
    for (int y = 0; y < size.height(); ++y)
    {
        uchar* const row = image.scanLine(y);
        const int band = y * Rows / size.height();
        for (int x = 0; x < size.width(); ++x)
        {
            const int column = x * Columns / size.width();
            if (band < 3)
                row[x] = (bytes[band] >> column & 1) != 0 ? 235 : 16;
            else
                row[x] = uchar(40 + (x * 3 + y * 5 + number * 4) % 160);
        }
    }
    return image;
}

int NumberedMedia::NumberIn(const QImage& image)
{
    if (image.isNull())
        return -1;
    int bytes[3] = {};
    for (int band = 0; band < 3; ++band)
        for (int column = 0; column < Columns; ++column)
        {
            const int x = (2 * column + 1) * image.width() / (2 * Columns);
            const int y = (2 * band + 1) * image.height() / (2 * Rows);
            if (qGray(image.pixel(x, y)) > 127)
                bytes[band] |= 1 << column;
        }
    const int number = bytes[0] | bytes[1] << 8;
    return bytes[2] == CheckByte(number) ? number : -1;
}

QString NumberedMedia::Movie(const QString& name, int frames, const QString& rate, const QStringList& encoder,
                             const QSize& size)
{
    const QStringList arguments =
        QStringList{
            QStringLiteral("-f"),         QStringLiteral("rawvideo"),
            QStringLiteral("-pix_fmt"),   QStringLiteral("gray"),
            QStringLiteral("-s"),         QStringLiteral("%1x%2").arg(size.width()).arg(size.height()),
            QStringLiteral("-framerate"), rate,
            QStringLiteral("-i"),         QStringLiteral("-"),
            QStringLiteral("-frames:v"),  QString::number(frames)} +
        encoder;
    return MakeOnce(name, arguments,
                    [&](QProcess& program)
                    {
                        for (int number = 1; number <= frames; ++number)
                        {
                            const QImage picture = Picture(number, size);
                            for (int y = 0; y < size.height(); ++y)
                                program.write(reinterpret_cast<const char*>(picture.constScanLine(y)),
                                              size.width());
                            while (program.bytesToWrite() > 4000000 && program.waitForBytesWritten())
                            {
                            }
                        }
                    });
}

QString NumberedMedia::Made(const QString& name, const QStringList& arguments)
{
    return MakeOnce(name, arguments);
}
