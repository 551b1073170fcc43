// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#if defined(TORVALEN_STATIC)
#define TORVALENUI_EXPORT

/// Registers the icons behind ":/icons/"; returns 1. Calling it again does no harm.
int RegisterTorvalenIcons();

// A linker takes from a static library only what is asked for: each program that includes one of its headers
// asks for the icons here, and has them before main() as with the shared library.
inline const int TorvalenIconsAreRegistered = RegisterTorvalenIcons();

#elif defined(TorvalenUI_EXPORTS)
#define TORVALENUI_EXPORT Q_DECL_EXPORT
#else
#define TORVALENUI_EXPORT Q_DECL_IMPORT
#endif
