// SPDX-License-Identifier: MIT
#pragma once

#include "views/MultiSelectTreeWidget.h"

#include <QList>
#include <QRect>
#include <QString>
#include <QUuid>

class ProjectObject;
class QMimeData;

/// The tree inside the project view. It writes what its drags carry, decides what may be dropped on which row
/// and where it lands, draws the mark of that place, and turns a drop into signals. No row moves by itself.
///
/// Its rows carry their objects as ProjectRow tells.
class ProjectViewTreeWidget : public MultiSelectTreeWidget
{
    Q_OBJECT

public:
    explicit ProjectViewTreeWidget(QWidget* parent = nullptr);

Q_SIGNALS:
    /// Files were dropped. They are to go under @p parentID, at the index that @p indicies holds once for
    /// each path, or at the end for -1.
    void InsertSourcesInFolderRequested(QList<QString> filePaths, QUuid parentID, QList<int> indicies);
    /// The timeline of @p item was double-clicked; @p viewerIndex is 1 with Ctrl, else 0.
    void OpenInViewer(QTreeWidgetItem* item, int viewerIndex);
    /// The object @p id was dropped. It is to go under @p parentID, at @p index among the children there once
    /// it has left its old place, or at the end for -1. Nothing here keeps a folder from being dropped into
    /// itself or below itself: the host refuses that.
    void ProjectObjectMoved(QUuid id, QUuid parentID, int index);

protected:
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Whether what @p mimeData carries may be dropped at @p pos of the viewport. What is dropped from this
    /// tree is its selection.
    bool CanDrop(const QMimeData* mimeData, const QPoint& pos);
    /// Finds where a drop at @p pos on the folder @p object of @p row lands.
    void PlaceAtFolder(QTreeWidgetItem* row, const ProjectObject& object, const QPoint& pos);
    /// Finds where a drop at @p pos on @p row, which is no folder, lands.
    void PlaceAmongSiblings(QTreeWidgetItem* row, const QPoint& pos);

    bool mDragActive = false;
    QRect mDropRect;
    bool mDropOnItem = false;
    bool mDropBelow = false;
    int mDropIndex = -1;
    QUuid mDropParentID;
};
