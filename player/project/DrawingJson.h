// SPDX-License-Identifier: MIT
#pragma once

#include "host/DrawData.h"
#include "project/ExtraParts.h"
#include "project/JsonPart.h"

#include <QJsonArray>

/// Drawings as JSON; see docs/project-file.md.
namespace DrawingJson
{

QJsonObject Write(const DrawData& drawing);
/// @p extras gives what is written besides, by the drawing's id.
QJsonArray WriteList(const QList<DrawData>& drawings, const ExtraParts& extras);

/// Throws a JsonError.
DrawData Read(const JsonPart& part);
/// Puts members that this version doesn't know into @p extras.
QList<DrawData> ReadList(const JsonPart& part, ExtraParts& extras);

} // namespace DrawingJson
