// SPDX-License-Identifier: MIT
#pragma once

/// Trade of encoding speed against file size.
enum ExportPreset
{
    ExportPresetVerySlow = 0,
    ExportPresetSlower = 1,
    ExportPresetSlow = 2,
    ExportPresetMedium = 3,
    ExportPresetFast = 4,
    ExportPresetFaster = 5,
    ExportPresetVeryFast = 6,
    ExportPresetSuperFast = 7,
    ExportPresetUltraFast = 8
};
