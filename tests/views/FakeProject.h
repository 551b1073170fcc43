// SPDX-License-Identifier: MIT
#pragma once

#include "host/Source.h"
#include "host/Timeline.h"
#include "views/TreeItemMetaType.h"

#include <QList>
#include <QMetaType>
#include <QRandomGenerator>
#include <QString>
#include <QTreeWidgetItem>

#include <memory>

class QTreeWidget;

/// What a fake object answers; tests set it.
struct FakeAnswers
{
    QString name;
    int type = 0;
    bool isMissing = false;
    bool isProtected = false;
    bool isFolderBin = false;
    bool isSourceBin = false;
    bool isTimelineBin = false;
    bool isSourceTimeline = false;
    bool isDefault = false;
    int viewerIndex = -1;
    std::shared_ptr<Source> source;
    QList<std::shared_ptr<ProjectObject>> children;
};

/// A project object of a fake project: a ProjectObject, or a Timeline, whose answers are a test's.
template<typename Base>
class FakeObjectOf : public Base, public FakeAnswers
{
public:
    using Base::Base;

    const QString& GetName() override { return name; }
    int GetType() override { return type; }
    QList<std::shared_ptr<ProjectObject>> GetChildren() override { return children; }
    bool IsMissing() override { return isMissing; }
    bool IsProtected() override { return isProtected; }
    bool IsFolderBin() override { return isFolderBin; }
    bool IsSourceBin() override { return isSourceBin; }
    bool IsTimelineBin() override { return isTimelineBin; }
    bool IsSourceTimeline() override { return isSourceTimeline; }
    bool IsDefault() override { return isDefault; }
    int GetViewerIndex() override { return viewerIndex; }
    std::weak_ptr<Source> GetSource() override { return source; }
};

using FakeObject = FakeObjectOf<ProjectObject>;
using FakeTimelineObject = FakeObjectOf<Timeline>;

namespace FakeProject
{

/// A folder, timeline or source timeline called @p name at the end of @p parent; null makes a root.
std::shared_ptr<FakeObject> AddFolder(const std::shared_ptr<FakeObject>& parent, const QString& name);
std::shared_ptr<FakeTimelineObject> AddTimeline(const std::shared_ptr<FakeObject>& parent,
                                                const QString& name);
std::shared_ptr<FakeTimelineObject> AddSource(const std::shared_ptr<FakeObject>& parent, const QString& name,
                                              const QString& path = QString());
/// An object of @p type, which may be any, at the end of @p parent.
std::shared_ptr<FakeObject> AddObject(const std::shared_ptr<FakeObject>& parent, const QString& name,
                                      int type);

/// All objects below @p object, each before its children.
QList<std::shared_ptr<ProjectObject>> Below(const std::shared_ptr<ProjectObject>& object);

/// A project of about @p count objects: folders of all kinds, timelines, sources, at most @p depth deep, some
/// expanded and some selected.
std::shared_ptr<FakeObject> MakeRandom(QRandomGenerator& random, int count, int depth);

/// Each row of @p tree as a line, indented: what it shows and carries, and whether it is expanded or
/// selected.
QString Describe(const QTreeWidget* tree);
/// The rows of @p tree, each before its children.
QList<QTreeWidgetItem*> Rows(const QTreeWidget* tree);
/// The first row of @p tree that shows @p name; null for none.
QTreeWidgetItem* RowOf(const QTreeWidget* tree, const QString& name);

} // namespace FakeProject
