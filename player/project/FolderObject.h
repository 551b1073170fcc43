// SPDX-License-Identifier: MIT
#pragma once

#include "host/ProjectObject.h"

/// What a folder of the project is for.
enum class FolderKind
{
    /// Takes everything.
    Plain,
    /// Holds the bins; views don't show it.
    Root,
    /// The bins: each takes objects of its kind.
    Folders,
    Sources,
    Timelines
};

/// A folder of the project with its children, in order.
class FolderObject : public ProjectObject
{
public:
    explicit FolderObject(const QString& name, FolderKind kind = FolderKind::Plain,
                          const QUuid& id = QUuid::createUuid());

    FolderKind Kind() const;
    void SetName(const QString& name);

    using Children = QList<std::shared_ptr<ProjectObject>>;
    const Children& ChildList() const;
    /// Puts @p child at @p index (clamped; below 0 is the end) and makes this its parent.
    void Insert(int index, const std::shared_ptr<ProjectObject>& child);
    /// Takes the child with @p id out, which is looked for at @p hint first. Returns the index that it had,
    /// -1 if there is none.
    int Take(const QUuid& id, int hint = -1);
    /// The index of the child with @p id; -1 if there is none.
    int IndexOf(const QUuid& id) const;
    /// Whether the folder takes objects of type @p type (0 folder, 1 timeline); @p ofSource says that it is
    /// the timeline of a source.
    bool Takes(int type, bool ofSource) const;

    const QString& GetName() override;
    QList<std::shared_ptr<ProjectObject>> GetChildren() override;
    /// The root and the bins stay what and where they are. Of these the root alone is protected, which takes
    /// no additions.
    bool IsProtected() override;
    bool IsFolderBin() override;
    bool IsSourceBin() override;
    bool IsTimelineBin() override;

private:
    QString mName;
    FolderKind mKind;
    Children mChildren;
};
