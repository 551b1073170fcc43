// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectChange.h"

#include <QDeadlineTimer>
#include <QUndoCommand>
#include <QVector>

class Project;

/// A step of a project: its changes, which are made in order and taken back in the order turned round.
class ProjectCommand : public QUndoCommand
{
public:
    /// Steps of one @p mergeKey that follow each other within a second are one; with an empty one it stays
    /// its own.
    ProjectCommand(Project* project, const QString& text, const QVector<ProjectChange>& changes,
                   const QString& mergeKey);

    void undo() override;
    void redo() override;
    int id() const override;
    bool mergeWith(const QUndoCommand* other) override;

private:
    Project* mProject;
    QVector<ProjectChange> mChanges;
    QString mMergeKey;
    QDeadlineTimer mMergeUntil;
};
