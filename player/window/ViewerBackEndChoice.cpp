// SPDX-License-Identifier: MIT
#include "window/ViewerBackEndChoice.h"

#include "host/Logger.h"
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"
#include "window/PlayerWindow.h"

#include <QCoreApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPainter>
#include <QScopedValueRollback>

#include <utility>

namespace
{

constexpr auto NeededVersion = std::make_pair(3, 3);
/// What the OpenGL viewer asks for with Settings::highQualityRendering.
constexpr int WantedSamples = 10;

QString Translated(const char* text)
{
    return QCoreApplication::translate("ViewerBackEndChoice", text);
}

QString NoContext()
{
    return Translated("there is no OpenGL driver");
}

/// Why this machine can't draw through OpenGL as the viewers need it; empty where it can.
QString TryOpenGL()
{
    QOpenGLContext context;
    context.setFormat(QSurfaceFormat::defaultFormat());
    QOffscreenSurface surface;
    surface.setFormat(QSurfaceFormat::defaultFormat());
    surface.create();
    if (!context.create() || !surface.isValid() || !context.makeCurrent(&surface))
        return NoContext();
    const QPair<int, int> version = context.format().version();
    context.doneCurrent();
    if (std::make_pair(version.first, version.second) < NeededVersion)
        return Translated("the driver offers OpenGL %1.%2, and 3.3 is needed")
            .arg(version.first)
            .arg(version.second);
    return {};
}

/// Logs how many samples a pixel gets where they are fewer than asked for.
void ReportSamples(ViewerWidget* viewer)
{
    auto* const glWidget = viewer->findChild<QOpenGLWidget*>();
    if (!glWidget || !Settings::highQualityRendering)
        return;
    // The widget's own format keeps telling what was asked for.
    GLint samples = 0;
    glWidget->makeCurrent();
    glWidget->context()->functions()->glGetIntegerv(GL_SAMPLES, &samples);
    glWidget->doneCurrent();
    if (samples < WantedSamples)
        Logger::GetInstance()->Info(
            Translated("High-quality rendering: the driver gives %1 of %2 samples a pixel")
                .arg(samples)
                .arg(WantedSamples));
}

} // namespace

ViewerBackEndChoice ViewerBackEndChoice::BySettings()
{
    return {Settings::hardwareAcceleratedPlayback ? OpenGL : Software, QString()};
}

ViewerBackEndChoice ViewerBackEndChoice::Tried(ViewerType wanted)
{
    const QString problem = wanted == OpenGL ? TryOpenGL() : QString();
    return problem.isEmpty() ? ViewerBackEndChoice{wanted, QString()} : InSoftware(problem);
}

ViewerBackEndChoice ViewerBackEndChoice::InSoftware(const QString& reason)
{
    return {Software,
            Translated("Hardware accelerated playback can't be used: %1. Pictures are drawn in software.")
                .arg(reason)};
}

ViewerWidget* ViewerBackEndChoice::MakeViewer(QWidget* parent) const
{
    // The viewer reads the setting while it is built, and never again.
    const QScopedValueRollback<bool> rollback(Settings::hardwareAcceleratedPlayback, type == OpenGL);
    return new ViewerWidget(parent);
}

QString ProblemAfterShow(ViewerWidget* viewer)
{
    if (viewer->IsInitialized())
        return {};
    auto* const glWidget = viewer->findChild<QOpenGLWidget*>();
    if (!glWidget || !glWidget->context() || !glWidget->context()->isValid())
        return NoContext();
    const QPair<int, int> version = glWidget->context()->format().version();
    return Translated("its viewer could not be set up on OpenGL %1.%2")
        .arg(version.first)
        .arg(version.second);
}

std::unique_ptr<PlayerWindow> ShowPlayerWindow(const ViewerBackEndChoice& choice)
{
    auto window = std::make_unique<PlayerWindow>(choice);
    window->show();
    const QString problem = ProblemAfterShow(window->Viewer());
    if (!problem.isEmpty())
    {
        // Shown before the other one goes: there is a window at any time.
        auto other = std::make_unique<PlayerWindow>(ViewerBackEndChoice::InSoftware(problem));
        other->show();
        window = std::move(other);
    }
    ReportSamples(window->Viewer());
    return window;
}

void ShowPicture(ViewerWidget* viewer, int index, const QImage& image)
{
    auto* const glWidget = viewer->findChild<QOpenGLWidget*>();
    if (glWidget)
        glWidget->makeCurrent();
    if (image.isNull())
        viewer->Clear(index);
    else
        viewer->SetImage(index, image, false);
    if (glWidget)
        glWidget->doneCurrent();
}

QImage::Format PictureFormatOf(const ViewerWidget* viewer)
{
    return viewer->GetViewerType() == OpenGL ? QImage::Format_RGB888 : QImage::Format_RGB32;
}

QPixmap GrabWindow(PlayerWindow* window)
{
    QPixmap picture = window->grab();
    ViewerWidget* const viewer = window->Viewer();
    if (const auto* const glWidget = viewer->findChild<QOpenGLWidget*>())
    {
        // A grab leaves out what is painted over the OpenGL picture.
        QPainter painter(&picture);
        painter.setClipRect(QRect(viewer->mapTo(window, QPoint(0, 0)), viewer->size()));
        painter.drawImage(glWidget->mapTo(window, QPoint(0, 0)), viewer->GetImage());
    }
    return picture;
}
