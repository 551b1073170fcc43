// SPDX-License-Identifier: MIT
#pragma once

#include "project/JsonPart.h"
#include "project/ProjectContent.h"
#include "project/TimelineState.h"

#include <QJsonArray>

class MediaSource;

/// The objects of a project as JSON, in the file and in the journal; see docs/project-file.md. What reads
/// throws a JsonError that names the place.
namespace ProjectCodec
{

/// An object alone: a folder names its children by their ids. Elements stand in their timeline.
/// @p sourceRoot is what relative paths are written for; empty for none. @p removed marks a source timeline
/// that only elements hold.
QJsonObject WriteObject(ProjectObject& object, const ExtraParts& extras, const QString& sourceRoot,
                        bool removed = false);
/// What of @p state differs from @p before, all that isn't at its default if @p before is null.
QJsonObject WriteState(const TimelineState& state, const TimelineState* before, const ExtraParts& extras);
/// The marks and range bookmarks of @p state, also where there are none.
QJsonObject WriteBookmarks(const TimelineState& state, const ExtraParts& extras);
QJsonObject WriteMedium(const MediaSource& source, const ExtraParts& extras, const QString& sourceRoot);
QJsonObject WriteSettings(const ProjectSettings& settings);

/// Makes the object of @p part, without children and elements. Its extras are put into @p extras.
std::shared_ptr<ProjectObject> ReadObject(const JsonPart& part, ExtraParts& extras,
                                          const QString& sourceRoot);
/// Finds the source timeline that an element plays; null if there is none with that id.
using SourceFinder = std::function<std::shared_ptr<MediaTimeline>(const QUuid& id)>;
/// Changes in @p state what @p part tells. Elements that are in the state already stay the same objects.
void ReadState(const JsonPart& part, TimelineState& state, ExtraParts& extras,
               const SourceFinder& findSource);
/// Reads a source; @p sourceRoot is where relative paths begin. Looks whether the medium is there.
std::shared_ptr<const MediaSource> ReadMedium(const JsonPart& part, ExtraParts& extras,
                                              const QString& sourceRoot);
ProjectSettings ReadSettings(const JsonPart& part);

} // namespace ProjectCodec
