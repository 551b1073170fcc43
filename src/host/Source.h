// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenCoreExport.h"

#include <QString>
#include <QUuid>

/// A media source: a file with an identity.
class TORVALENCORE_EXPORT Source
{
public:
    Source(const QUuid& id, const QString& path);
    virtual ~Source();

    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    const QUuid& GetID() const;
    /// Path of the file; of an image sequence, the path that names it.
    const QString& GetPath() const;

private:
    QUuid mID;
    QString mPath;
};
