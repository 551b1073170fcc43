// SPDX-License-Identifier: MIT
#include "project/ProjectCommand.h"

#include "project/Project.h"

#include <algorithm>

namespace
{

/// How long a step takes the next of its kind in, in milliseconds.
constexpr int MergeTime = 1000;
constexpr int ProjectCommandID = 1;

} // namespace

ProjectCommand::ProjectCommand(Project* project, const QString& text, const QVector<ProjectChange>& changes,
                               const QString& mergeKey)
    : QUndoCommand(text), mProject(project), mChanges(changes), mMergeKey(mergeKey), mMergeUntil(MergeTime)
{
}

void ProjectCommand::undo()
{
    QVector<ProjectChange> inverted;
    inverted.reserve(mChanges.size());
    for (auto change = mChanges.crbegin(); change != mChanges.crend(); ++change)
        inverted.append(change->Inverted());
    mProject->Apply(inverted);
}

void ProjectCommand::redo()
{
    mProject->Apply(mChanges);
}

int ProjectCommand::id() const
{
    return mMergeKey.isEmpty() ? -1 : ProjectCommandID;
}

bool ProjectCommand::mergeWith(const QUndoCommand* other)
{
    const auto* const next = dynamic_cast<const ProjectCommand*>(other);
    if (!next || next->mMergeKey != mMergeKey || mMergeUntil.hasExpired() ||
        next->mChanges.size() != mChanges.size())
        return false;
    const bool isSame =
        std::equal(mChanges.begin(), mChanges.end(), next->mChanges.begin(),
                   [](const ProjectChange& a, const ProjectChange& b)
                   { return a.kind == ProjectChange::Kind::State && a.kind == b.kind && a.id == b.id; });
    if (!isSame)
        return false;
    for (int index = 0; index < mChanges.size(); ++index)
        mChanges[index].state.after = next->mChanges[index].state.after;
    mMergeUntil = next->mMergeUntil;
    return true;
}
