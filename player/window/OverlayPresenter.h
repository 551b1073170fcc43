// SPDX-License-Identifier: MIT
#pragma once

#include "host/FrameData.h"

#include <array>

class AnnotationStore;
class ViewerWidget;

/// Hands viewers the annotations of the frames that they show, with the ghosts that the settings ask for.
///
/// While drawing is on, a frame at rest ends in a record that paints nothing. Without any drawing the viewers
/// would leave the cursor's preview out; and with a shape or a text at the end they would paint it once more
/// under each preview.
class OverlayPresenter
{
public:
    /// Gives viewer @p index (0 or 1) of @p viewer the annotations of @p frame in @p store; a null store
    /// gives none. @p isEdited says that a drawing is in progress there, which must be the last one.
    ///
    /// The viewer holds records of this object until it is given others.
    void Present(ViewerWidget* viewer, int index, const AnnotationStore* store, int frame, bool isEdited);

private:
    const FrameData* AtRest(int index, const FrameData* current);

    std::array<FrameData, 2> mAtRest;
};
