// SPDX-License-Identifier: MIT
#include "window/ViewerPictures.h"

#include "viewers/ViewerWidget.h"

#include <QCoreApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLWidget>

namespace
{

void MakeCurrent(ViewerWidget* viewer)
{
    if (auto* const backEnd = viewer->findChild<QOpenGLWidget*>())
        backEnd->makeCurrent();
}

} // namespace

namespace ViewerPictures
{

void Show(ViewerWidget* viewer, int index, const QImage& image)
{
    MakeCurrent(viewer);
    viewer->SetImage(index, image, false);
}

void Clear(ViewerWidget* viewer, int index)
{
    MakeCurrent(viewer);
    viewer->Clear(index);
}

bool HasUsableOpenGL(QString* reason)
{
    const auto say = [reason](const QString& text)
    {
        *reason = text;
        return false;
    };
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !surface.isValid() || !context.makeCurrent(&surface))
        return say(QCoreApplication::translate("ViewerPictures", "there is no OpenGL"));
    const auto version = context.format().version();
    context.doneCurrent();
    if (version < qMakePair(3, 3))
        return say(QCoreApplication::translate("ViewerPictures", "OpenGL is too old (%1.%2, needed is 3.3)")
                       .arg(version.first)
                       .arg(version.second));
    return true;
}

} // namespace ViewerPictures
