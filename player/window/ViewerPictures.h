// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QImage;
class ViewerWidget;

/// Hands pictures to a viewer of either back end: OpenGL takes them only while its context is current.
namespace ViewerPictures
{

/// Shows @p image in viewer @p index of @p viewer.
void Show(ViewerWidget* viewer, int index, const QImage& image);

/// Empties viewer @p index of @p viewer; -1 empties both.
void Clear(ViewerWidget* viewer, int index);

/// Whether this machine gives an OpenGL 3.3 core context. If not, @p reason says what is wrong.
bool HasUsableOpenGL(QString* reason);

} // namespace ViewerPictures
