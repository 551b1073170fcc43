// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QSet>
#include <QTreeWidget>

/// The tree behind the project view and the element list: several rows may be selected, and it tells them in
/// the order in which they stand.
class MultiSelectTreeWidget : public QTreeWidget
{
    Q_OBJECT

public:
    explicit MultiSelectTreeWidget(QWidget* parent = nullptr);

    /// The selected rows in tree order, each before its children; those in collapsed rows count.
    /// selectedItems() tells them in the order of selecting.
    QList<QTreeWidgetItem*> GetSelectedItemsInOrder() const;
    /// Whether @p item lies below one of @p items, at any depth. A row isn't below itself.
    bool IsChildOfAny(QTreeWidgetItem* item, const QList<QTreeWidgetItem*>& items) const;
    /// Whether @p item lies below @p parent, at any depth. Null lies nowhere, and nothing lies below it.
    bool IsDescendant(QTreeWidgetItem* item, QTreeWidgetItem* parent) const;

    /// Appends @p rows, which no tree has yet, with all below them, then expands those in @p expanded, and
    /// adds @p selected to the selection in that order. Each is one step of the tree, where row by row each
    /// one would cost a visit to all that are expanded or selected before it.
    void ReplaceRows(const QList<QTreeWidgetItem*>& rows, const QSet<QTreeWidgetItem*>& expanded,
                     const QList<QTreeWidgetItem*>& selected);
    /// Takes @p rows out of the selection, whose order stays. Nothing is signalled if none is in it.
    void UnselectRows(const QSet<QTreeWidgetItem*>& rows);

public Q_SLOTS:
    void selectAll() override;

protected:
    QRegion visualRegionForSelection(const QItemSelection& selection) const override;
    /// Without a selection a move does nothing: it selects no row and begins no drag.
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    QSet<QTreeWidgetItem*> SelectedRows() const;
    void AppendSelectedChildren(QTreeWidgetItem* parent, const QSet<QTreeWidgetItem*>& selected,
                                QList<QTreeWidgetItem*>& ordered) const;
    void ExpandBelow(const QModelIndex& parent, const QSet<QTreeWidgetItem*>& expanded);
};
