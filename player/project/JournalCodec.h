// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectChange.h"

#include <QJsonObject>
#include <QString>

/// Changes of a project as records of its journal.
namespace JournalCodec
{

/// @p change as a record. Drawings of one frame have WriteDrawings().
QJsonObject WriteChange(const ProjectChange& change, const ProjectContent& content,
                        const QString& sourceRoot);
/// That the drawings of @p frame are @p after now, where they were @p before: how many of these stay, the
/// points by which the next one has grown, and those that are new.
QJsonObject WriteDrawings(const QUuid& timeline, int frame, const QList<DrawData>& before,
                          const QList<DrawData>& after);

/// Makes the change of @p record in @p content. @p gone keeps what records have removed and others may bring
/// back. Throws a JsonError if the record makes no sense.
void Replay(const QJsonObject& record, ProjectContent& content,
            QHash<QUuid, std::shared_ptr<ProjectObject>>& gone, const QString& sourceRoot);

} // namespace JournalCodec
