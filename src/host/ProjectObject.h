// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenCoreExport.h"
#include "host/ElementInfo.h"
#include "host/MetaTypes.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QUuid>

#include <cstdint>
#include <memory>

class Bookmarks;
class Source;

/// A node of a project: a folder, a timeline or an element.
///
/// The host subclasses it and overrides what its objects have; as it stands, an object is an empty, plain,
/// unselected folder without a name. Objects are held by `std::shared_ptr` and handed to the widgets as
/// `std::weak_ptr<ProjectObject>`, so they may go away between two calls.
class TORVALENCORE_EXPORT ProjectObject
{
public:
    explicit ProjectObject(const QUuid& id = QUuid::createUuid(), const QUuid& parentID = QUuid());
    virtual ~ProjectObject();

    ProjectObject(const ProjectObject&) = delete;
    ProjectObject& operator=(const ProjectObject&) = delete;

    const QUuid& GetID() const;
    /// Identity of the parent; null at the root.
    QUuid GetParentID() const;
    void SetParentID(const QUuid& parentID);

    /// Whether the project tree shows the children. The tree writes it back.
    bool IsExpanded() const;
    void SetExpanded(bool expanded);
    /// Whether the object is selected in its tree. The tree writes it back.
    bool IsSelected() const;
    void SetSelected(bool selected);

    /// Display name.
    virtual const QString& GetName();
    /// 0 folder, 1 timeline, 2 element.
    virtual int GetType();
    /// A folder's children or a timeline's elements, in order.
    virtual QList<std::shared_ptr<ProjectObject>> GetChildren();
    /// Whether the media behind the object can't be found.
    virtual bool IsMissing();
    /// Whether a folder takes no additions and can be neither deleted nor dragged.
    virtual bool IsProtected();
    /// Whether a folder takes only folders; not shown while empty.
    virtual bool IsFolderBin();
    /// Whether a folder takes only source timelines and files.
    virtual bool IsSourceBin();
    /// Whether a folder takes only timelines that stand for no source.
    virtual bool IsTimelineBin();
    /// Whether a timeline stands for one Source.
    virtual bool IsSourceTimeline();
    /// Whether a timeline is the project's default.
    virtual bool IsDefault();
    /// -1 in no viewer, 0 in viewer A, 1 in viewer B.
    virtual int GetViewerIndex();
    /// The source behind the object; empty if there is none.
    virtual std::weak_ptr<Source> GetSource();
    /// A timeline's elements, in order.
    virtual QList<ElementInfo> GetElementInfos();
    /// Microseconds: a timeline's first time, an element's playback time.
    virtual int64_t GetStartTime();
    /// Microseconds: a timeline's end time.
    virtual int64_t GetEndTime();
    /// A timeline's bookmarks, owned by it and never null; null for other objects.
    virtual Bookmarks* GetBookmarks();
    /// The frame, counted from 1, that holds @p time (microseconds).
    virtual int TimeToFrame(int64_t time);
    /// The start time (microseconds) of @p frame, counted from 1; frame 1 starts at GetStartTime().
    virtual int64_t FrameToTime(int frame);

private:
    QUuid mID;
    QUuid mParentID;
    bool mExpanded = false;
    bool mSelected = false;
};

Q_DECLARE_METATYPE(std::weak_ptr<ProjectObject>)
