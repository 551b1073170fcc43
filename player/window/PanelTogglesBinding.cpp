// SPDX-License-Identifier: MIT
#include "window/PanelTogglesBinding.h"

#include "toolbars/SecondaryControlsWidget.h"
#include "window/AnnotationBarBinding.h"
#include "window/PanelArea.h"
#include "window/PanelCommands.h"

PanelTogglesBinding::PanelTogglesBinding(PanelArea* panels, AnnotationBarBinding* annotationBar,
                                         QWidget* barParent, QObject* parent)
    : QObject(parent), mPanels(panels), mBar(new SecondaryControlsWidget(barParent))
{
    mBar->setObjectName(QStringLiteral("panelToggles"));
    connect(mBar, SIGNAL(ToggleProjectViewPressed()), this, SLOT(ToggleProject()));
    connect(mBar, SIGNAL(ToggleTimelineListViewPressed()), this, SLOT(ToggleDetails()));
    connect(mBar, SIGNAL(ToggleAnnotationToolsPressed()), annotationBar, SLOT(Toggle()));
    Sync();
}

SecondaryControlsWidget* PanelTogglesBinding::Bar() const
{
    return mBar;
}

void PanelTogglesBinding::Sync()
{
    mBar->UpdateUI();
}

void PanelTogglesBinding::ToggleProject()
{
    ToggleProjectPanel(mPanels);
}

void PanelTogglesBinding::ToggleDetails()
{
    mPanels->Toggle(QStringLiteral("details"));
}
