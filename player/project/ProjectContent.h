// SPDX-License-Identifier: MIT
#pragma once

#include "project/ExtraParts.h"
#include "project/FolderObject.h"

#include <QHash>
#include <QString>
#include <QUuid>

#include <memory>

class MediaTimeline;

/// The settings of one project.
struct ProjectSettings
{
    /// Root of relative source paths; may hold Settings::PROJECT_DIRECTORY_VAR, which an empty one stands
    /// for.
    QString sourceRoot;
    /// Frames per second of image sequences.
    double imageSequenceFrameRate = 24.0;
    QString notes;
};

bool operator==(const ProjectSettings& a, const ProjectSettings& b);
bool operator!=(const ProjectSettings& a, const ProjectSettings& b);

/// What a project holds: its objects, settings, and what its file holds besides.
struct ProjectContent
{
    ProjectSettings settings;
    std::shared_ptr<FolderObject> root;
    /// Null for none.
    QUuid defaultTimeline;
    /// Every object that can be reached from the root, the root and elements included, by id.
    QHash<QUuid, std::shared_ptr<ProjectObject>> objects;
    /// What the file holds beyond what this version knows, by the object that it hangs on; under the null id
    /// the file's own.
    QHash<QUuid, ExtraParts> extras;

    /// A project of the three bins, with a default timeline if @p withTimeline.
    static ProjectContent Empty(const ProjectSettings& settings, bool withTimeline);
    /// The child of the root that is of @p kind.
    std::shared_ptr<FolderObject> Bin(FolderKind kind) const;
    /// Enters @p object and all that is below it into the objects.
    void Register(const std::shared_ptr<ProjectObject>& object);
    void Unregister(const std::shared_ptr<ProjectObject>& object);
    /// The source timelines that elements play without being in the tree, in the order of the tree.
    QList<std::shared_ptr<MediaTimeline>> RemovedSources() const;
    /// Makes those missing, whether their files are there or not.
    void MarkRemovedSources();
};
