// SPDX-License-Identifier: MIT
#include "toolbars/SecondaryControlsWidget.h"

#include "host/Settings.h"
#include "kit/FlatButton.h"

#include <QHBoxLayout>

SecondaryControlsWidget::SecondaryControlsWidget(QWidget* parent) : QWidget(parent)
{
    Initialize();
    CreateConnections();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(ShowContextMenu(QPoint)));
}

void SecondaryControlsWidget::UpdateUI()
{
    const bool isLinked = Settings::linkProjectViewAndDetailsViewVisibility;
    const QString tooltip = isLinked ? tr("Toggle Project/Details View") : tr("Toggle Project View");
    mToggleTimelineListViewButton->setVisible(!isLinked);
    mToggleProjectViewButton->setToolTip(tooltip);
    mToggleProjectViewButton->setAccessibleName(tooltip);
}

void SecondaryControlsWidget::ToggleAnnotationTools()
{
    Q_EMIT ToggleAnnotationToolsPressed();
}

void SecondaryControlsWidget::ToggleProjectView()
{
    Q_EMIT ToggleProjectViewPressed();
}

void SecondaryControlsWidget::ToggleTimelineListView()
{
    Q_EMIT ToggleTimelineListViewPressed();
}

void SecondaryControlsWidget::ShowContextMenu(QPoint) {}

void SecondaryControlsWidget::Initialize()
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    CreateButton(&mToggleProjectViewButton, QImage(QStringLiteral(":/icons/toggle_project.png")), 6, layout,
                 tr("Toggle Project View"));
    CreateButton(&mToggleTimelineListViewButton, QImage(QStringLiteral(":/icons/toggle_details.png")), 2,
                 layout, tr("Toggle Details View"));
    CreateButton(&mToggleAnnotationToolsButton, QImage(QStringLiteral(":/icons/toggle_annotation.png")), 6,
                 layout, tr("Toggle Annotation Toolbar"));
    layout->addStretch();
    mToggleProjectViewButton->setObjectName(QStringLiteral("toggleProjectViewButton"));
    mToggleTimelineListViewButton->setObjectName(QStringLiteral("toggleTimelineListViewButton"));
    mToggleAnnotationToolsButton->setObjectName(QStringLiteral("toggleAnnotationToolsButton"));
}

void SecondaryControlsWidget::CreateConnections()
{
    connect(mToggleProjectViewButton, SIGNAL(clicked()), this, SLOT(ToggleProjectView()));
    connect(mToggleTimelineListViewButton, SIGNAL(clicked()), this, SLOT(ToggleTimelineListView()));
    connect(mToggleAnnotationToolsButton, SIGNAL(clicked()), this, SLOT(ToggleAnnotationTools()));
}

void SecondaryControlsWidget::CreateButton(FlatButton** button, const QImage& image, int margin,
                                           QHBoxLayout* layout, const QString& tooltip)
{
    *button = new FlatButton(this);
    (*button)->setFixedSize(20, 20);
    (*button)->SetImage(image, margin);
    (*button)->setToolTip(tooltip);
    (*button)->setAccessibleName(tooltip);
    (*button)->SetHoverEnabled(false);
    layout->addWidget(*button);
}
