// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QString>

/// The names of the formats that travel in the library's drags. Files from outside come as "text/uri-list".
///
/// Both formats of ids hold what a QDataStream of the default version writes: the number of ids (int), then
/// the ids (QUuid).
class TORVALENUI_EXPORT UiGlobals
{
public:
    UiGlobals() = delete;

    /// Ids of project objects. The project tree writes it; the viewer and the element list read it.
    static const QString PROJECT_OBJECT_UUID_MIME_TYPE;
    /// Ids of timeline elements. The element list writes and reads it.
    static const QString TIMELINE_ELEMENT_UUID_MIME_TYPE;
    /// Five bytes beside the ids of project objects, each 0 or 1, that tell what the drag holds only: folders
    /// and timelines that may move; folders; source timelines; the same again, for the element list; other
    /// timelines.
    static const QString ALLOWED_DROP_TYPES;
};
