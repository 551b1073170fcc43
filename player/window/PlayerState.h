// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

/// What the player itself keeps from one start to the next beside the user's settings: sizes and visibility
/// of its panels, its volume. It lies in "player.ini" beside the file of the settings.
namespace PlayerState
{

/// Path of the file.
QString Path();
/// The value kept as @p key ("group/name"), or @p fallback if there is none or the file can't be read.
QVariant Value(const QString& key, const QVariant& fallback = QVariant());
/// Keeps @p value as @p key, in the file at once; what else the file holds stays. A failure is reported as a
/// warning that names the file, once.
void SetValue(const QString& key, const QVariant& value);

} // namespace PlayerState
