// SPDX-License-Identifier: MIT
#pragma once

/// The annotation tool in hand. Numbered apart from DrawType: only the first three values agree.
enum AnnotationToolType
{
    Pencil = 0,
    Eraser = 1,
    Text = 2,
    Arrow = 3,
    Oval = 4,
    Eyedropper = 5,
    Rectangle = 6
};
