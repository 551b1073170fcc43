// SPDX-License-Identifier: MIT
#include "kit/DragPayload.h"

#include "kit/UiGlobals.h"

#include <QDataStream>
#include <QMimeData>
#include <QStringList>
#include <QUrl>
#include <QtEndian>

namespace
{

constexpr int CountSize = 4;
constexpr int IDSize = 16;
constexpr int NumberOfDropTypes = 5;

} // namespace

namespace DragPayload
{

QByteArray WriteIDs(const QList<QUuid>& ids)
{
    QByteArray bytes;
    bytes.reserve(CountSize + ids.size() * IDSize);
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << static_cast<int>(ids.size());
    for (const QUuid& id : ids)
        stream << id;
    return bytes;
}

QList<QUuid> ReadIDs(const QByteArray& bytes)
{
    // The number is believed only where the bytes bear it out, so the list is never made for a forged one.
    if (bytes.size() < CountSize)
        return {};
    const auto count = qFromBigEndian<qint32>(bytes.constData());
    if (count <= 0 || bytes.size() != CountSize + qint64(count) * IDSize)
        return {};
    QDataStream stream(bytes);
    stream.skipRawData(CountSize);
    QList<QUuid> ids;
    ids.reserve(count);
    for (int index = 0; index < count; ++index)
    {
        QUuid id;
        stream >> id;
        ids << id;
    }
    return ids;
}

QByteArray WriteAllowedDropTypes(const AllowedDropTypes& types)
{
    QByteArray bytes;
    for (const bool flag :
         {types.general, types.folders, types.sources, types.sourcesForElements, types.timelines})
        bytes.append(static_cast<char>(flag));
    return bytes;
}

std::optional<AllowedDropTypes> ReadAllowedDropTypes(const QByteArray& bytes)
{
    if (bytes.size() < NumberOfDropTypes)
        return std::nullopt;
    AllowedDropTypes types;
    types.general = bytes[0] != 0;
    types.folders = bytes[1] != 0;
    types.sources = bytes[2] != 0;
    types.sourcesForElements = bytes[3] != 0;
    types.timelines = bytes[4] != 0;
    return types;
}

bool HasFiles(const QMimeData* mimeData)
{
    return mimeData && mimeData->hasFormat(QStringLiteral("text/uri-list"));
}

QList<QString> ReadFiles(const QMimeData* mimeData)
{
    QStringList paths;
    const QList<QUrl> urls = mimeData ? mimeData->urls() : QList<QUrl>();
    for (const QUrl& url : urls)
    {
        const QString path = url.toLocalFile();
        if (!path.isEmpty())
            paths << path;
    }
    paths.sort(Qt::CaseInsensitive);
    return paths;
}

bool HasProjectObjects(const QMimeData* mimeData)
{
    return mimeData && mimeData->hasFormat(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE);
}

bool HasElements(const QMimeData* mimeData)
{
    return mimeData && mimeData->hasFormat(UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE);
}

std::optional<AllowedDropTypes> ReadAllowedDropTypes(const QMimeData* mimeData)
{
    return mimeData ? ReadAllowedDropTypes(mimeData->data(UiGlobals::ALLOWED_DROP_TYPES)) : std::nullopt;
}

} // namespace DragPayload
