// SPDX-License-Identifier: MIT
#pragma once

#include "host/ElementInfo.h"
#include "host/TimelineDisplayType.h"
#include "timelines/TimelineWidget.h"

#include <QColor>
#include <QList>
#include <QRect>
#include <QTimer>

class QAction;
struct TimeBookmark;

/// The timeline that maps the whole Timeline object onto its width, 40 pixels high.
///
/// Metrics, colours, mapping and drawing steps are virtual, so that a derived timeline changes numbers and
/// not code.
class GlobalTimelineWidget : public TimelineWidget
{
    Q_OBJECT

public:
    explicit GlobalTimelineWidget(QWidget* parent = nullptr);

    int GetPlaybackFrame() override;
    int GetRangeStartFrame() override;
    int GetRangeEndFrame() override;
    int64_t GetPlaybackTimeAtOffset(int frameOffset) override;
    int64_t GetRangeStartTime() override;
    int64_t GetRangeEndTime() override;
    double GetActualFrameRate() override;
    void SetTimeline(std::weak_ptr<ProjectObject> timelineObject) override;
    void SetPlaybackTime(int64_t playbackTime) override;
    void SetPlaybackRange(int64_t rangeStartTime, int64_t rangeEndTime) override;
    void SetDesiredFrameRate(float desiredFrameRate) override;
    void SetActualFrameRate(float actualFrameRate) override;
    void SetCachedRange(int64_t cacheStartTime, int64_t cacheEndTime) override;
    void SetPlaybackSpeedMultiplier(float multiplier) override;
    void SetSteppedPlaybackEnabled(bool enabled) override;

public Q_SLOTS:
    /// Prints frames as @p displayType, and writes it to the settings.
    virtual void SetDisplayType(TimelineDisplayType displayType);
    /// Each writes its flag to the settings, where every paint reads it, and repaints.
    virtual void ShowTimeBookmarks(bool show);
    virtual void ShowRangeBookmarks(bool show);
    virtual void ShowCache(bool show);
    /// Whether the menu offers range bookmarks.
    virtual bool ShowRangeBookmarksInMenu();

    /// Repaints with the next timer tick.
    void DeferredUpdate();
    void OnUpdateTimerFired();
    /// Says whether playback runs; at 24 frames per second and above the timer then leaves the repaints to
    /// SetPlaybackTime(). The misspelling belongs to the interface.
    void OnPlaybackStateChanaged(bool playing);
    /// Reads elements, start and end from the timeline object again. The host follows with SetPlaybackRange()
    /// and SetPlaybackTime().
    void UpdateElementInfos();
    /// The menu's range entries: each asks for a range that begins or ends at the frame that the entry holds.
    void SetRangeStartToPosition();
    void SetRangeEndToPosition();
    /// Asks for the whole timeline as the playback range.
    void ResetRange();
    /// Takes the display type of the menu entry that sent the signal.
    void SetDisplayType();
    /// Asks the host to move the timeline; the host writes the setting.
    void SetPositionAtTop(bool top);
    void ShowContextMenu(QPoint pos);

protected:
    virtual void UpdateMenuActions(int x);
    virtual void RequestTimeAtPosition(QPoint pos, bool audioScrub);

    virtual void DrawElements(QPainter* painter);
    virtual void DrawScrubBar(QPainter* painter);
    virtual void DrawPlayhead(QPainter* painter);
    virtual void DrawRangePosition(QPainter* painter);
    virtual void DrawHoverMarker(QPainter* painter);
    virtual void DrawTimeBookmarks(QPainter* painter);
    virtual void DrawRangeBookmarks(QPainter* painter);
    virtual void DrawRangeDuration(QPainter* painter);
    virtual void DrawFrameRates(QPainter* painter);

    virtual void UpdateBarLayout();
    virtual void UpdateFrameWidth();
    virtual void UpdateHandleRects();

    virtual int FrameToPixel(int frame);
    virtual int PixelToFrame(int x);
    virtual int TimeToFrame(int64_t time);
    virtual int64_t FrameToTime(int frame);

    virtual bool HitsRange(QPoint pos);
    virtual bool HitsRangeStart(QPoint pos);
    virtual bool HitsRangeEnd(QPoint pos);

    virtual int SidePanelWidth() { return 100; }
    virtual int SidePanelInset() { return 10; }
    virtual int LabelRowHeight() { return 20; }
    virtual int ElementStripHeight() { return 6; }
    virtual int PlayheadWidth() { return 2; }
    virtual int PlayheadHeight() { return 10; }
    virtual int FrameSpanY() { return mScrubBarY; }
    virtual int FrameSpanHeight() { return 8; }
    virtual int LabelBoxWidth() { return 200; }
    virtual int SmallFontSize() { return 8; }
    virtual int PositionFontSize() { return 15; }

    virtual QColor ElementStripColor() { return QColor(64, 64, 64, 255); }
    virtual QColor ElementStripAltColor() { return QColor(74, 74, 74, 255); }
    virtual QColor PlayheadColor() { return QColor(255, 255, 255, 200); }
    virtual QColor FrameSpanColor() { return QColor(255, 255, 255, 127); }
    virtual QColor PositionTextColor() { return QColor(255, 255, 255, 200); }
    virtual QColor ScrubBarColor() { return QColor(140, 140, 140, 255); }
    virtual QColor ScrubBarAltColor() { return QColor(160, 160, 160, 255); }
    virtual QColor ScrubBarHighlightColor() { return QColor(200, 200, 200, 255); }
    virtual QColor InfoTextColor() { return QColor(140, 140, 140, 255); }
    virtual QColor CacheColor() { return QColor(0, 54, 143, 127); }

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

    /// The text of @p frame under the display type.
    QString FormatFrame(int frame);
    /// Moves the ends of the range named by the flags, and the playhead, as far as the mouse stands from the
    /// playhead.
    void DragRange(QPoint pos, bool moveStart, bool moveEnd, bool audioScrub);
    /// Gives the keyboard focus to the parent, if there is one.
    void FocusParent();
    /// Takes the display type from @p setting, a TimelineDisplayType value held within its bounds.
    void TakeDisplayType(int setting);
    /// Draws a flag for each frame bookmark from @p firstTime to @p lastTime.
    void DrawBookmarkFlags(QPainter* painter, int64_t firstTime, int64_t lastTime, const QColor& plainColor,
                           const QColor& annotatedColor);
    /// Writes @p text in a box at @p x, @p y.
    static void DrawLabel(QPainter* painter, int x, int y, int width, int height, int flags,
                          const QString& text);
    /// Gives the painter its own font in @p pointSize.
    static void SetFontSize(QPainter* painter, int pointSize);

    std::weak_ptr<ProjectObject> mTimelineObject;
    QList<ElementInfo> mElementInfos;
    TimelineDisplayType mDisplayType = Seconds;
    int64_t mPlaybackTime = 0;
    int64_t mEndTime = 0;
    int64_t mStartTime = 0;
    int64_t mRangeLimitTime = 0;
    int mFrameCount = 0;
    bool mPlaying = false;
    bool mUpdatePending = false;
    QTimer mUpdateTimer;
    float mSpeedMultiplier = 1.0f;
    bool mSteppedPlayback = false;
    int64_t mRangeStartTime = 0;
    int64_t mRangeEndTime = 0;
    int64_t mCacheStartTime = 0;
    int64_t mCacheEndTime = 0;
    int mPlaybackFrame = 0;
    int mRangeStartFrame = 0;
    int mRangeEndFrame = 0;
    int mCacheStartFrame = 0;
    int mCacheEndFrame = 0;
    float mDesiredFrameRate = 0.0f;
    float mActualFrameRate = 0.0f;

    int mLeftPanelX = 0;
    int mLeftPanelWidth = 0;
    int mBarAreaX = 0;
    int mBarAreaWidth = 0;
    int mRightPanelX = 0;
    int mRightPanelWidth = 0;
    int mLabelRowY = 0;
    int mBodyY = 0;
    int mBodyHeight = 0;
    int mBarX = 0;
    int mElementStripY = 0;
    int mBarWidth = 0;
    int mPlayheadX = 0;
    int mPlayheadY = 0;
    int mLabelOffsetX = 0;
    float mFrameWidth = 0.0f;
    int mScrubBarY = 0;
    int mCacheBarY = 0;
    int mBarStartX = 0;
    int mBarEndX = 0;
    int mHandleY = 0;

    bool mScrubbing = false;
    bool mDraggingRange = false;
    bool mDraggingRangeStart = false;
    bool mDraggingRangeEnd = false;
    int mDragRangeLength = 0;
    bool mPinnedAtStart = false;
    bool mHoverRange = false;
    bool mHoverRangeStart = false;
    bool mHoverRangeEnd = false;
    QRect mRangeRect;
    QRect mRangeStartRect;
    QRect mRangeEndRect;

    QAction* mRangeStartAction = nullptr;
    QAction* mRangeEndAction = nullptr;
    QAction* mResetRangeAction = nullptr;
    QAction* mFrameNumbersGlobalAction = nullptr;
    QAction* mFrameNumbersRangeAction = nullptr;
    QAction* mTimeCodeAction = nullptr;
    QAction* mSecondsAction = nullptr;
    QAction* mPositionAction = nullptr;
    QAction* mTimeBookmarksAction = nullptr;
    QAction* mRangeBookmarksAction = nullptr;
    QAction* mCacheAction = nullptr;

private:
    void CreateActions();
    QAction* CreateAction(const QString& name, const QString& text, bool checkable, const char* signal,
                          const char* slot);
    bool RangeIsWhole() const;
    int RightEdge(int frame);
    bool PlaybackFrameIsAnnotated();
    void DrawFrameMarker(QPainter* painter, int frame, int x, const QColor& markerColor,
                         const QColor& spanColor);
    void DrawFrameLabel(QPainter* painter, int frame, int x);
    void DrawRangeGrip(QPainter* painter, int tipX, int baseX, int barX);
};
