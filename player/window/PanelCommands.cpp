// SPDX-License-Identifier: MIT
#include "window/PanelCommands.h"

#include "host/Settings.h"
#include "window/CommandTable.h"
#include "window/PanelArea.h"

#include <QCoreApplication>

void ToggleProjectPanel(PanelArea* panels)
{
    const QString project = QStringLiteral("project");
    const bool visible = !panels->IsVisible(project);
    panels->SetVisible(project, visible);
    if (Settings::linkProjectViewAndDetailsViewVisibility)
        panels->SetVisible(QStringLiteral("details"), visible);
}

void AddPanelCommands(std::vector<Command>& commands, PanelArea* panels)
{
    struct PanelRow
    {
        const char* command;
        const char* text;
        int key;
        QString panel;
        std::function<void()> run;
    };
    const QString details = QStringLiteral("details");
    const QString properties = QStringLiteral("properties");
    const PanelRow rows[] = {{"view.project", QT_TRANSLATE_NOOP("PanelCommands", "|&Project"), Qt::Key_F5,
                              QStringLiteral("project"), [panels] { ToggleProjectPanel(panels); }},
                             {"view.details", QT_TRANSLATE_NOOP("PanelCommands", "&Details"), Qt::Key_F6,
                              details, [panels, details] { panels->Toggle(details); }},
                             {"view.properties", QT_TRANSLATE_NOOP("PanelCommands", "P&roperties"),
                              Qt::Key_F7, properties, [panels, properties] { panels->Toggle(properties); }}};
    for (const PanelRow& row : rows)
        commands.push_back({QLatin1String(row.command),
                            QCoreApplication::translate("PanelCommands", row.text),
                            QStringLiteral("view"),
                            {QKeySequence(row.key)},
                            row.run,
                            [panels, name = row.panel] { return panels->IsVisible(name); }});
}
