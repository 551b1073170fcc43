// SPDX-License-Identifier: MIT
#pragma once

#include "viewers/OpenGLViewer.h"
#include "viewers/ViewerWidget.h"

#include <QImage>
#include <QWidget>

/// The OpenGL viewer with what it keeps between paints open to tests.
class OpenGLViewerProbe : public OpenGLViewer
{
    Q_OBJECT

public:
    using OpenGLViewer::initializeGL;
    using OpenGLViewer::OpenGLViewer;
    using OpenGLViewer::paintGL;

    using AnnotationOverlay::mAnnotationsOnly;
    using AnnotationOverlay::mDisplaySizes;
    using AnnotationOverlay::mImageChanged;
    using AnnotationOverlay::mLastDrawIndex;
    using AnnotationOverlay::mLastImage;
    using AnnotationOverlay::mLastPointIndex;
    using AnnotationOverlay::mLinearFlags;

    /// Hands @p image in as a host does: with the context current.
    void Give(int index, const QImage& image, bool linear = false)
    {
        makeCurrent();
        SetImage(index, image, linear);
        doneCurrent();
    }
};

/// A picture of noise, or of one colour, in the format that hosts send.
QImage GlNoise(const QSize& size, quint32 seed);
QImage GlPlain(const QSize& size, const QColor& color);
