// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#if defined(TORVALEN_STATIC)
#define TORVALENCOMMON_EXPORT
#elif defined(TorvalenCommon_EXPORTS)
#define TORVALENCOMMON_EXPORT Q_DECL_EXPORT
#else
#define TORVALENCOMMON_EXPORT Q_DECL_IMPORT
#endif
