// SPDX-License-Identifier: MIT
#pragma once

#include "host/ViewerLayout.h"

#include <QImage>
#include <QList>
#include <QPointF>

struct FrameData;

/// What ViewerWidget forwards to: one widget that shows the pictures of both viewers and their annotations.
class ViewerBackEnd
{
public:
    virtual ~ViewerBackEnd() = default;

    /// Shows @p image in viewer @p index; -1 means both. @p linear is kept for the interface's sake and
    /// changes nothing on screen. An index of 2 or more is logged as an error.
    virtual void SetImage(int index, const QImage& image, bool linear) = 0;
    /// Takes the annotations of viewer @p index (0 or 1; another is ignored): those of the frame shown, or
    /// null, and the ghosts before and after it, each list with the frame furthest away first. The records
    /// stay the host's. Requests no repaint.
    virtual void SetOverlayData(int index, const FrameData* current, const QList<const FrameData*>& previous,
                                const QList<const FrameData*>& next) = 0;
    /// The picture as displayed, overlay included, at display size.
    virtual QImage GetImage() = 0;
    /// Size on screen, in logical pixels, of the picture painted last.
    virtual int GetImageDisplayWidth() const = 0;
    virtual int GetImageDisplayHeight() const = 0;
    /// The viewer under the global point @p pos; 0 outside.
    virtual int GetViewerIndexFromGlobal(const QPoint& pos) = 0;
    /// Repaints in @p layout.
    virtual void SetViewerLayout(ViewerLayout layout) = 0;
    /// Chooses the viewer of the single layout; anything but 0 and 1 is taken as 0. Requests no repaint.
    virtual void SetSingleViewerIndex(int index) = 0;
    /// Chooses the viewer that is drawn in, which alone takes the incremental overlay path.
    virtual void SetActiveAnnotationViewerIndex(int index) = 0;
    /// Repaints with or without annotations, ghosts and cursor preview.
    virtual void SetAnnotationsVisible(bool visible) = 0;
    /// Keeps a copy of the picture at each full paint, for annotation-only repaints; off drops it at once.
    virtual void SetStoreLastImageEnabled(bool enabled) = 0;
    /// Makes the next paint reuse the stored picture and bring the overlay alone up to date.
    virtual void SetAnnotationsOnly(bool annotationsOnly) = 0;
    /// The global point @p globalPos in the draw space of viewer @p index (0 or 1).
    virtual QPointF ToDrawSpace(int index, const QPoint& globalPos) = 0;
    /// The point @p drawPos of the draw space of viewer @p index (0 or 1) in pixels of the back end.
    virtual QPointF FromDrawSpace(int index, const QPointF& drawPos) = 0;
    /// Whether the back end can draw.
    virtual bool IsInitialized() const = 0;
};
