// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#if defined(TORVALEN_STATIC)
#define TORVALENUI_EXPORT
#elif defined(TorvalenUI_EXPORTS)
#define TORVALENUI_EXPORT Q_DECL_EXPORT
#else
#define TORVALENUI_EXPORT Q_DECL_IMPORT
#endif
