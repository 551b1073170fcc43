// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QString>

/// Reads a file piece by piece through one buffer, which stays in the processor's cache and is used again for
/// the thread's next file. A thread has one at a time.
class FileWindow
{
public:
    explicit FileWindow(const QString& path) : mFile(path) {}

    /// Returns false if the file can't be opened.
    bool Open();
    qint64 Size() const { return mSize; }
    /// The @p bytes bytes from @p offset on, which stand until the next call; null if the file ends before or
    /// can't be read.
    const uchar* At(qint64 offset, qint64 bytes);

private:
    QFile mFile;
    qint64 mSize = 0;
    qint64 mBegin = 0;
    qint64 mEnd = 0;
};
