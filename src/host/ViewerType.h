// SPDX-License-Identifier: MIT
#pragma once

/// The back end that a ViewerWidget draws with.
enum ViewerType
{
    Software = 0, ///< QPainter
    OpenGL = 1    ///< OpenGL 3.3 core
};
