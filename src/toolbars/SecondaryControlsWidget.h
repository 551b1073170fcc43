// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QWidget>

class FlatButton;
class QHBoxLayout;

/// Three small buttons in a row that ask the host to show and hide its side panels.
class TORVALENUI_EXPORT SecondaryControlsWidget : public QWidget
{
    Q_OBJECT

public:
    explicit SecondaryControlsWidget(QWidget* parent = nullptr);

    /// Brings the buttons in line with `Settings::linkProjectViewAndDetailsViewVisibility`: while it holds,
    /// the project view's button serves both panels and the details view's is hidden. The host calls it when
    /// the setting changes; until the first call all three show, whatever the setting.
    void UpdateUI();

Q_SIGNALS:
    /// Show or hide the annotation toolbar.
    void ToggleAnnotationToolsPressed();
    /// Show or hide the project view; with the linked setting the details view too.
    void ToggleProjectViewPressed();
    /// Show or hide the details view.
    void ToggleTimelineListViewPressed();

public Q_SLOTS:
    /// The slots of the buttons: each emits its signal and does nothing else.
    void ToggleAnnotationTools();
    void ToggleProjectView();
    void ToggleTimelineListView();

    /// Does nothing, so that a right click on the bar opens no menu, its parent's included.
    void ShowContextMenu(QPoint pos);

private:
    void Initialize();
    void CreateConnections();
    void CreateButton(FlatButton** button, const QImage& image, int margin, QHBoxLayout* layout,
                      const QString& tooltip);

    FlatButton* mToggleAnnotationToolsButton = nullptr;
    FlatButton* mToggleProjectViewButton = nullptr;
    FlatButton* mToggleTimelineListViewButton = nullptr;
};
