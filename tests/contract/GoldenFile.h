// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Compares @p text with the golden file @p name. Returns an empty text if they agree, otherwise the first
/// line that differs and how to renew the file.
///
/// With TORVALEN_UPDATE_GOLDEN set in the environment the file is written instead, and they agree.
QString GoldenDifference(const QString& name, const QString& text);

/// Folder of the golden files.
QString GoldenFolder();

/// Whether this run writes the golden files.
bool IsUpdatingGoldenFiles();
