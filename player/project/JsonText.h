// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonObject>

/// @p object as JSON text with a line for each member, but lists of plain values, such as points, on one.
QByteArray JsonText(const QJsonObject& object);
