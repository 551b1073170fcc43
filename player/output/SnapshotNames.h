// SPDX-License-Identifier: MIT
#pragma once

#include "host/SnapshotNumbering.h"
#include "host/SnapshotType.h"
#include "playback/PlaybackRange.h"

#include <QString>

#include <vector>

class ProjectTimeline;

/// What stills are called, and which frames they are of.
namespace SnapshotNames
{

/// A name taken apart.
struct Parts
{
    QString stem;
    /// In lower case; one of those that stills are written by.
    QString suffix;
};

/// Takes @p name apart. One that doesn't end in the suffix of a format (png, jpg, jpeg, tif, tiff, exr) is
/// all stem and gets "png".
Parts Split(const QString& name);

/// Why no file can be called @p name; empty if one can.
QString Problem(const QString& name);

/// The name of one of a series: with the number of its place in the series (@p position, 1-based) or of its
/// @p frame, @p padding digits at least.
QString Numbered(const Parts& parts, SnapshotNumbering numbering, int padding, int position, int frame);

/// The path of @p parts in @p directory, with a number behind the stem where the bare name is taken.
QString Unused(const QString& directory, const Parts& parts);

/// The frames that @p type asks for, in order and each once: @p current, or those of @p timeline, of @p
/// range, the bookmarked ones.
std::vector<int> Frames(ProjectTimeline& timeline, SnapshotType type, int current,
                        const PlaybackRange& range);

} // namespace SnapshotNames
