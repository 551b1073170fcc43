// SPDX-License-Identifier: MIT
#pragma once

#include "annotation/AnnotationStore.h"
#include "host/Timeline.h"
#include "playback/PlaybackRange.h"
#include "project/TimelineSegment.h"

#include <QPointF>
#include <QSet>

#include <memory>
#include <optional>
#include <vector>

/// How a timeline is panned and zoomed in a viewer, in ViewerWidget::SetPanAndZoom()'s terms.
struct PanZoom
{
    QPointF pan;
    float zoom = 1.0f;
    bool enabled = false;
};

inline bool operator==(const PanZoom& a, const PanZoom& b)
{
    // Compared without tolerance: an equal value is one that was set before.
    return a.pan.x() == b.pan.x() && a.pan.y() == b.pan.y() && !(a.zoom < b.zoom) && !(b.zoom < a.zoom) &&
           a.enabled == b.enabled;
}
inline bool operator!=(const PanZoom& a, const PanZoom& b)
{
    return !(a == b);
}

/// A timeline of the player: stretches of sources at one frame rate, with annotations, bookmarks, a playback
/// range and a place in the viewers.
///
/// Its times are microseconds from 0, the start of frame 1. Its end time is the start of its last frame, so
/// that a playback range from the first to the last frame is the whole timeline.
class ProjectTimeline : public Timeline
{
public:
    explicit ProjectTimeline(const QString& name, const QUuid& id = QUuid::createUuid(),
                             const QUuid& parentID = QUuid());

    /// Frames per second.
    virtual FrameRate Rate() const = 0;
    /// What it shows, in order and without gaps; empty where there is nothing.
    virtual const std::vector<TimelineSegment>& Segments() const = 0;

    /// Number of frames; 0 where there is nothing.
    int FrameCount() const;
    /// The source of the picture on @p frame; null where there is none.
    std::shared_ptr<const MediaSource> SourceAt(int frame) const;

    void SetName(const QString& name);
    void SetDefault(bool isDefault);
    /// Tells which viewer shows the timeline; -1 for none.
    void SetViewerIndex(int viewer);
    const PanZoom& View() const;
    void SetView(const PanZoom& view);

    /// The annotations of the timeline's frames; live on while an undo step holds them.
    const std::shared_ptr<AnnotationStore>& Annotations() const;

    /// The frames that playback stays within; the whole timeline until a range is set.
    PlaybackRange Range() const;
    /// Whether a range was set.
    bool HasRange() const;
    /// A range that covers the whole timeline goes on doing so when the timeline changes.
    void SetRange(const PlaybackRange& range);

    /// The range as it was set, however long the timeline is now; none for the whole timeline.
    std::optional<PlaybackRange> RangeAsSet() const;
    void SetRangeAsSet(const std::optional<PlaybackRange>& range);

    /// Frames that the user marked, apart from those that are marked for their drawings.
    const QSet<int>& MarkedFrames() const;
    /// Marks @p frame or takes its mark away; drawings keep its bookmark.
    void SetMarked(int frame, bool marked);
    void SetMarkedFrames(const QSet<int>& frames);
    /// Marks @p frame, or takes its mark away unless it carries drawings.
    void ToggleBookmark(int frame);
    /// Brings the bookmark of @p frame in line with its drawings: a frame with drawings has one that carries
    /// them; without any, the bookmark that they made goes with them.
    void UpdateAnnotationBookmark(int frame);
    /// The same for every frame, after marks and drawings have changed at large.
    void RebuildFrameBookmarks();

    const QString& GetName() override;
    bool IsDefault() override;
    int GetViewerIndex() override;
    QList<ElementInfo> GetElementInfos() override;
    int64_t GetStartTime() override;
    int64_t GetEndTime() override;
    /// Times outside the timeline belong to its first or last frame; 1 where there is none.
    int TimeToFrame(int64_t time) override;
    int64_t FrameToTime(int frame) override;

private:
    QString mName;
    std::shared_ptr<AnnotationStore> mAnnotations = std::make_shared<AnnotationStore>();
    /// Last 0 stands for the whole timeline.
    PlaybackRange mRange{1, 0};
    PanZoom mView;
    QSet<int> mMarkedFrames;
    int mViewerIndex = -1;
    bool mDefault = false;
};
