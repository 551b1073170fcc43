// SPDX-License-Identifier: MIT
#pragma once

#include "host/Source.h"
#include "host/Timeline.h"
#include "views/CallLog.h"
#include "views/TreeItemMetaType.h"

#include <memory>

/// An element of a host's timeline.
class FakeElement : public ProjectObject
{
public:
    FakeElement(int number, const QString& elementName) : ProjectObject(NumberedID(number)), name(elementName)
    {
    }

    const QString& GetName() override { return name; }
    int GetType() override { return type; }
    bool IsMissing() override { return missing; }
    int64_t GetStartTime() override { return startTime; }
    std::weak_ptr<Source> GetSource() override { return source; }

    QString name;
    int type = 2;
    bool missing = false;
    int64_t startTime = 0;
    std::shared_ptr<Source> source;
};

/// A timeline of a host with elements of its own.
class FakeElementTimeline : public Timeline
{
public:
    /// @p count elements called "e0", "e1" and so on, with the ids #1, #2 and so on; its own is #1000000.
    explicit FakeElementTimeline(int count) : Timeline(NumberedID(1000000))
    {
        for (int index = 0; index < count; ++index)
            elements << std::make_shared<FakeElement>(index + 1, QStringLiteral("e%1").arg(index));
    }

    QList<std::shared_ptr<ProjectObject>> GetChildren() override
    {
        QList<std::shared_ptr<ProjectObject>> children;
        for (const std::shared_ptr<FakeElement>& element : elements)
            children << element;
        return children;
    }

    QList<std::shared_ptr<FakeElement>> elements;
};
