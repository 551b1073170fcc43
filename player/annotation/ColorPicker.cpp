// SPDX-License-Identifier: MIT
#include "annotation/ColorPicker.h"

#include "annotation/FullPaint.h"
#include "annotation/StrokeController.h"
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

#include <cmath>

ColorPicker::ColorPicker(ViewerWidget* viewer, const StrokeController* strokes, PictureSizeOf pictureSizeOf,
                         QObject* parent)
    : QObject(parent), mViewer(viewer), mStrokes(strokes), mPictureSizeOf(std::move(pictureSizeOf))
{
}

bool ColorPicker::Press(const QPoint& globalPos)
{
    if (Settings::annotationTool != Eyedropper)
        return false;
    // Fetching it is a paint, which must not be one of the annotations alone.
    RequestFullPaint(mViewer, true);
    mShown = mViewer->GetImage();
    PickAt(globalPos);
    return true;
}

bool ColorPicker::Move(const QPoint& globalPos)
{
    if (mShown.isNull())
        return false;
    PickAt(globalPos);
    return true;
}

bool ColorPicker::Release()
{
    const bool wasPicking = !mShown.isNull();
    mShown = QImage();
    return wasPicking;
}

void ColorPicker::PickAt(const QPoint& globalPos)
{
    const int index = mStrokes->ViewerAt(globalPos);
    const QSize pictureSize = mPictureSizeOf(index);
    const QPointF point = mViewer->ToDrawSpace(index, globalPos);
    if (pictureSize.isEmpty() || !std::isfinite(point.x()) || !std::isfinite(point.y()))
        return;
    const double halfHeight = 0.5 * pictureSize.height() / pictureSize.width();
    if (std::abs(point.x()) > 0.5 || std::abs(point.y()) > halfHeight)
        return;
    const QWidget* const backEnd = BackEndOf(mViewer);
    const QPoint local = backEnd->mapFromGlobal(globalPos);
    // A back end may hand its picture out in the pixels of the screen.
    const QPoint pixel(local.x() * mShown.width() / std::max(backEnd->width(), 1),
                       local.y() * mShown.height() / std::max(backEnd->height(), 1));
    if (!mShown.rect().contains(pixel))
        return;
    const QColor color(mShown.pixel(pixel));
    Settings::drawColor = color;
    Q_EMIT ColorPicked(color);
}
