// SPDX-License-Identifier: MIT
#pragma once

/// Picture quality of an exported movie.
enum ExportQuality
{
    ExportQualityVeryHigh = 0,
    ExportQualityHigh = 1,
    ExportQualityMedium = 2,
    ExportQualityLow = 3
};
