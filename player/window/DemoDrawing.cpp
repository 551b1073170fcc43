// SPDX-License-Identifier: MIT
#include "window/DemoDrawing.h"

#include "media/MediaInfo.h"
#include "project/MediaTimeline.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace
{

constexpr float DemoStrokeWidth = 0.004f;
constexpr float DemoTextWidth = 0.006f;
const QColor DemoColor(255, 225, 90);

DrawData MakeDrawing(DrawType type, float width, const QList<QPointF>& points)
{
    DrawData drawing;
    drawing.type = type;
    drawing.width = width;
    drawing.color = DemoColor;
    drawing.points = points;
    return drawing;
}

} // namespace

void DemoDrawing::AddTo(MediaTimeline* timeline)
{
    DrawData text = MakeDrawing(DrawText, DemoTextWidth, {{-0.34, -0.2}, {-0.33, -0.2}});
    text.text = QCoreApplication::translate("DemoDrawing", "Press P and draw");
    const QList<DrawData> drawings = {
        MakeDrawing(DrawOval, DemoStrokeWidth, {{0.02, -0.1}, {0.22, 0.06}}),
        MakeDrawing(DrawArrow, DemoStrokeWidth, {{-0.14, -0.15}, {0.015, -0.05}}), text};
    const MediaInfo& info = timeline->Info();
    const int last = std::min(info.frameCount, static_cast<int>(std::lround(info.frameRate.PerSecond())));
    for (int frame = 1; frame <= last; ++frame)
    {
        timeline->Annotations()->SetDrawings(frame, drawings);
        timeline->UpdateAnnotationBookmark(frame);
    }
}
