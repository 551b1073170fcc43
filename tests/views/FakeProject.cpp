// SPDX-License-Identifier: MIT
#include "views/FakeProject.h"

#include <QColor>
#include <QTreeWidget>

#include <functional>

namespace
{

template<typename Object>
std::shared_ptr<Object> MakeChild(const std::shared_ptr<FakeObject>& parent, const QString& name, int type)
{
    auto object = std::make_shared<Object>(QUuid::createUuid(), parent ? parent->GetID() : QUuid());
    object->name = name;
    object->type = type;
    if (parent)
        parent->children << object;
    return object;
}

void Visit(QTreeWidgetItem* parent, const std::function<void(QTreeWidgetItem*)>& visit)
{
    for (int index = 0; index < parent->childCount(); ++index)
    {
        visit(parent->child(index));
        Visit(parent->child(index), visit);
    }
}

void FillAtRandom(QRandomGenerator& random, const std::shared_ptr<FakeObject>& folder, int& left, int depth)
{
    for (int children = random.bounded(1, 7); children > 0 && left > 0; --children)
    {
        const QString name = QStringLiteral("object %1").arg(left);
        --left;
        FakeAnswers* answers = nullptr;
        std::shared_ptr<ProjectObject> object;
        const int kind = random.bounded(10);
        if (kind < 5)
        {
            const auto made = FakeProject::AddFolder(folder, name);
            const int bin = random.bounded(8);
            made->isFolderBin = bin == 0 || bin == 4;
            made->isSourceBin = bin == 1 || bin == 4;
            made->isTimelineBin = bin == 2;
            made->isProtected = bin == 3;
            answers = made.get();
            object = made;
            if (depth > 1)
                FillAtRandom(random, made, left, depth - 1);
        }
        else if (kind < 9)
        {
            const auto made = kind < 7
                                  ? FakeProject::AddTimeline(folder, name)
                                  : FakeProject::AddSource(folder, name, QStringLiteral("/media/") + name);
            made->viewerIndex = random.bounded(-1, 3);
            made->isDefault = random.bounded(4) == 0;
            answers = made.get();
            object = made;
        }
        else
        {
            const auto made = FakeProject::AddObject(folder, name, random.bounded(2, 5));
            answers = made.get();
            object = made;
        }
        answers->isMissing = random.bounded(5) == 0;
        object->SetExpanded(random.bounded(3) > 0);
        object->SetSelected(random.bounded(3) == 0);
    }
}

} // namespace

namespace FakeProject
{

std::shared_ptr<FakeObject> AddFolder(const std::shared_ptr<FakeObject>& parent, const QString& name)
{
    return MakeChild<FakeObject>(parent, name, 0);
}

std::shared_ptr<FakeTimelineObject> AddTimeline(const std::shared_ptr<FakeObject>& parent,
                                                const QString& name)
{
    return MakeChild<FakeTimelineObject>(parent, name, 1);
}

std::shared_ptr<FakeTimelineObject> AddSource(const std::shared_ptr<FakeObject>& parent, const QString& name,
                                              const QString& path)
{
    const auto timeline = AddTimeline(parent, name);
    timeline->isSourceTimeline = true;
    timeline->source = std::make_shared<Source>(QUuid::createUuid(), path);
    return timeline;
}

std::shared_ptr<FakeObject> AddObject(const std::shared_ptr<FakeObject>& parent, const QString& name,
                                      int type)
{
    return MakeChild<FakeObject>(parent, name, type);
}

QList<std::shared_ptr<ProjectObject>> Below(const std::shared_ptr<ProjectObject>& object)
{
    QList<std::shared_ptr<ProjectObject>> below;
    const auto children = object->GetChildren();
    for (const auto& child : children)
        below << child << Below(child);
    return below;
}

std::shared_ptr<FakeObject> MakeRandom(QRandomGenerator& random, int count, int depth)
{
    const auto root = AddFolder(nullptr, QStringLiteral("root"));
    while (count > 0)
        FillAtRandom(random, root, count, depth);
    return root;
}

QString Describe(const QTreeWidget* tree)
{
    QStringList lines;
    Visit(tree->invisibleRootItem(),
          [&lines](QTreeWidgetItem* row)
          {
              QString line;
              for (const QTreeWidgetItem* parent = row->parent(); parent; parent = parent->parent())
                  line += QLatin1String("  ");
              for (int column = 0; column < 3; ++column)
              {
                  line += QStringLiteral("%1 %2 %3 %4|")
                              .arg(row->text(column),
                                   row->data(column, Qt::ForegroundRole).value<QColor>().name(),
                                   QString::number(row->textAlignment(column)), row->toolTip(column));
              }
              line += row->data(0, Qt::UserRole).toUuid().toString();
              line += row->flags() & Qt::ItemIsEditable ? QLatin1String(" editable") : QLatin1String("");
              line += row->icon(0).isNull() ? QLatin1String("") : QLatin1String(" icon");
              line += row->isExpanded() ? QLatin1String(" expanded") : QLatin1String("");
              line += row->isSelected() ? QLatin1String(" selected") : QLatin1String("");
              lines << line;
          });
    return lines.join(QLatin1Char('\n'));
}

QList<QTreeWidgetItem*> Rows(const QTreeWidget* tree)
{
    QList<QTreeWidgetItem*> rows;
    Visit(tree->invisibleRootItem(), [&rows](QTreeWidgetItem* row) { rows << row; });
    return rows;
}

QTreeWidgetItem* RowOf(const QTreeWidget* tree, const QString& name)
{
    for (QTreeWidgetItem* const row : Rows(tree))
    {
        if (row->text(0) == name)
            return row;
    }
    return nullptr;
}

} // namespace FakeProject
