// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <atomic>
#include <vector>

/// Paths of media: which name the same, where relative ones begin, what a folder holds.
namespace MediaPaths
{

/// What tells the medium at @p path from others: the path, made absolute and plain, and for a numbered
/// picture the same one whatever its number.
QString Key(const QString& path);

/// Whether there is a file, or any file of the sequence, at @p path.
bool Exists(const QString& path);

/// The source root @p root with Settings::PROJECT_DIRECTORY_VAR, which an empty one stands for, filled in as
/// @p projectFolder. Empty if that is needed and empty.
QString SourceRoot(const QString& root, const QString& projectFolder);

/// @p path relative to @p root, with "/" between; empty if it isn't below it, or @p root is empty.
QString Relative(const QString& path, const QString& root);

/// A medium that a folder holds.
struct Found
{
    QString path;
    /// Names of the folders that it lies in, from the one that was looked through on.
    QStringList folders;
};

/// The media in @p folder and all folders below it, in the order of their names, one for each sequence.
/// Hidden ones and links to folders are left out. Ends early, with what there is, once @p cancelled.
std::vector<Found> InFolder(const QString& folder, const std::atomic<bool>& cancelled);

} // namespace MediaPaths
