// SPDX-License-Identifier: MIT
#include "project/FolderObject.h"

FolderObject::FolderObject(const QString& name, FolderKind kind, const QUuid& id)
    : ProjectObject(id), mName(name), mKind(kind)
{
    SetExpanded(true);
}

FolderKind FolderObject::Kind() const
{
    return mKind;
}

void FolderObject::SetName(const QString& name)
{
    mName = name;
}

const FolderObject::Children& FolderObject::ChildList() const
{
    return mChildren;
}

void FolderObject::Insert(int index, const std::shared_ptr<ProjectObject>& child)
{
    const bool isInside = index >= 0 && index <= mChildren.size();
    mChildren.insert(isInside ? index : mChildren.size(), child);
    child->SetParentID(GetID());
}

int FolderObject::Take(const QUuid& id, int hint)
{
    const bool isThere = hint >= 0 && hint < mChildren.size() && mChildren[hint]->GetID() == id;
    const int index = isThere ? hint : IndexOf(id);
    if (index >= 0)
        mChildren.removeAt(index);
    return index;
}

int FolderObject::IndexOf(const QUuid& id) const
{
    for (int index = 0; index < mChildren.size(); ++index)
    {
        if (mChildren[index]->GetID() == id)
            return index;
    }
    return -1;
}

bool FolderObject::Takes(int type, bool ofSource) const
{
    switch (mKind)
    {
    case FolderKind::Plain:
        return true;
    case FolderKind::Folders:
        return type == 0;
    case FolderKind::Sources:
        return type == 1 && ofSource;
    case FolderKind::Timelines:
        return type == 1 && !ofSource;
    case FolderKind::Root:
        break;
    }
    return false;
}

const QString& FolderObject::GetName()
{
    return mName;
}

QList<std::shared_ptr<ProjectObject>> FolderObject::GetChildren()
{
    return mChildren;
}

bool FolderObject::IsProtected()
{
    return mKind == FolderKind::Root;
}

bool FolderObject::IsFolderBin()
{
    return mKind == FolderKind::Folders;
}

bool FolderObject::IsSourceBin()
{
    return mKind == FolderKind::Sources;
}

bool FolderObject::IsTimelineBin()
{
    return mKind == FolderKind::Timelines;
}
