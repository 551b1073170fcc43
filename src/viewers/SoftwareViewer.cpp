// SPDX-License-Identifier: MIT
#include "viewers/SoftwareViewer.h"

#include "host/Logger.h"
#include "host/Settings.h"
#include "kit/VectorState.h"

#include <QPainter>

SoftwareViewer::SoftwareViewer(QWidget* parent) : QWidget(parent), AnnotationOverlay(this)
{
    setSizePolicy(QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding, QSizePolicy::DefaultType));
}

void SoftwareViewer::SetImage(int index, const QImage& image, bool linear)
{
    if (index < 0)
    {
        SetImage(0, image, linear);
        SetImage(1, image, linear);
        return;
    }
    if (index >= ViewerCount)
    {
        Logger::GetInstance()->Error("Viewer index out of range");
        return;
    }
    mImages[index] = image.convertToFormat(QImage::Format_RGB32);
    mLinearFlags[index] = linear;
    update();
}

QImage SoftwareViewer::GetImage()
{
    QImage image(size(), QImage::Format_ARGB32);
    QPainter painter(&image);
    render(&painter, QPoint(0, 0), QRegion(), QWidget::DrawWindowBackground | QWidget::DrawChildren);
    return image;
}

int SoftwareViewer::GetImageDisplayWidth() const
{
    return mImageDisplayWidth;
}

int SoftwareViewer::GetImageDisplayHeight() const
{
    return mImageDisplayHeight;
}

bool SoftwareViewer::IsInitialized() const
{
    return true;
}

void SoftwareViewer::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    SettlePaintFlags();
    {
        // Two painters on one widget fail in silence: this one ends before the overlay opens its own.
        QPainter painter(this);
        if (mAnnotationsOnly)
            PaintStoredPicture(painter);
        else
            PaintPictures(painter);
    }
    if (!mAnnotationsOnly)
        ResetOverlayCache();
    FinishPaint();
}

void SoftwareViewer::PaintStoredPicture(QPainter& painter)
{
    if (!QRect(QPoint(0, 0), mLastImage.size()).contains(rect()))
        painter.fillRect(rect(), Qt::black);
    painter.setRenderHint(QPainter::Antialiasing);
    // The stored picture is opaque. Read as a picture without alpha it gives the same, and is copied instead
    // of blended.
    painter.drawImage(0, 0,
                      QImage(mLastImage.constBits(), mLastImage.width(), mLastImage.height(),
                             mLastImage.bytesPerLine(), QImage::Format_RGB32));
}

void SoftwareViewer::PaintPictures(QPainter& painter)
{
    painter.fillRect(rect(), Qt::black);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainter storePainter;
    if (mStoreLastImage)
    {
        mLastImage = QImage(size(), QImage::Format_ARGB32);
        storePainter.begin(&mLastImage);
        storePainter.fillRect(rect(), Qt::black);
        storePainter.setRenderHint(QPainter::Antialiasing);
    }

    const QSize slotSize(mViewerLayout == Horizontal ? width() / 2 : width(),
                         mViewerLayout == Vertical ? height() / 2 : height());
    if (mViewerLayout == Single)
    {
        PaintPicture(mSingleViewerIndex, slotSize, painter, storePainter);
        return;
    }
    for (int index = 0; index < ViewerCount; ++index)
        PaintPicture(index, slotSize, painter, storePainter);
}

void SoftwareViewer::PaintPicture(int index, const QSize& slotSize, QPainter& painter, QPainter& storePainter)
{
    const QImage& image = mImages[index];
    if (image.isNull())
        return;
    const QSize fitted = image.size().scaled(slotSize, Qt::KeepAspectRatio);
    VectorState::ClearUpperHalves();
    const QImage scaled = image.scaled(fitted, Qt::KeepAspectRatio, Qt::SmoothTransformation);

    int x = static_cast<int>(static_cast<float>(slotSize.width() - scaled.width()) * 0.5f);
    int y = static_cast<int>(static_cast<float>(slotSize.height() - scaled.height()) * 0.5f);
    // Side by side, each picture sits one pixel nearer the middle; stacked, both sit one pixel higher. The
    // layouts are not mirror images of each other, and that is meant.
    if (mViewerLayout == Horizontal)
        x += slotSize.width() * index + (index == 0 ? 1 : -1);
    else if (mViewerLayout == Vertical)
        y += slotSize.height() * index - 1;

    if (!Settings::onlyDisplayAnnotations)
    {
        painter.drawImage(x, y, scaled);
        if (storePainter.isActive())
            storePainter.drawImage(x, y, scaled);
    }
    // Also with the picture hidden, so that annotations keep their size.
    mDisplaySizes[index] = QPointF(scaled.width(), scaled.height());
    if (mViewerLayout == Single || index == 0)
    {
        mImageDisplayWidth = scaled.width();
        mImageDisplayHeight = scaled.height();
    }
}
