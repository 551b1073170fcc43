// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// Paths of the project's libraries in the build; empty where they are static.
QStringList SharedLibraries();

/// The mangled names that the shared library at @p path exports, sorted. Empty if they can't be read.
QStringList ExportedNames(const QString& path);

/// @p mangled as written in C++; itself if it is no C++ name.
QString Demangled(const QString& mangled);
