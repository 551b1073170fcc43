// SPDX-License-Identifier: MIT
#pragma once

class QString;

/// The system's file manager.
namespace FileManager
{

/// Shows the file or directory @p path in "explorer", with a file selected, or else opens the directory by
/// the desktop's own means. An empty path does nothing.
void Show(const QString& path);

} // namespace FileManager
