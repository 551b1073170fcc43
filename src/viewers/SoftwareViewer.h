// SPDX-License-Identifier: MIT
#pragma once

#include "viewers/AnnotationOverlay.h"

#include <QImage>
#include <QVector>
#include <QWidget>

/// The back end that draws with QPainter: each full paint scales every visible picture to its slot, with
/// smooth filtering.
class SoftwareViewer : public QWidget, public AnnotationOverlay
{
    Q_OBJECT

public:
    explicit SoftwareViewer(QWidget* parent);

    void SetImage(int index, const QImage& image, bool linear) override;
    QImage GetImage() override;
    int GetImageDisplayWidth() const override;
    int GetImageDisplayHeight() const override;
    /// Always true.
    bool IsInitialized() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintStoredPicture(QPainter& painter);
    void PaintPictures(QPainter& painter);
    void PaintPicture(int index, const QSize& slotSize, QPainter& painter, QPainter& storePainter);

    QVector<QImage> mImages = QVector<QImage>(ViewerCount);
    int mImageDisplayWidth = 0;
    int mImageDisplayHeight = 0;
};
