// SPDX-License-Identifier: MIT
#pragma once

#include "viewers/AnnotationOverlay.h"

#include <QOpenGLFunctions_3_3_Core>
#include <QOpenGLWidget>
#include <QVector>

class QOpenGLBuffer;
class QOpenGLShaderProgram;
class QOpenGLTexture;
class QOpenGLVertexArrayObject;

/// The back end that draws through OpenGL 3.3 core: each viewer's picture is a texture on one quad, and the
/// overlay is painted over the result.
///
/// It is usable once initializeGL() has got through; until then, and for good after a failure, it shows
/// nothing. SetImage() must find the widget's context current and takes QImage::Format_RGB888.
class OpenGLViewer : public QOpenGLWidget, public AnnotationOverlay, private QOpenGLFunctions_3_3_Core
{
    Q_OBJECT

public:
    explicit OpenGLViewer(QWidget* parent);

    /// Lost in silence before initialisation or without a current context.
    void SetImage(int index, const QImage& image, bool linear) override;
    QImage GetImage() override;
    int GetImageDisplayWidth() const override;
    int GetImageDisplayHeight() const override;
    void SetViewerLayout(ViewerLayout layout) override;
    bool IsInitialized() const override;

protected:
    void initializeGL() override;
    void resizeGL(int w, int h) override;
    void paintGL() override;

private:
    bool IsContextUsable();
    void CreateProgram();
    void CreateBuffers();
    void ReplaceTexture(int index, const QImage& image);
    void UpdateVertices();
    void DrawPictures();
    void DrawPicture(int index);

    bool mInitialized = false;
    bool mUpdateVertices = true;
    int mLinearLocation = -1;
    QOpenGLShaderProgram* mProgram = nullptr;
    QVector<QOpenGLTexture*> mTextures;
    QOpenGLVertexArrayObject* mVao = nullptr;
    QOpenGLBuffer* mVertexBuffer = nullptr;
    QOpenGLBuffer* mIndexBuffers[ViewerCount] = {nullptr, nullptr};
};
