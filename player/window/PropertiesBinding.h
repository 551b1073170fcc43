// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectTimeline.h"

#include <QObject>
#include <QPointF>
#include <QUuid>

class PanelArea;
class PlaybackController;
class Project;
class TimelinePropertiesWidget;

/// Ties the form of properties, the panel "properties", to the project and to playback: it shows what belongs
/// to the timeline that leads, and what the user edits there becomes steps of the project's undo stack.
class PropertiesBinding : public QObject
{
    Q_OBJECT

public:
    /// The form goes into the place "properties" of @p panels.
    PropertiesBinding(Project* project, PlaybackController* playback, PanelArea* panels, QObject* parent);

    TimelinePropertiesWidget* Form() const;

public Q_SLOTS:
    /// Makes this the pan and zoom of the timeline that leads; PanZoomChanged() follows. Without a timeline
    /// it is passed on as it is. In ViewerWidget::SetPanAndZoom()'s terms.
    void RequestPanZoom(QPointF panInterpolation, float zoom, bool enabled);

Q_SIGNALS:
    /// The viewers are to show this pan and zoom: of the timeline that leads now, or its new one.
    void PanZoomChanged(QPointF panInterpolation, float zoom, bool enabled);

private Q_SLOTS:
    void ShowLeadingTimeline();
    void OnTimelineChanged(const QUuid& id);
    void OnRefused();
    void ShowRange();
    void ShowSource();
    void OnRangeChangeRequested(int first, int last);
    void OnPanZoomEdited(QPointF panInterpolation, float zoom, bool enabled);
    void OnUseSourceInOutsChanged(bool enabled);
    void OnSourceChangeRequested(QUuid id, QString newPath, QString oldPath);

private:
    const ProjectTimeline* Shown() const;
    void ShowView();

    Project* mProject;
    PlaybackController* mPlayback;
    TimelinePropertiesWidget* mForm;
    /// What PanZoomChanged() told last, and of which timeline.
    QUuid mToldID;
    PanZoom mTold;
};
