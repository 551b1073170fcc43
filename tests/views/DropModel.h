// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRect>
#include <QUuid>

#include <optional>

class QTreeWidget;
class QTreeWidgetItem;

/// A second statement of where drops on the project tree land, made from the rows' rectangles alone.
class DropModel
{
public:
    /// What a drag holds.
    struct Drag
    {
        bool areFiles = false;
        /// The five flags that travel beside ids.
        bool general = false;
        bool folders = false;
        bool sources = false;
        bool timelines = false;
    };

    /// Where a drop lands, and what marks it.
    struct Place
    {
        QUuid parentID;
        int index = -1;
        enum Mark
        {
            LineOver,
            LineUnder,
            Frame
        } mark = LineOver;
        QRect markedRect;
        /// Whether a parent was found; otherwise the one of the move before stays.
        bool hasParent = true;
    };

    explicit DropModel(const QTreeWidget* tree);

    /// The place of a drop of @p drag at height @p y; none if it is refused.
    std::optional<Place> PlaceOf(const Drag& drag, int y) const;

private:
    struct Line
    {
        QRect rect;
        QTreeWidgetItem* row = nullptr;
    };

    void AddLines(QTreeWidgetItem* parent);
    QTreeWidgetItem* RowAt(int y) const;
    QRect RectOf(const QTreeWidgetItem* row) const;
    bool Takes(const Drag& drag, int y) const;
    Place PlaceAtFolder(QTreeWidgetItem* row, int y) const;
    Place PlaceBetween(QTreeWidgetItem* row, int y) const;
    bool ComesFromAbove(const QTreeWidgetItem* row) const;
    bool ComesFromSameParent(const QTreeWidgetItem* row) const;

    const QTreeWidget* mTree;
    QList<Line> mLines;
    QTreeWidgetItem* mFirst = nullptr;
};
