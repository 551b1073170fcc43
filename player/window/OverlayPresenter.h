// SPDX-License-Identifier: MIT
#pragma once

class AnnotationStore;
class ViewerWidget;

/// Hands viewers the annotations of the frames that they show, with the ghosts that the settings ask for.
namespace OverlayPresenter
{

/// Gives viewer @p index (0 or 1) of @p viewer the annotations of @p frame in @p store; a null store gives
/// none.
void Present(ViewerWidget* viewer, int index, const AnnotationStore* store, int frame);

} // namespace OverlayPresenter
