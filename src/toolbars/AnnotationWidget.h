// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/AnnotationToolType.h"

#include <QWidget>

class FlatButton;
class QAction;
class QVBoxLayout;
class SmoothSlider;

/// The narrow strip of annotation tools beside the viewer.
///
/// It writes the tool, the colour, the widths and the ghosts into `Settings` and shows which are in force; it
/// draws nothing. A right click on a tool opens a slider for its width, one on a ghost switch the choice of
/// how many ghosts.
class TORVALENUI_EXPORT AnnotationWidget : public QWidget
{
    Q_OBJECT

public:
    explicit AnnotationWidget(QWidget* parent = nullptr);
    ~AnnotationWidget() override;

    /// Brings the strip in line with `Settings` after they changed elsewhere.
    void Sync();
    /// Moves the width of the active tool by @p delta steps of 1/2000 of the picture's width, within 2 to 99
    /// steps.
    void IncrementWidthSlider(int delta);
    /// Names each tool with its key in its tooltip; an empty text stands for no key.
    void UpdateHotkeys(const QString& pencil, const QString& eraser, const QString& text,
                       const QString& arrow, const QString& oval, const QString& rectangle,
                       const QString& eyedropper, const QString& ghostPrevious, const QString& ghostNext);

Q_SIGNALS:
    /// A tool was activated, or the strip came or went, so that the host can drop its drawing mode.
    void ToolChanged();
    /// Undo the last change of a drawing.
    void UndoRequested();
    /// Redo what was undone.
    void RedoRequested();
    /// Clear the drawings of the current frame, and remove its bookmark if @p removeBookmark.
    void ClearFrameRequested(bool removeBookmark);
    /// Move the strip to the right or left side. The host writes `Settings::annotationToolsAtRight`.
    void PositionChangeRequested(bool right);
    /// The ghosts were switched or their number has changed.
    void GhostingChanged();

public Q_SLOTS:
    /// Each makes its tool and that tool's width the active ones; the eyedropper's width is 0.
    void ActivatePencil();
    void ActivateEraser();
    void ActivateText();
    void ActivateOval();
    void ActivateRectangle();
    void ActivateArrow();
    void ActivateEyedropper();
    /// Lets the user pick the drawing colour in a dialog; no signal follows.
    void SelectColor();
    /// Sets the width of the tool whose slider is open to @p value / 2000 of the picture's width, but not
    /// below `Settings::MINIMUM_DRAW_WIDTH`; the pen in hand changes only if that tool is active.
    void SetWidth(int value);
    void ToggleGhostPrevious();
    void ToggleGhostNext();
    /// Each takes the number in the data of the action that calls it; without an action it does nothing.
    void SetGhostPreviousNumFrames();
    void SetGhostNextNumFrames();
    void Undo();
    void Redo();
    void Clear();
    void ClearAll();
    void SetPositionAtRight(bool right);
    /// Opens the width slider or the menu of the button under the mouse, wherever @p pos is; a menu opens at
    /// @p pos. Returns when a menu is closed.
    void ShowContextMenu(QPoint pos);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void Initialize();
    void CreateConnections();
    void CreateButton(FlatButton** button, const QImage& image, int margin, QVBoxLayout* layout,
                      const QString& toolTip);
    void SetButtonColors(FlatButton* button, bool selected);
    void UpdateColorButton();
    void UpdateSelected();

    void Activate(AnnotationToolType tool);
    void ShowWidthSlider(const FlatButton* button, AnnotationToolType tool);
    /// Lets the user pick a number from @p first to 9 at @p pos; @p slot is called with it.
    void ShowGhostMenu(QPoint pos, int first, int checked, const char* slot);

    FlatButton* mPencilButton = nullptr;
    FlatButton* mEraserButton = nullptr;
    FlatButton* mOvalButton = nullptr;
    FlatButton* mRectangleButton = nullptr;
    FlatButton* mArrowButton = nullptr;
    FlatButton* mTextButton = nullptr;
    FlatButton* mEyedropperButton = nullptr;
    FlatButton* mColorButton = nullptr;
    /// A pop-up of its own, without a parent.
    SmoothSlider* mWidthSlider = nullptr;
    FlatButton* mGhostPreviousButton = nullptr;
    FlatButton* mGhostNextButton = nullptr;
    FlatButton* mUndoButton = nullptr;
    FlatButton* mRedoButton = nullptr;
    FlatButton* mClearButton = nullptr;
    FlatButton* mClearAllButton = nullptr;
    QAction* mPositionAction = nullptr;
};
