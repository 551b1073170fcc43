// SPDX-License-Identifier: MIT
#pragma once

class QWidget;
class ViewerWidget;

/// The widget that paints @p viewer's pictures, in whose coordinates drawings lie.
QWidget* BackEndOf(const ViewerWidget* viewer);

/// Has @p viewer compose its picture anew, even if a repaint of annotations alone was asked for and is still
/// to come: that one would show the picture before. Also until it is painted, asking for annotations alone
/// gives it whole.
///
/// @p keepPicture says whether the picture is kept for repaints of annotations; without it each of them is
/// whole.
void RequestFullPaint(ViewerWidget* viewer, bool keepPicture);

/// The same, before it returns. While @p viewer is hidden the paint comes when it is shown.
void PaintFullyNow(ViewerWidget* viewer);
