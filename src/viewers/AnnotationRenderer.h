// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/FrameData.h"
#include "host/ViewerLayout.h"

#include <array>

class QImage;

/// Burns annotations into pictures, as a viewer of the picture's size shows them: for hosts that export
/// movies and stills.
///
/// Any thread may call; no setting is read. Ghosts and the frame of a text that is being typed are left out.
class TORVALENUI_EXPORT AnnotationRenderer
{
public:
    AnnotationRenderer() = delete;

    /// What one viewer shows.
    struct Slot
    {
        /// May be null.
        const FrameData* drawings = nullptr;
        /// Width at which the viewer's picture stands in the whole one, in pixels.
        int displayWidth = 0;
    };

    /// Paints the drawings of the viewers that @p layout shows onto @p picture; in the single layout that is
    /// viewer @p singleViewerIndex (0 or 1).
    static void Paint(QImage* picture, ViewerLayout layout, int singleViewerIndex,
                      const std::array<Slot, 2>& viewers);
};
