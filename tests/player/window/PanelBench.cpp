// SPDX-License-Identifier: MIT
#include "window/PanelBench.h"

#include "support/InputEvents.h"
#include "views/TimelineListView.h"

#include <QCursor>
#include <QtTest>

PanelBench::PanelBench() : area(new QWidget)
{
    QCursor::setPos(799, 599);
    area.setGeometry(0, 0, 780, 580);
    area.show();
    area.activateWindow();
    if (!QTest::qWaitForWindowActive(&area))
        qWarning("the window was not shown");
}

std::shared_ptr<MediaTimeline> PanelBench::AddSource(const QString& name, int frames)
{
    MediaInfo info;
    info.path = QStringLiteral("/media/%1").arg(name);
    info.width = 320;
    info.height = 180;
    info.frameCount = frames;
    info.frameRate = FrameRate{24, 1};
    info.duration = info.frameRate.FrameToTime(frames + 1);
    return project.FindSource(project.AddSource(info));
}

std::shared_ptr<ElementTimeline> PanelBench::AddTimeline(const QStringList& names)
{
    QList<QUuid> sources;
    for (const QString& name : names)
        sources << AddSource(name)->GetID();
    const QUuid id = project.AddTimeline();
    project.InsertElements(id, sources);
    return project.FindElementTimeline(id);
}

QStringList PanelBench::Names() const
{
    QStringList names;
    for (int row = 0; row < Rows()->topLevelItemCount(); ++row)
        names << Rows()->topLevelItem(row)->text(0);
    return names;
}

QList<int> PanelBench::SelectedRows() const
{
    QList<int> rows;
    for (int row = 0; row < Rows()->topLevelItemCount(); ++row)
    {
        if (Rows()->topLevelItem(row)->isSelected())
            rows << row;
    }
    return rows;
}

void PanelBench::Select(const QList<int>& rows)
{
    // With the mouse, the rows after the first with Ctrl.
    for (int index = 0; index < rows.size(); ++index)
    {
        QWidget* const viewport = Rows()->viewport();
        const QPoint place = Rows()->visualItemRect(Rows()->topLevelItem(rows.at(index))).center();
        const Qt::KeyboardModifiers modifiers = index > 0 ? Qt::ControlModifier : Qt::NoModifier;
        InputEvents::Press(viewport, place, Qt::LeftButton, modifiers);
        InputEvents::Release(viewport, place, Qt::LeftButton, modifiers);
    }
}

void PanelBench::Click(QWidget* widget)
{
    InputEvents::Press(widget, widget->rect().center());
    InputEvents::Release(widget, widget->rect().center());
}
