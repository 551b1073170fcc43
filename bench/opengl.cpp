// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "viewers/OpenGLViewer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QOpenGLBuffer>
#include <QOpenGLFunctions_3_3_Core>
#include <QOpenGLShaderProgram>
#include <QOpenGLVertexArrayObject>
#include <QOpenGLWidget>
#include <QRandomGenerator>
#include <QSurfaceFormat>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

/// What a frame of playback costs through the OpenGL viewer, upload and draw, against the bare calls in a
/// widget of the same size: glTexSubImage2D into a texture of the same format, one quad. Both end each frame
/// by glFinish. Exits with 1 if the viewer reaches less than 0.9 of the bare loop.
namespace
{

constexpr QSize WindowSize(1600, 900);
constexpr int FramesARound = 20;
constexpr int Rounds = 11;
constexpr double LeastRatio = 0.9;

/// The viewer with its painting open to be called outside of Qt's.
class Viewer : public OpenGLViewer
{
public:
    using OpenGLViewer::OpenGLViewer;
    using OpenGLViewer::paintGL;
};

/// The same without anything but the calls.
class BareWidget : public QOpenGLWidget, public QOpenGLFunctions_3_3_Core
{
public:
    /// Draws with the shaders of @p model.
    BareWidget(const QOpenGLShaderProgram* model, QWidget* parent) : QOpenGLWidget(parent), mModel(model)
    {
        QSurfaceFormat format = QSurfaceFormat::defaultFormat();
        format.setDepthBufferSize(0);
        setFormat(format);
    }

    ~BareWidget() override
    {
        makeCurrent();
        glDeleteTextures(1, &mTexture);
        mVertices.destroy();
        mArray.destroy();
        mProgram.reset();
        doneCurrent();
    }

    void Upload(const QImage& image)
    {
        glBindTexture(GL_TEXTURE_2D, mTexture);
        if (mSize != image.size())
        {
            mSize = image.size();
            // What QOpenGLTexture makes of a picture.
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, mSize.width(), mSize.height(), 0, GL_RGBA,
                         GL_UNSIGNED_BYTE, nullptr);
        }
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, mSize.width(), mSize.height(), GL_RGB, GL_UNSIGNED_BYTE,
                        image.constBits());
    }

    void paintGL() override
    {
        glViewport(0, 0, width(), height());
        glClear(GL_COLOR_BUFFER_BIT);
        mProgram->bind();
        mArray.bind();
        glBindTexture(GL_TEXTURE_2D, mTexture);
        glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    }

protected:
    void initializeGL() override
    {
        initializeOpenGLFunctions();
        glGenTextures(1, &mTexture);
        glBindTexture(GL_TEXTURE_2D, mTexture);
        for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glTexParameteri(GL_TEXTURE_2D, filter, GL_LINEAR);
        for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
            glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP_TO_BORDER);
        mProgram = std::make_unique<QOpenGLShaderProgram>();
        // The same shaders, by their text: what they cost is not the viewer's doing.
        for (const QOpenGLShader* shader : mModel->shaders())
            mProgram->addShaderFromSourceCode(shader->shaderType(), shader->sourceCode());
        mProgram->link();
        mArray.create();
        mArray.bind();
        mVertices.create();
        mVertices.bind();
        // Each corner's x, y, z, u, v.
        constexpr std::array<float, 20> Corners = {-1, -1, 0, 0, 1, 1, -1, 0, 1, 1,
                                                   -1, 1,  0, 0, 0, 1, 1,  0, 1, 0};
        mVertices.allocate(Corners.data(), sizeof(Corners));
        mProgram->enableAttributeArray(0);
        mProgram->setAttributeBuffer(0, GL_FLOAT, 0, 3, 5 * sizeof(float));
        mProgram->enableAttributeArray(1);
        mProgram->setAttributeBuffer(1, GL_FLOAT, 3 * sizeof(float), 2, 5 * sizeof(float));
        mArray.release();
    }

private:
    const QOpenGLShaderProgram* mModel;
    GLuint mTexture = 0;
    QSize mSize;
    QOpenGLBuffer mVertices;
    QOpenGLVertexArrayObject mArray;
    std::unique_ptr<QOpenGLShaderProgram> mProgram;
};

std::vector<QImage> MakePictures(const QSize& size)
{
    // Several, so that no frame finds the one before in the processor's caches.
    std::vector<QImage> pictures;
    QRandomGenerator random(1);
    for (int picture = 0; picture < 4; ++picture)
    {
        QImage image(size, QImage::Format_RGB888);
        random.fillRange(reinterpret_cast<quint32*>(image.bits()), image.sizeInBytes() / 4);
        pictures.push_back(image);
    }
    return pictures;
}

/// Seconds that a frame takes; @p frame is called with the number of each.
double SecondsAFrame(const std::function<void(int)>& frame)
{
    QElapsedTimer clock;
    clock.start();
    for (int number = 0; number < FramesARound; ++number)
        frame(number);
    return static_cast<double>(clock.nsecsElapsed()) * 1e-9 / FramesARound;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Runs both at @p size and prints a line of each. Returns the viewer's frames a second by the bare ones.
double Compare(const QSize& size, bool onScreen, Viewer* viewer, QWidget* viewerWindow, BareWidget* bare,
               QWidget* bareWindow)
{
    const std::vector<QImage> pictures = MakePictures(size);
    const auto pictureOf = [&](int number) -> const QImage&
    { return pictures[static_cast<size_t>(number) % pictures.size()]; };
    const auto viewerFrame = [&](int number)
    {
        viewer->makeCurrent();
        viewer->SetImage(0, pictureOf(number), false);
        if (onScreen)
            viewer->repaint();
        else
            viewer->paintGL();
        viewer->makeCurrent();
        bare->glFinish();
    };
    const auto bareFrame = [&](int number)
    {
        bare->makeCurrent();
        bare->Upload(pictureOf(number));
        if (onScreen)
            bare->repaint();
        else
            bare->paintGL();
        bare->makeCurrent();
        bare->glFinish();
    };
    std::vector<double> viewerSeconds;
    std::vector<double> bareSeconds;
    std::vector<double> ratios;
    for (int round = -1; round < Rounds; ++round)
    {
        viewerWindow->raise();
        const double ofViewer = SecondsAFrame(viewerFrame);
        bareWindow->raise();
        const double ofBare = SecondsAFrame(bareFrame);
        QCoreApplication::processEvents();
        // The first round makes textures and programs.
        if (round < 0)
            continue;
        viewerSeconds.push_back(ofViewer);
        bareSeconds.push_back(ofBare);
        ratios.push_back(ofBare / ofViewer);
    }
    const double bytes = static_cast<double>(pictures[0].sizeInBytes());
    const double viewerTime = Median(viewerSeconds);
    const double bareTime = Median(bareSeconds);
    const double ratio = Median(ratios);
    std::printf("%4d x %-5d %-10s %8.1f %9.0f %8.1f %9.0f %7.3f\n", size.width(), size.height(),
                onScreen ? "on screen" : "drawn", 1.0 / viewerTime, bytes / viewerTime * 1e-6, 1.0 / bareTime,
                bytes / bareTime * 1e-6, ratio);
    return ratio;
}

} // namespace

int main(int argc, char** argv)
{
    QSurfaceFormat format;
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setSwapInterval(0);
    QSurfaceFormat::setDefaultFormat(format);
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    Settings::highQualityRendering = false;

    QWidget viewerWindow;
    auto* const viewer = new Viewer(&viewerWindow);
    viewerWindow.resize(WindowSize);
    viewer->resize(WindowSize);
    viewerWindow.show();
    QCoreApplication::processEvents();
    if (!viewer->IsInitialized())
    {
        std::fprintf(stderr, "there is no OpenGL 3.3 here; run it on a display, or under xvfb-run\n");
        return 2;
    }
    QWidget bareWindow;
    auto* const bare = new BareWidget(viewer->findChild<QOpenGLShaderProgram*>(), &bareWindow);
    bareWindow.resize(WindowSize);
    bare->resize(WindowSize);
    bareWindow.show();
    QCoreApplication::processEvents();
    bare->makeCurrent();
    std::printf("%s\n", reinterpret_cast<const char*>(bare->glGetString(GL_RENDERER)));
    std::printf("%-24s %8s %9s %8s %9s %7s\n", "picture", "viewer/s", "MB/s", "bare/s", "MB/s", "ratio");
    bool met = true;
    for (const QSize& size : {QSize(1920, 1080), QSize(3840, 2160)})
    {
        met = Compare(size, false, viewer, &viewerWindow, bare, &bareWindow) >= LeastRatio && met;
        Compare(size, true, viewer, &viewerWindow, bare, &bareWindow);
    }
    std::printf("The ratio of what is drawn must be at least %.1f.\n", LeastRatio);
    return met ? 0 : 1;
}
