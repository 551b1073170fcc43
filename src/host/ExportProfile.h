// SPDX-License-Identifier: MIT
#pragma once

/// H.264 profile of an exported movie.
enum ExportProfile
{
    ExportProfileHigh = 0,
    ExportProfileMain = 1,
    ExportProfileBaseline = 2
};
