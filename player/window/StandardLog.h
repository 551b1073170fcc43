// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// Writes the log to the standard streams: errors, warnings and information to the error stream, plain output
/// to the output stream, as it stands. Lines of several threads do not mix.
class StandardLog : public QObject
{
    Q_OBJECT

public:
    StandardLog();
};
