// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPoint>

#include <optional>

class AnnotationController;
class PlaybackController;
class QMouseEvent;
class ViewerWidget;

/// Hands the mouse over the viewers to the annotation tools while drawing is on, and into scrubbing while it
/// is off.
class ViewerInput : public QObject
{
    Q_OBJECT

public:
    ViewerInput(ViewerWidget* viewer, AnnotationController* annotation, PlaybackController* playback,
                QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The user pressed a button over viewer @p viewer.
    void ViewerPressed(int viewer);
    /// The viewers are to compose their pictures anew: their size changed, or the cursor's preview is to go.
    void FullPaintNeeded();

public Q_SLOTS:
    /// Begins or ends scrubbing, as the viewer reports the left button, unless a stroke is being drawn.
    void OnScrubStateChanged(bool enabled);

private:
    void Press(const QMouseEvent& event);
    void Move(const QMouseEvent& event);
    void Release(const QMouseEvent& event);
    void Scrub(const QPoint& globalPos);
    /// Puts the cursor at the other edge of the screen when it has come to one, so that scrubbing goes on.
    void WrapCursor(const QPoint& globalPos);

    ViewerWidget* mViewer;
    AnnotationController* mAnnotation;
    PlaybackController* mPlayback;
    bool mScrubbing = false;
    bool mScrubMoved = false;
    QPoint mPressPos;
    /// Where the cursor was put and hasn't been seen yet.
    std::optional<int> mWrappedTo;
    int mPressFrame = 1;
};
