// SPDX-License-Identifier: MIT
#pragma once

#include "views/MultiSelectTreeWidget.h"

#include <QList>
#include <QString>
#include <QUuid>

class QMimeData;

/// The flat list of a timeline's elements. It takes its own rows, to reorder them, source timelines of the
/// project tree, to insert them, and files from outside; each becomes a signal, and no row moves before the
/// host answers.
///
/// The indices of a drop are all the same: the host inserts each id there, in the order given, and the order
/// is such that they end as they were dragged. -1 means the end.
class TimelineListViewTreeWidget : public MultiSelectTreeWidget
{
    Q_OBJECT

public:
    explicit TimelineListViewTreeWidget(QWidget* parent = nullptr);

    /// Selects the rows with these ids, and no others.
    void SelectItems(const QList<QUuid>& uuids);

Q_SIGNALS:
    /// Files were dropped; @p paths is sorted without regard to case.
    void InsertSourcesRequested(QList<QString> paths, QList<int> indicies);
    /// Source timelines were dropped.
    void InsertElementsRequested(QList<QUuid> uuids, QList<int> indicies);
    /// Rows of a list were dropped.
    void MoveElementsRequested(QList<QUuid> uuids, QList<int> indicies);
    /// A row was double-clicked.
    void SeekPlaybackTimeRequested(QTreeWidgetItem* item);

protected:
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool CanDrop(const QMimeData* mimeData);
    /// The row whose gap above is the nearest to @p position of the viewport, a row under it taken for
    /// granted; null behind the last row.
    QTreeWidgetItem* RowBelowGap(const QPoint& position) const;
    void DropProjectObjects(const QMimeData* mimeData, int index);
    void DropElements(const QMimeData* mimeData, int index);
    void DropFiles(const QMimeData* mimeData, int index);

    /// A drag is over the list.
    bool mDragActive = false;
    /// Where the drop line stands in the viewport.
    int mDropLineY = 0;
};
