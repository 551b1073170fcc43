// SPDX-License-Identifier: MIT
#include "output/SnapshotFile.h"

#include "output/FinishedFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>

#include <OpenImageIO/imageio.h>

#include <array>
#include <cmath>
#include <vector>

namespace
{

constexpr int JpegQuality = 95;
constexpr int ChannelCount = 3;

QString SnapshotText(const char* text)
{
    return QCoreApplication::translate("SnapshotFile", text);
}

/// Linear light of the 256 shown levels.
const std::array<float, 256>& LinearLight()
{
    static const std::array<float, 256> table = []
    {
        std::array<float, 256> light{};
        for (size_t level = 0; level < light.size(); ++level)
        {
            const double shown = static_cast<double>(level) / 255.0;
            light[level] =
                static_cast<float>(shown <= 0.04045 ? shown / 12.92 : std::pow((shown + 0.055) / 1.055, 2.4));
        }
        return light;
    }();
    return table;
}

/// Calls @p add with the red, the green and the blue of each pixel of @p image in turn.
template<typename Add>
void ForEachChannel(const QImage& image, Add add)
{
    for (int y = 0; y < image.height(); ++y)
    {
        const auto* const row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
        {
            add(qRed(row[x]));
            add(qGreen(row[x]));
            add(qBlue(row[x]));
        }
    }
}

QString WriteByQt(const QImage& image, const QString& file, const char* format)
{
    QImageWriter writer(file, format);
    if (qstrcmp(format, "jpeg") == 0)
        writer.setQuality(JpegQuality);
    return writer.write(image) ? QString() : writer.errorString();
}

QString WriteByImageLibrary(const QImage& image, const QString& file, bool isLinear)
{
    const std::string name = file.toStdString();
    const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(name);
    if (!output)
        return QString::fromStdString(OIIO::geterror());
    OIIO::ImageSpec spec(image.width(), image.height(), ChannelCount,
                         isLinear ? OIIO::TypeDesc::HALF : OIIO::TypeDesc::UINT8);
    spec.attribute("compression", "zip");
    spec.attribute("oiio:ColorSpace", isLinear ? "Linear" : "sRGB");
    if (!output->open(name, spec))
        return QString::fromStdString(output->geterror());
    const size_t count = size_t(image.width()) * size_t(image.height()) * ChannelCount;
    bool isWritten = false;
    if (isLinear)
    {
        std::vector<float> values;
        values.reserve(count);
        ForEachChannel(image,
                       [&](int level) { values.push_back(LinearLight()[static_cast<size_t>(level)]); });
        isWritten = output->write_image(OIIO::TypeDesc::FLOAT, values.data());
    }
    else
    {
        std::vector<uint8_t> values;
        values.reserve(count);
        ForEachChannel(image, [&](int level) { values.push_back(static_cast<uint8_t>(level)); });
        isWritten = output->write_image(OIIO::TypeDesc::UINT8, values.data());
    }
    // Closing writes too.
    isWritten = output->close() && isWritten;
    return isWritten ? QString() : QString::fromStdString(output->geterror());
}

} // namespace

QString SnapshotFile::Write(const QImage& image, const QString& path, bool replace)
{
    const QFileInfo info(path);
    if (!info.dir().exists())
        return SnapshotText("%1: the directory does not exist").arg(path);
    if (!replace && info.exists())
        return SnapshotText("%1 exists already").arg(path);
    if (info.isDir())
        return SnapshotText("%1 is a directory").arg(path);

    const QString suffix = info.suffix().toLower();
    const QString file = FinishedFile::UnfinishedName(info.path(), suffix);
    QString reason;
    if (suffix == QLatin1String("exr") || suffix == QLatin1String("tif") || suffix == QLatin1String("tiff"))
        reason = WriteByImageLibrary(image, file, suffix == QLatin1String("exr"));
    else
        reason = WriteByQt(image, file, suffix.startsWith(QLatin1String("jp")) ? "jpeg" : "png");
    if (reason.isEmpty() && replace)
        reason = FinishedFile::Move(file, path);
    else if (reason.isEmpty())
    {
        // Fails where a file has come in between.
        QFile written(file);
        if (!written.rename(path))
            reason = written.errorString();
    }
    if (reason.isEmpty())
        return {};
    QFile::remove(file);
    return SnapshotText("%1 could not be written: %2").arg(path, reason.simplified());
}
