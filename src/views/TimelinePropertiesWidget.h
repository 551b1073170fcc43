// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "views/PropertiesDisplayType.h"

#include <QPointF>
#include <QString>
#include <QUuid>
#include <QWidget>

class QCheckBox;
class QDoubleSpinBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

/// The form of what belongs to the active timeline or source: the path of the source, the range, pan and
/// zoom, and an option.
///
/// The host fills it by setters, none of which signals anything, and gets the user's edits as requests. The
/// form applies none of them: the host answers by the setters.
class TORVALENUI_EXPORT TimelinePropertiesWidget : public QWidget
{
    Q_OBJECT

public:
    /// Shows "Pan/Zoom" alone at first. Reads `Settings::zoomMaximum`, the upper end of the zoom, once.
    explicit TimelinePropertiesWidget(QWidget* parent = nullptr);

    /// Chooses the groups that show; what the hidden ones hold stays.
    void SetDisplayType(PropertiesDisplayType type);
    /// Makes 1 to @p frameCount the frames to choose from; with 0 or less frames there is only 0. The values
    /// are clamped to them.
    void SetFrameCount(int frameCount);
    /// Shows the first and the last frame (counted from 1) of the range, clamped to the frames there are.
    void SetFrameRange(int startFrame, int endFrame);
    /// Shows the pan (-1 to 1 on each axis), the zoom (1 to `Settings::zoomMaximum` of the construction),
    /// clamped to these, and whether they apply.
    void SetPanAndZoom(QPointF panInterpolation, float zoom, bool enabled);
    /// Shows the source with @p id: its full @p path and its @p relativePath to the source root, empty if
    /// there is none.
    void SetSourceInput(const QUuid& id, const QString& path, const QString& relativePath);
    /// Shows the project's source root, empty if there is none.
    void SetSourceRootPath(const QString& rootPath);
    /// Shows whether the ranges of the sources apply.
    void SetUseSourceInOuts(bool enabled);

Q_SIGNALS:
    /// The source with @p id is to change. With an empty @p oldPath the user typed @p newPath; with an empty
    /// @p newPath the user asked to be shown a choice in place of @p oldPath. The host answers with
    /// SetSourceInput().
    void SourceChangeRequested(QUuid id, QString newPath, QString oldPath);
    /// A new range of frames, counted from 1. The host answers with SetFrameRange().
    void RangeChangeRequested(int startFrame, int endFrame);
    /// New pan, zoom and state of both. The host answers with SetPanAndZoom().
    void PanZoomChangeRequested(QPointF panInterpolation, float zoom, bool enabled);
    /// The user switched the ranges of the sources on or off, which the check box shows already.
    void UseSourceInOutsChanged(bool enabled);

public Q_SLOTS:
    /// Requests the source of the typed path.
    void OnSourcePathChanged();
    /// Requests a choice of another source.
    void SelectSourcePath();
    /// Shows or hides the source root and the relative path.
    void OnShowRelativeSourcePathToggled();
    /// Requests the range of the two boxes. Where its ends have crossed, the one that the user didn't touch
    /// follows: the first frame if the sender is the box of the last one, else the last frame.
    void RequestRangeChange();
    /// Each requests the new value if it came from a press on the arrows of its box; what is typed, turned
    /// with the wheel or stepped by key waits for the end of the edit.
    void OnInValueChanged();
    void OnOutValueChanged();
    /// Requests the whole range.
    void OnResetRange();
    void OnPanXValueChanged();
    void OnPanYValueChanged();
    void OnZoomValueChanged();
    /// Requests the pan and zoom of the boxes.
    void OnPanZoomChanged();
    /// Requests the centred picture at its plain size, with pan and zoom off.
    void OnResetPanZoom();
    void OnSourceInOutsToggled();

    /// Does nothing: the panel has no context menu.
    void ShowContextMenu(QPoint pos);

private:
    void Initialize();
    void InitializeSource();
    void InitializeRange();
    void InitializePanZoom();
    void InitializeOptions();

    QUuid mSourceID;
    int mFrameCount = 0;
    QLineEdit* mSourcePathEdit = nullptr;
    QPushButton* mReplaceButton = nullptr;
    QLabel* mSourceRootLabel = nullptr;
    QLabel* mSourceRootValueLabel = nullptr;
    QLabel* mRelativePathLabel = nullptr;
    QLabel* mRelativePathValueLabel = nullptr;
    QCheckBox* mShowRelativePathCheckBox = nullptr;
    QSpinBox* mInSpinBox = nullptr;
    QSpinBox* mOutSpinBox = nullptr;
    QPushButton* mResetRangeButton = nullptr;
    QDoubleSpinBox* mPanXSpinBox = nullptr;
    QDoubleSpinBox* mPanYSpinBox = nullptr;
    QDoubleSpinBox* mZoomSpinBox = nullptr;
    QCheckBox* mPanZoomEnabledCheckBox = nullptr;
    QPushButton* mResetPanZoomButton = nullptr;
    QCheckBox* mApplySourceRangesCheckBox = nullptr;
    QGroupBox* mSourceGroup = nullptr;
    QGroupBox* mRangeGroup = nullptr;
    QGroupBox* mPanZoomGroup = nullptr;
    QGroupBox* mOptionsGroup = nullptr;
};
