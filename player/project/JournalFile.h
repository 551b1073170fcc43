// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QFile>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

/// A file of records that is only ever added to: a line for each, with a checksum over it and all before it,
/// so that a reader takes the records up to the first that is cut, changed or out of place.
class JournalFile
{
public:
    /// Makes the file at @p path, which must not be there. Returns whether that was possible; Error() says
    /// why not.
    bool Create(const QString& path);
    /// Adds @p record; what is added is with the system before this returns, so that the end of the process
    /// takes nothing away.
    bool Append(const QJsonObject& record);
    bool IsOpen() const { return mFile.isOpen(); }
    QString Path() const { return mFile.fileName(); }
    QString Error() const { return mFile.errorString(); }
    /// Bytes so far.
    qint64 Size() const { return mSize; }
    /// Closes the file and removes it.
    void Remove();

    /// The sound records at the start of the file at @p path; none if it can't be read.
    static QList<QJsonObject> Read(const QString& path);

private:
    QFile mFile;
    quint32 mChecksum = 0;
    qint64 mSize = 0;
};
