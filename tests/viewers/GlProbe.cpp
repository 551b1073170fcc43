// SPDX-License-Identifier: MIT
#include "viewers/GlProbe.h"

#include "viewers/ViewerPair.h"

QImage GlNoise(const QSize& size, quint32 seed)
{
    return NoisePicture(size, seed).convertToFormat(QImage::Format_RGB888);
}

QImage GlPlain(const QSize& size, const QColor& color)
{
    QImage image(size, QImage::Format_RGB888);
    image.fill(color);
    return image;
}
