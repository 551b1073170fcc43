// SPDX-License-Identifier: MIT
#pragma once

class ViewerWidget;

/// Has @p viewer compose its picture anew, even if a repaint of annotations alone was asked for and is still
/// to come: that one would show the picture before. Also until it is painted, asking for annotations alone
/// gives it whole.
///
/// @p keepPicture says whether the picture is kept for repaints of annotations; without it each of them is
/// whole.
void RequestFullPaint(ViewerWidget* viewer, bool keepPicture);
