// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <cstdint>

class FrameLoader;
class PlaybackController;
class TimelineWidget;

/// Ties the global and the range timeline to playback: what the user asks of them moves the playhead and the
/// range, and they show where both are.
class TimelineBinding : public QObject
{
    Q_OBJECT

public:
    /// @p timelineParent becomes the parent of both timelines.
    TimelineBinding(PlaybackController* playback, FrameLoader* loader, QWidget* timelineParent,
                    QObject* parent);

    TimelineWidget* GlobalTimeline() const;
    TimelineWidget* RangeTimeline() const;

public Q_SLOTS:
    /// Repaints both, after bookmarks have changed.
    void UpdateBookmarks();

Q_SIGNALS:
    /// The user moved the global timeline above (@p top) or below the viewers.
    void GlobalPositionChangeRequested(bool top);
    /// The same of the range timeline.
    void RangePositionChangeRequested(bool top);

private Q_SLOTS:
    void OnLeadingTimelineChanged();
    void OnSteppedChanged(bool stepped);
    void UpdateCachedRange();

private:
    void ConnectTimeline(TimelineWidget* timeline);

    PlaybackController* mPlayback;
    FrameLoader* mLoader;
    TimelineWidget* mGlobalTimeline;
    TimelineWidget* mRangeTimeline;
};
