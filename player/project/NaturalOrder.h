// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Whether @p a stands before @p b where names are sorted as people do: case aside, and runs of digits by
/// their value.
bool IsBeforeNaturally(const QString& a, const QString& b);
