// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

class QMimeData;

/// The one reader and writer of what the library's drags carry; UiGlobals names the formats. Whatever another
/// program puts under these names, reading it is safe. Null mime data has nothing.
namespace DragPayload
{

/// What a drag of project objects holds; each flag tells something of all of its objects.
struct AllowedDropTypes
{
    /// Each is a folder or a timeline, and none is protected, special or dead.
    bool general = false;
    /// Each is a folder.
    bool folders = false;
    /// Each is a source timeline.
    bool sources = false;
    /// The same as `sources` in every drag; the element list has a byte of its own.
    bool sourcesForElements = false;
    /// Each is a timeline that stands for no source.
    bool timelines = false;
};

/// The bytes of @p ids: 4 for their number, then 16 each.
QByteArray WriteIDs(const QList<QUuid>& ids);
/// The ids in @p bytes. Bytes that are not exactly a number and as many ids read as an empty list, and
/// nothing is allocated for the number that they claim.
QList<QUuid> ReadIDs(const QByteArray& bytes);

/// The five bytes of @p types, in the order of its fields.
QByteArray WriteAllowedDropTypes(const AllowedDropTypes& types);
/// The flags in the first five of @p bytes, where each value but 0 is true; none if there are fewer.
std::optional<AllowedDropTypes> ReadAllowedDropTypes(const QByteArray& bytes);

/// Whether @p mimeData brings files from outside.
bool HasFiles(const QMimeData* mimeData);
/// The paths of the local files that @p mimeData brings, sorted without regard to case.
QList<QString> ReadFiles(const QMimeData* mimeData);

/// Whether @p mimeData has ids of project objects, or of timeline elements.
bool HasProjectObjects(const QMimeData* mimeData);
bool HasElements(const QMimeData* mimeData);
/// The flags that @p mimeData has; none where there are fewer than five bytes.
std::optional<AllowedDropTypes> ReadAllowedDropTypes(const QMimeData* mimeData);

} // namespace DragPayload
