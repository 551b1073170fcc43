// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSet>
#include <QUuid>

class PlaybackController;
class Project;

/// Has playback go on with what the project's timelines are now, once for each step of the undo stack.
class ProjectPlaybackBinding : public QObject
{
    Q_OBJECT

public:
    ProjectPlaybackBinding(Project* project, PlaybackController* playback, QObject* parent);

private Q_SLOTS:
    void OnTimelineChanged(const QUuid& id);
    void OnPropertiesChanged(const QUuid& id);
    void OnChanged();

private:
    Project* mProject;
    PlaybackController* mPlayback;
    QSet<QUuid> mPending;
};
