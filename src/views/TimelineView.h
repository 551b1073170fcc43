// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QString>
#include <QWidget>

class QTreeWidget;

/// A tree of three levels: timelines, their sequences, their elements.
///
/// The host fills it by plain ids of its own, which nothing checks: where an id stands twice, the first row
/// in the tree's order is meant. It reports nothing.
class TORVALENUI_EXPORT TimelineView : public QWidget
{
    Q_OBJECT

public:
    explicit TimelineView(QWidget* parent = nullptr);

public Q_SLOTS:
    /// Appends a timeline.
    void AddTimeline(int timelineID, QString name);
    /// Takes the first timeline with that id out of the tree, with all that hangs on it; the rows themselves
    /// are left to who holds a pointer to them, and are not deleted. An unknown id does nothing.
    void RemoveTimeline(int timelineID);
    /// Appends a sequence to the first timeline with that id. An unknown id does nothing.
    void AddSequence(int timelineID, int sequenceID, QString name);
    /// Appends an element to the first such sequence of the timelines with that id. Where there is none,
    /// nothing happens.
    void AddElement(int timelineID, int sequenceID, int elementID, QString name);

private:
    void CreateWidgets();
    void CreateLayout();
    void CreateConnections();

    QTreeWidget* mTree = nullptr;
};
