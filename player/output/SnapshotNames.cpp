// SPDX-License-Identifier: MIT
#include "output/SnapshotNames.h"

#include "host/Bookmarks.h"
#include "output/OutputPlan.h"
#include "project/ProjectTimeline.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <set>

SnapshotNames::Parts SnapshotNames::Split(const QString& name)
{
    static const QStringList suffixes = {QStringLiteral("png"),  QStringLiteral("jpg"),
                                         QStringLiteral("jpeg"), QStringLiteral("tif"),
                                         QStringLiteral("tiff"), QStringLiteral("exr")};
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const QString suffix = name.mid(dot + 1).toLower();
    // A name that is nothing but a suffix has no stem to number.
    if (dot > 0 && suffixes.contains(suffix))
        return {name.left(dot), suffix};
    return {name, QStringLiteral("png")};
}

QString SnapshotNames::Problem(const QString& name)
{
    if (name.contains(QLatin1Char('/')) || name.contains(QChar(0)))
        return QCoreApplication::translate("SnapshotNames", "The name \"%1\" can't be that of a file.")
            .arg(name);
    return {};
}

QString SnapshotNames::Numbered(const Parts& parts, SnapshotNumbering numbering, int padding, int position,
                                int frame)
{
    const QString number = QString::number(numbering == SnapshotNumberingFrame ? frame : position)
                               .rightJustified(padding, QLatin1Char('0'));
    return parts.stem + QLatin1Char('.') + number + QLatin1Char('.') + parts.suffix;
}

QString SnapshotNames::Unused(const QString& directory, const Parts& parts)
{
    const QDir dir(directory);
    QString path = dir.filePath(parts.stem + QLatin1Char('.') + parts.suffix);
    for (int number = 2; QFileInfo::exists(path); ++number)
        path =
            dir.filePath(QStringLiteral("%1 (%2).%3").arg(parts.stem, QString::number(number), parts.suffix));
    return path;
}

std::vector<int> SnapshotNames::Frames(ProjectTimeline& timeline, SnapshotType type, int current,
                                       const PlaybackRange& range)
{
    switch (type)
    {
    case SnapshotAllFrames:
        return FramesBetween(1, timeline.FrameCount());
    case SnapshotAllFramesInRange:
        return FramesBetween(range.first, range.last);
    case SnapshotBookmarks:
    case SnapshotBookmarksInRange:
    {
        std::set<int> frames;
        for (const TimeBookmark& bookmark : timeline.GetBookmarks()->GetTimeBookmarks())
        {
            const int frame = timeline.TimeToFrame(bookmark.time);
            if (type == SnapshotBookmarks || range.Contains(frame))
                frames.insert(frame);
        }
        return std::vector<int>(frames.begin(), frames.end());
    }
    case SnapshotSingleFrame:
        break;
    }
    return {current};
}
