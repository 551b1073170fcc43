// SPDX-License-Identifier: MIT
#pragma once

#include "timelines/GlobalTimelineWidget.h"

/// The timeline that shows the playback range alone, stretched over its width, 46 pixels high.
///
/// Its side panels are the handles: dragging in one jogs that end of the range, a frame for each 20 pixels of
/// the mouse's travel.
class RangeTimelineWidget : public GlobalTimelineWidget
{
    Q_OBJECT

public:
    explicit RangeTimelineWidget(QWidget* parent = nullptr);

    // The override below would hide the slot of the menu.
    using GlobalTimelineWidget::SetDisplayType;

public Q_SLOTS:
    void SetDisplayType(TimelineDisplayType displayType) override;
    void ShowTimeBookmarks(bool show) override;
    /// Does nothing: this timeline never draws range bookmarks.
    void ShowRangeBookmarks(bool show) override;
    void ShowCache(bool show) override;
    bool ShowRangeBookmarksInMenu() override;

protected:
    void UpdateMenuActions(int x) override;

    void DrawElements(QPainter* painter) override;
    void DrawPlayhead(QPainter* painter) override;
    void DrawHoverMarker(QPainter* painter) override;
    void DrawTimeBookmarks(QPainter* painter) override;

    void UpdateFrameWidth() override;

    int FrameToPixel(int frame) override;
    int PixelToFrame(int x) override;

    bool HitsRange(QPoint pos) override;
    bool HitsRangeStart(QPoint pos) override;
    bool HitsRangeEnd(QPoint pos) override;

    int SidePanelWidth() override { return 50; }
    int SidePanelInset() override { return 6; }
    int LabelRowHeight() override { return 14; }
    int ElementStripHeight() override { return 1; }
    int PlayheadWidth() override { return 2; }
    int PlayheadHeight() override { return 23; }
    int FrameSpanY() override { return mPlayheadY; }
    int FrameSpanHeight() override { return 23; }
    int LabelBoxWidth() override { return 200; }
    int SmallFontSize() override { return 8; }
    int PositionFontSize() override { return 12; }

    QColor ElementStripColor() override { return QColor(64, 64, 64, 255); }
    QColor ElementStripAltColor() override { return QColor(74, 74, 74, 255); }
    QColor PlayheadColor() override { return QColor(255, 255, 255, 200); }
    QColor FrameSpanColor() override { return QColor(255, 255, 255, 127); }
    QColor PositionTextColor() override { return QColor(255, 255, 255, 200); }
    QColor ScrubBarColor() override { return QColor(140, 140, 140, 255); }
    QColor ScrubBarAltColor() override { return QColor(160, 160, 160, 255); }
    QColor ScrubBarHighlightColor() override { return QColor(200, 200, 200, 255); }
    QColor InfoTextColor() override { return QColor(140, 140, 140, 255); }
    QColor CacheColor() override { return QColor(0, 54, 143, 127); }

    /// The numbers of the range's first and last frame, facing each other across the bar.
    virtual void DrawRangeLimits(QPainter* painter);

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

    /// Moves the dragged end by the mouse's travel since the last step.
    void JogRangeEnd(QMouseEvent* event);

    int mJogStartX = 0;
};
