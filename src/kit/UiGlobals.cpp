// SPDX-License-Identifier: MIT
#include "kit/UiGlobals.h"

const QString UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE = QStringLiteral("merovane/proj-obj-uuid");
const QString UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE = QStringLiteral("merovane/element-uuid");
const QString UiGlobals::ALLOWED_DROP_TYPES = QStringLiteral("merovane/allowed-drop-types");
