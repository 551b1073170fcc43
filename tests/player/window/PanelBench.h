// SPDX-License-Identifier: MIT
#pragma once

#include "media/FrameLoader.h"
#include "playback/PlaybackController.h"
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "views/TimelineListView.h"
#include "views/TimelinePropertiesWidget.h"
#include "window/ElementPanelBinding.h"
#include "window/PanelArea.h"
#include "window/ProjectPlaybackBinding.h"
#include "window/PropertiesBinding.h"

#include <QTreeWidget>

/// A project, playback and the panels between them, in a window without the rest of the player.
class PanelBench
{
public:
    PanelBench();

    /// Adds the source of a medium called @p name, which is nowhere on the disk; returns its timeline.
    std::shared_ptr<MediaTimeline> AddSource(const QString& name, int frames = 24);
    /// Adds a timeline with an element of each source of @p names, of 24 frames; returns it.
    std::shared_ptr<ElementTimeline> AddTimeline(const QStringList& names);
    void Lead(const std::shared_ptr<ProjectTimeline>& timeline) { playback.SetTimeline(0, timeline); }

    QTreeWidget* Rows() const { return elements.List()->findChild<QTreeWidget*>(); }
    /// The names on the rows of the element list.
    QStringList Names() const;
    /// The rows that are selected, from the top.
    QList<int> SelectedRows() const;
    void Select(const QList<int>& rows);
    /// Clicks the middle of @p widget, which is shown, with the mouse.
    static void Click(QWidget* widget);
    void Undo() { project.UndoStack()->undo(); }
    void Redo() { project.UndoStack()->redo(); }

    FrameLoader loader;
    PlaybackController playback{&loader, nullptr};
    Project project{&loader};
    PanelArea area;
    ProjectPlaybackBinding projectPlayback{&project, &playback, nullptr};
    ElementPanelBinding elements{&project, &playback, &area, nullptr};
    PropertiesBinding properties{&project, &playback, &area, nullptr};
};
