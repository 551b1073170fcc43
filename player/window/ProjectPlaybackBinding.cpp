// SPDX-License-Identifier: MIT
#include "window/ProjectPlaybackBinding.h"

#include "playback/PlaybackController.h"
#include "project/Project.h"
#include "project/ProjectTimeline.h"

#include <utility>

ProjectPlaybackBinding::ProjectPlaybackBinding(Project* project, PlaybackController* playback,
                                               QObject* parent)
    : QObject(parent), mProject(project), mPlayback(playback)
{
    connect(project, SIGNAL(TimelineChanged(QUuid)), this, SLOT(OnTimelineChanged(QUuid)));
    connect(project, SIGNAL(PropertiesChanged(QUuid)), this, SLOT(OnPropertiesChanged(QUuid)));
    connect(project, SIGNAL(Changed()), this, SLOT(OnChanged()));
}

void ProjectPlaybackBinding::OnTimelineChanged(const QUuid& id)
{
    mPending << id;
}

void ProjectPlaybackBinding::OnPropertiesChanged(const QUuid& id)
{
    // Of the properties, only the range is playback's business.
    const std::shared_ptr<ProjectTimeline>& lead = mPlayback->LeadingTimeline();
    if (lead && lead->GetID() == id && lead->Range() != mPlayback->Range())
        mPending << id;
}

void ProjectPlaybackBinding::OnChanged()
{
    const QSet<QUuid> pending = std::exchange(mPending, {});
    for (const QUuid& id : pending)
        mPlayback->RefreshTimeline(mProject->FindTimeline(id).get());
}
