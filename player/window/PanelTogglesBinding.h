// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class AnnotationBarBinding;
class PanelArea;
class QWidget;
class SecondaryControlsWidget;

/// Ties the three small buttons for panels to the panels and to the strip of annotation tools.
class PanelTogglesBinding : public QObject
{
    Q_OBJECT

public:
    /// @p barParent becomes the parent of the bar.
    PanelTogglesBinding(PanelArea* panels, AnnotationBarBinding* annotationBar, QWidget* barParent,
                        QObject* parent);

    SecondaryControlsWidget* Bar() const;
    /// Brings the bar in line with Settings::linkProjectViewAndDetailsViewVisibility.
    void Sync();

private Q_SLOTS:
    void ToggleProject();
    void ToggleDetails();

private:
    PanelArea* mPanels;
    SecondaryControlsWidget* mBar;
};
