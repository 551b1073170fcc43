// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectContent.h"
#include "project/TimelineState.h"

#include <QUuid>

#include <memory>

class MediaSource;

/// One part of a step: a change of one object, which can be turned round.
struct ProjectChange
{
    enum class Kind
    {
        /// @c object comes, with all that is below it, to @c place.
        Insert,
        /// @c object goes from @c place.
        Remove,
        /// The object goes from @c place to @c newPlace.
        Move,
        Rename,
        /// What the user can change of a timeline.
        State,
        /// The drawings of one frame, changed by a step that isn't the project's; can't be turned round.
        Drawings,
        /// The marks and range bookmarks in @c state, changed by a step that isn't the project's; can't be
        /// turned round.
        Bookmarks,
        /// The medium of a source timeline.
        Medium,
        /// The default timeline.
        Default,
        Settings
    };

    /// A place in the tree.
    struct Place
    {
        QUuid parent;
        int index = -1;
    };

    template<typename Value>
    struct Values
    {
        Value before;
        Value after;
    };

    Kind kind = Kind::Rename;
    /// The object that is changed; null for a change of the whole project.
    QUuid id;
    std::shared_ptr<ProjectObject> object;
    Place place;
    Place newPlace;
    Values<QString> name;
    Values<std::shared_ptr<const TimelineState>> state;
    Values<std::shared_ptr<const MediaSource>> medium;
    Values<QUuid> defaultTimeline;
    Values<ProjectSettings> settings;
    int frame = 0;
    QList<DrawData> drawings;

    /// The change that takes this one back.
    ProjectChange Inverted() const;
    /// Makes the change in @p content.
    void ApplyTo(ProjectContent& content) const;
};
