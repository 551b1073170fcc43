// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

/// Sources by their path, which is relative to the root of the repository.
using SourceTree = QMap<QString, QByteArray>;

/// Path of the repository's root.
QString RepositoryRoot();

/// Reads the C++ sources and forms below @p folder of the repository.
SourceTree ReadSources(const QString& folder);

/// What is included against the direction in which the folders of @p tree build on each other, a line each.
/// Below `src` a source includes its own folder, `kit` includes `host`, every other folder both, and nothing
/// else but Qt and the standard library is included; a folder is named by its whole path, so that those of
/// the dialogs are different ones.
QStringList WrongIncludes(const SourceTree& tree);
