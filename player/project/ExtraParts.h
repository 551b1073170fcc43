// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QJsonObject>
#include <QString>

/// Members of a project file's object that this version doesn't know, kept so that saving writes them back.
struct ExtraParts
{
    /// Of the object itself.
    QJsonObject own;
    /// Of objects within it, by a name of the writer's choice, e.g. "source" or "drawing 17".
    QHash<QString, QJsonObject> inner;
};
