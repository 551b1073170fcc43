// SPDX-License-Identifier: MIT
#include "host/ProjectObject.h"

namespace
{

const int ProjectObjectMetaType =
    qRegisterMetaType<std::weak_ptr<ProjectObject>>("std::weak_ptr<ProjectObject>");

} // namespace

ProjectObject::ProjectObject(const QUuid& id, const QUuid& parentID) : mID(id), mParentID(parentID)
{
    static_cast<void>(ProjectObjectMetaType);
}

ProjectObject::~ProjectObject() = default;

const QUuid& ProjectObject::GetID() const
{
    return mID;
}

QUuid ProjectObject::GetParentID() const
{
    return mParentID;
}

void ProjectObject::SetParentID(const QUuid& parentID)
{
    mParentID = parentID;
}

bool ProjectObject::IsExpanded() const
{
    return mExpanded;
}

void ProjectObject::SetExpanded(bool expanded)
{
    mExpanded = expanded;
}

bool ProjectObject::IsSelected() const
{
    return mSelected;
}

void ProjectObject::SetSelected(bool selected)
{
    mSelected = selected;
}

const QString& ProjectObject::GetName()
{
    static const QString noName;
    return noName;
}

int ProjectObject::GetType()
{
    return 0;
}

QList<std::shared_ptr<ProjectObject>> ProjectObject::GetChildren()
{
    return {};
}

bool ProjectObject::IsMissing()
{
    return false;
}

bool ProjectObject::IsProtected()
{
    return false;
}

bool ProjectObject::IsFolderBin()
{
    return false;
}

bool ProjectObject::IsSourceBin()
{
    return false;
}

bool ProjectObject::IsTimelineBin()
{
    return false;
}

bool ProjectObject::IsSourceTimeline()
{
    return false;
}

bool ProjectObject::IsDefault()
{
    return false;
}

int ProjectObject::GetViewerIndex()
{
    return -1;
}

std::weak_ptr<Source> ProjectObject::GetSource()
{
    return {};
}

QList<ElementInfo> ProjectObject::GetElementInfos()
{
    return {};
}

int64_t ProjectObject::GetStartTime()
{
    return 0;
}

int64_t ProjectObject::GetEndTime()
{
    return 0;
}

Bookmarks* ProjectObject::GetBookmarks()
{
    return nullptr;
}

int ProjectObject::TimeToFrame(int64_t time)
{
    Q_UNUSED(time)
    return 1;
}

int64_t ProjectObject::FrameToTime(int frame)
{
    Q_UNUSED(frame)
    return GetStartTime();
}
