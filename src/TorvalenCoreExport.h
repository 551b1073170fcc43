// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#if defined(TORVALEN_STATIC)
#define TORVALENCORE_EXPORT
#elif defined(TorvalenCore_EXPORTS)
#define TORVALENCORE_EXPORT Q_DECL_EXPORT
#else
#define TORVALENCORE_EXPORT Q_DECL_IMPORT
#endif
