// SPDX-License-Identifier: MIT
#pragma once

#include "host/AnnotationToolType.h"

#include <QObject>

class AnnotationController;
class AnnotationWidget;
class CommandTable;
class QBoxLayout;
class QScrollArea;
class QWidget;

/// Ties the strip of annotation tools to the annotations. While the strip is shown, drawing is on, and the
/// mouse over the viewers draws.
class AnnotationBarBinding : public QObject
{
    Q_OBJECT

public:
    /// @p barParent becomes the parent of the strip.
    AnnotationBarBinding(AnnotationController* annotation, QWidget* barParent, QObject* parent);

    AnnotationWidget* Bar() const;
    /// Puts the strip beside @p viewer into @p row, at the side of the settings.
    void PlaceIn(QBoxLayout* row, QWidget* viewer);
    bool IsShown() const;
    /// Shows the strip with @p tool active.
    void SelectTool(AnnotationToolType tool);
    /// Makes the active tool wider (@p direction 1) or narrower (-1), by an eighth but a step at least.
    void ChangeWidth(int direction);
    /// Lets the user pick the drawing colour, with its opacity.
    void PickColor();
    /// Names the keys of @p commands in the tooltips.
    void UpdateHotkeys(CommandTable* commands);
    /// Brings the strip in line with the settings, after they changed elsewhere.
    void Sync();
    /// Shows the strip if it was shown when the player was closed last.
    void ReadState();
    void WriteState() const;

public Q_SLOTS:
    void SetShown(bool shown);
    void Toggle();
    void SetAtRight(bool right);

Q_SIGNALS:
    /// Drawing was turned on or off, or another tool is active.
    void ToolChanged();
    void ShownChanged(bool shown);
    void GhostingChanged();
    void ClearFrameRequested(bool removeBookmark);

private Q_SLOTS:
    void OnToolChanged();

private:
    AnnotationController* mAnnotation;
    AnnotationWidget* mBar;
    /// Holds the strip, so that it can be scrolled where the window is lower than the strip.
    QScrollArea* mArea;
    QBoxLayout* mRow = nullptr;
    QWidget* mViewer = nullptr;
};
