// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What the files that keep the user's choices have in common.
namespace UserFile
{

/// Path of @p fileName in the user's configuration directory.
QString DefaultPath(const QString& fileName);

/// Moves the file at @p path to a backup beside it, whose name is free, and logs an error that tells both
/// paths and the @p reason. A file that can't be moved is copied; one that can't be copied either stays and
/// the error says so. Returns the backup's path, empty if there is none.
QString SetAside(const QString& path, const QString& reason);

} // namespace UserFile
