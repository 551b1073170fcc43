// SPDX-License-Identifier: MIT
#pragma once

/// How the two viewers share the picture area.
enum ViewerLayout
{
    Single = 0,     ///< one viewer in the whole area
    Horizontal = 1, ///< viewer A in the left half, viewer B in the right half
    Vertical = 2    ///< viewer A in the top half, viewer B in the bottom half
};
