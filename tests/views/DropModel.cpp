// SPDX-License-Identifier: MIT
#include "views/DropModel.h"

#include "host/ProjectObject.h"

#include <QTreeWidget>

namespace
{

std::shared_ptr<ProjectObject> ObjectOf(const QTreeWidgetItem* row)
{
    return row->data(0, Qt::UserRole + 1).value<std::weak_ptr<ProjectObject>>().lock();
}

int PlaceInFolder(const QTreeWidgetItem* row)
{
    // Rows at top level have no place.
    return row->parent() ? row->parent()->indexOfChild(const_cast<QTreeWidgetItem*>(row)) : -1;
}

} // namespace

DropModel::DropModel(const QTreeWidget* tree) : mTree(tree), mFirst(tree->selectedItems().value(0))
{
    AddLines(tree->invisibleRootItem());
}

void DropModel::AddLines(QTreeWidgetItem* parent)
{
    for (int index = 0; index < parent->childCount(); ++index)
    {
        QTreeWidgetItem* const row = parent->child(index);
        Line line;
        line.row = row;
        line.rect = mTree->visualItemRect(row);
        mLines << line;
        if (row->isExpanded())
            AddLines(row);
    }
}

QTreeWidgetItem* DropModel::RowAt(int y) const
{
    for (const Line& line : mLines)
    {
        if (y >= line.rect.top() && y <= line.rect.bottom())
            return line.row;
    }
    return nullptr;
}

QRect DropModel::RectOf(const QTreeWidgetItem* row) const
{
    for (const Line& line : mLines)
    {
        if (line.row == row)
            return line.rect;
    }
    return {};
}

bool DropModel::Takes(const Drag& drag, int y) const
{
    const bool general = drag.areFiles || drag.general;
    const bool folders = !drag.areFiles && drag.folders;
    const bool sources = drag.areFiles || drag.sources;
    const bool timelines = !drag.areFiles && drag.timelines;
    if (!general || (!drag.areFiles && !mFirst))
        return false;
    const QTreeWidgetItem* const row = RowAt(y);
    if (!row || !ObjectOf(row))
        return false;
    if (ObjectOf(row)->GetType() == 0)
    {
        const auto folder = ObjectOf(row);
        bool takes = true;
        if (folder->IsFolderBin())
            takes = takes && folders;
        if (folder->IsSourceBin())
            takes = takes && sources;
        if (folder->IsTimelineBin())
            takes = takes && timelines;
        const QRect rect = RectOf(row);
        if (!takes)
            return false;
        // Three pixels off the edge, the neighbour there has its say, if there is one.
        if (y - rect.top() < 3 && RowAt(rect.top() - (3 - (y - rect.top()))))
            return Takes(drag, y - 6);
        if (rect.bottom() - y < 3 && RowAt(y + 3))
            return Takes(drag, y + 6);
        return true;
    }
    if (!row->parent())
        return false;
    const QTreeWidgetItem* shelf = row->parent();
    while (shelf->parent())
        shelf = shelf->parent();
    const auto folder = ObjectOf(shelf);
    if (!folder)
        return false;
    if (folder->IsFolderBin())
        return true;
    if (folder->IsSourceBin() && sources)
        return true;
    return folder->IsTimelineBin() && timelines;
}

bool DropModel::ComesFromSameParent(const QTreeWidgetItem* row) const
{
    return mFirst && mFirst->parent() == row->parent();
}

bool DropModel::ComesFromAbove(const QTreeWidgetItem* row) const
{
    return ComesFromSameParent(row) && PlaceInFolder(mFirst) < PlaceInFolder(row);
}

std::optional<DropModel::Place> DropModel::PlaceOf(const Drag& drag, int y) const
{
    if (!Takes(drag, y))
        return std::nullopt;
    QTreeWidgetItem* const row = RowAt(y);
    return ObjectOf(row)->GetType() == 0 ? PlaceAtFolder(row, y) : PlaceBetween(row, y);
}

DropModel::Place DropModel::PlaceAtFolder(QTreeWidgetItem* row, int y) const
{
    const QTreeWidgetItem* const over = RowAt(y - 3);
    const QTreeWidgetItem* const under = RowAt(y + 3);
    const bool isTopBand = over && over != row;
    const bool isBottomBand = !isTopBand && under && under != row;
    const bool isLast = !isTopBand && !under;
    const QUuid own = ObjectOf(row)->GetID();
    const QUuid parent = ObjectOf(row)->GetParentID();
    Place place;
    place.markedRect = RectOf(row);
    if (isTopBand)
    {
        const bool isFirstChild = over == row->parent();
        place.parentID = isFirstChild ? parent : ObjectOf(over)->GetID();
        place.mark = isFirstChild ? Place::LineOver : Place::Frame;
        if (isFirstChild && !ComesFromAbove(row))
            place.index = PlaceInFolder(row);
        return place;
    }
    if (isLast)
    {
        place.parentID = parent;
        place.mark = Place::LineUnder;
        return place;
    }
    if (!isBottomBand || !ComesFromSameParent(row))
    {
        place.parentID = own;
        place.mark = Place::Frame;
        return place;
    }
    place.parentID = parent;
    const bool isSiblingUnder = under->parent() == row->parent();
    place.mark = ComesFromAbove(row) || isSiblingUnder ? Place::LineUnder : Place::Frame;
    if (ComesFromAbove(row))
        place.index = PlaceInFolder(row);
    else if (isSiblingUnder)
        place.index = PlaceInFolder(under);
    return place;
}

DropModel::Place DropModel::PlaceBetween(QTreeWidgetItem* row, int y) const
{
    Place place;
    place.markedRect = RectOf(row);
    const auto folder = ObjectOf(row->parent());
    if (!folder)
    {
        place.hasParent = false;
        return place;
    }
    place.parentID = folder->GetID();
    const int half = RectOf(row).height() / 2;
    const QTreeWidgetItem* const over = RowAt(y - half);
    const QTreeWidgetItem* const under = RowAt(y + half);
    const int own = PlaceInFolder(row);
    const bool isSiblingOver = over && over != row && over->parent() == row->parent();
    const bool isSiblingUnder = under && under != row && under->parent() == row->parent();
    if ((over == row || own == 0) && under == row)
    {
        place.index = own;
    }
    else if (isSiblingOver)
    {
        place.index = ComesFromAbove(row) ? PlaceInFolder(over) : own;
    }
    else if (isSiblingUnder)
    {
        place.index = ComesFromAbove(row) ? own : PlaceInFolder(under);
        place.markedRect = RectOf(under);
    }
    else
    {
        place.mark = Place::LineUnder;
    }
    return place;
}
