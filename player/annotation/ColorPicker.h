// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QObject>
#include <QPoint>
#include <QSize>

#include <functional>

class StrokeController;
class ViewerWidget;

/// The eyedropper: takes the colour that a viewer shows under the cursor, drawings included, as the drawing
/// colour. Beside the picture it takes none.
class ColorPicker : public QObject
{
    Q_OBJECT

public:
    /// Tells the size of the picture that a viewer (0 or 1) shows; an empty one for none.
    using PictureSizeOf = std::function<QSize(int viewer)>;

    ColorPicker(ViewerWidget* viewer, const StrokeController* strokes, PictureSizeOf pictureSizeOf,
                QObject* parent);

    /// Picks the colour at @p globalPos if the tool is the eyedropper. Returns whether it is.
    bool Press(const QPoint& globalPos);
    /// Picks on while the button is held. Returns whether it is.
    bool Move(const QPoint& globalPos);
    /// Ends picking. Returns whether there was any.
    bool Release();

Q_SIGNALS:
    /// Settings::drawColor is now @p color.
    void ColorPicked(const QColor& color);

private:
    void PickAt(const QPoint& globalPos);

    ViewerWidget* mViewer;
    const StrokeController* mStrokes;
    PictureSizeOf mPictureSizeOf;
    /// What the viewers showed when the button went down.
    QImage mShown;
};
