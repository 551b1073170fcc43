// SPDX-License-Identifier: MIT
#pragma once

#include "host/ProjectObject.h"

#include <QJsonObject>

/// An object of a project file whose type this version doesn't know. It keeps its place and is written back
/// as it was read.
class UnknownObject : public ProjectObject
{
public:
    UnknownObject(const QJsonObject& json, const QUuid& id)
        : ProjectObject(id), mJson(json), mName(json.value(QLatin1String("name")).toString())
    {
    }

    const QJsonObject& Json() const { return mJson; }

    const QString& GetName() override { return mName; }
    /// A type that no view treats as one of its own.
    int GetType() override { return 3; }
    bool IsProtected() override { return true; }

private:
    QJsonObject mJson;
    QString mName;
};
