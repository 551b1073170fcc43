// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QUuid>

class QTreeWidget;
class QTreeWidgetItem;

/// The rows of a tree by the ids of their objects. It answers as a walk of the tree would, so that of several
/// rows with one id the first in tree order counts, at the price of one walk for all questions.
///
/// It knows the rows of one moment and those that it is told of, and lives no longer than the work on them.
class RowIndex
{
public:
    /// Knows no row.
    RowIndex() = default;
    /// Knows the rows of @p tree.
    explicit RowIndex(const QTreeWidget* tree);

    /// Takes in @p row, which was just appended to its parent, or to the rows at top level.
    void Append(QTreeWidgetItem* row);
    /// The first row with @p id; null for none, and for a null id.
    QTreeWidgetItem* Find(const QUuid& id) const;

private:
    void AppendChildren(QTreeWidgetItem* parent);
    bool StandsBefore(QTreeWidgetItem* row, QTreeWidgetItem* other) const;

    QHash<QUuid, QTreeWidgetItem*> mRows;
    QHash<QTreeWidgetItem*, int> mTopLevelPlaces;
};
