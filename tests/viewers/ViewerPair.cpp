// SPDX-License-Identifier: MIT
#include "viewers/ViewerPair.h"

#include "support/PictureCompare.h"

#include <QApplication>
#include <QCursor>
#include <QRandomGenerator>
#include <QtTest>

namespace
{

QByteArray ImageDifference(const char* name, const QImage& actual, const QImage& expected, int tolerance)
{
    if (actual.isNull() && expected.isNull())
        return {};
    if (actual.isNull() || expected.isNull())
        return QByteArray(name) + (actual.isNull() ? " is null" : " is not null");
    if (actual.format() != expected.format())
        return QByteArray(name) + " has another format";
    const QByteArray difference = PictureDifference(actual, expected, tolerance);
    return difference.isEmpty() ? QByteArray() : QByteArray(name) + ": " + difference;
}

/// A window of its own to hold Ctrl in: the window under test must not be shown, nor painted by itself.
QWidget& KeyboardWindow()
{
    static QWidget* const window = []
    {
        auto* const made = new QWidget;
        made->resize(50, 50);
        made->show();
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, made, &QWidget::hide);
        return made;
    }();
    return *window;
}

} // namespace

ViewerPair::ViewerPair(const QSize& size, const QPoint& position)
{
    window.resize(size + QSize(40, 30));
    window.move(31, 17);
    viewer = new SoftwareViewerProbe(&window);
    viewer->move(position);
    Resize(size);
}

ViewerPair::~ViewerPair() = default;

void ViewerPair::Resize(const QSize& size)
{
    viewer->setFixedSize(size);
    viewer->resize(size);
    model.size = size;
}

void ViewerPair::SetImage(int index, const QImage& image)
{
    viewer->SetImage(index, image, false);
    for (int i = 0; i < 2; ++i)
    {
        if (index < 0 || index == i)
            model.pictures[i] = image;
    }
}

void ViewerPair::SetOverlay(int index, const FrameData* current, const QList<const FrameData*>& previous,
                            const QList<const FrameData*>& next)
{
    viewer->SetOverlayData(index, current, previous, next);
    model.current[index] = current;
    model.previous[index] = previous;
    model.next[index] = next;
}

void ViewerPair::SetLayout(ViewerLayout layout)
{
    viewer->SetViewerLayout(layout);
    model.layout = layout;
}

void ViewerPair::SetSingle(int index)
{
    viewer->SetSingleViewerIndex(index);
    model.single = index;
}

void ViewerPair::SetActive(int index)
{
    viewer->SetActiveAnnotationViewerIndex(index);
    model.active = index;
}

void ViewerPair::SetVisible(bool visible)
{
    viewer->SetAnnotationsVisible(visible);
    model.visible = visible;
}

void ViewerPair::SetStore(bool store)
{
    viewer->SetStoreLastImageEnabled(store);
    model.store = store;
    if (!store)
        model.stored = QImage();
}

void ViewerPair::SetAnnotationsOnly()
{
    viewer->SetAnnotationsOnly(true);
    model.annotationsOnly = true;
}

void ViewerPair::MoveCursor(const QPoint& position, bool control)
{
    // Moving the cursor queues an event with the keys as they are, so the key comes after it.
    QCursor::setPos(viewer->mapToGlobal(position));
    QApplication::processEvents();
    qt_handleKeyEvent(KeyboardWindow().windowHandle(), control ? QEvent::KeyPress : QEvent::KeyRelease,
                      Qt::Key_Control, control ? Qt::ControlModifier : Qt::NoModifier);
    QApplication::processEvents();
    model.cursor = position;
    model.control = control;
}

QImage ViewerPair::PaintViewer()
{
    QImage canvas(viewer->size(), QImage::Format_RGB32);
    canvas.fill(QColor(255, 0, 255));
    viewer->render(&canvas, QPoint(), QRegion(), QWidget::RenderFlags());
    return canvas;
}

QByteArray ViewerPair::Paint(int tolerance)
{
    const bool control = QGuiApplication::queryKeyboardModifiers() & Qt::ControlModifier;
    if (control != model.control)
        return "Ctrl is not as the test set it";
    const QByteArray picture = ImageDifference("the picture", PaintViewer(), model.Paint(), tolerance);
    return picture.isEmpty() ? StateDifference(tolerance) : picture;
}

QByteArray ViewerPair::StateDifference(int tolerance) const
{
    const auto differs = [](const char* name, int actual, int expected)
    {
        return actual == expected ? QByteArray()
                                  : QByteArray(name) + " is " + QByteArray::number(actual) + ", expected " +
                                        QByteArray::number(expected);
    };
    QList<QByteArray> texts;
    for (int i = 0; i < 2; ++i)
    {
        texts << differs("lastDrawIndex", viewer->mLastDrawIndex[i], model.lastDraw[i]);
        texts << differs("lastPointIndex", viewer->mLastPointIndex[i], model.lastPoint[i]);
        texts << differs("the display width", int(viewer->mDisplaySizes[i].x()), model.shown[i].width());
        texts << differs("the display height", int(viewer->mDisplaySizes[i].y()), model.shown[i].height());
    }
    texts << differs("annotationsOnly", viewer->mAnnotationsOnly, model.annotationsOnly);
    texts << differs("GetImageDisplayWidth()", viewer->GetImageDisplayWidth(), model.imageDisplay.width());
    texts << differs("GetImageDisplayHeight()", viewer->GetImageDisplayHeight(), model.imageDisplay.height());
    texts << ImageDifference("lastImage", viewer->mLastImage, model.stored, tolerance);
    texts << ImageDifference("annotationImage", viewer->mAnnotationImage, model.overlay, tolerance);
    texts << ImageDifference("annotationScratchImage", viewer->mAnnotationScratchImage, model.scratch,
                             tolerance);
    for (const QByteArray& text : texts)
    {
        if (!text.isEmpty())
            return text;
    }
    return {};
}

QImage NoisePicture(const QSize& size, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
    {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, 0xff000000u | random.generate());
    }
    return image;
}

DrawData MakeDrawing(DrawType type, const QList<QPointF>& points, float width, const QColor& color)
{
    DrawData drawing;
    drawing.type = type;
    drawing.points = points;
    drawing.width = width;
    drawing.color = color;
    return drawing;
}

FrameData MakeFrame(const QList<DrawData>& drawings)
{
    FrameData frame;
    frame.drawData = drawings;
    frame.firstIndex = 0;
    frame.lastIndex = drawings.size() - 1;
    return frame;
}

QRect PaintedBounds(const QImage& image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y)
    {
        for (int x = 0; x < image.width(); ++x)
        {
            if (image.pixel(x, y) != 0xff000000u)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}
