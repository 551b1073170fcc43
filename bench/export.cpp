// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"
#include "media/MediaReader.h"
#include "output/ExportJob.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace
{

/// A stroke, an arrow and an oval on each frame of @p timeline.
void DrawOnEachFrame(MediaTimeline& timeline)
{
    DrawData drawing;
    drawing.color = QColor(255, 120, 0, 200);
    drawing.width = 0.01f;
    drawing.points = {QPointF(-0.3, -0.1), QPointF(0.1, 0.2)};
    QList<DrawData> drawings;
    for (const DrawType type : {DrawOval, DrawArrow})
    {
        drawing.type = type;
        drawings << drawing;
    }
    drawing.type = DrawPencil;
    for (int point = 0; point < 200; ++point)
        drawing.points << QPointF(-0.4 + 0.004 * point, 0.1 + 0.0005 * (point % 40));
    drawings << drawing;
    for (int frame = 1; frame <= timeline.FrameCount(); ++frame)
        timeline.Annotations()->SetDrawings(frame, drawings);
}

} // namespace

/// torvalen_bench_export FILE OUTPUT WIDTH HEIGHT PROFILE QUALITY PRESET [drawn] exports FILE as the player
/// does, the last three by their numbers, and prints the encoder's words for them and how long it took.
int main(int argc, char** argv)
{
#ifdef __GLIBC__
    // As the player does.
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 8)
    {
        std::fprintf(stderr, "usage: %s FILE OUTPUT WIDTH HEIGHT PROFILE QUALITY PRESET [drawn]\n", argv[0]);
        return 2;
    }
    QString error;
    std::unique_ptr<MediaReader> reader = OpenMedia(arguments[1], &error);
    if (!reader)
    {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    MediaTimeline timeline(std::make_shared<const MediaSource>(QUuid::createUuid(), reader->Info()));
    reader.reset();
    if (arguments.value(8) == QLatin1String("drawn"))
        DrawOnEachFrame(timeline);

    ExportOptions options;
    options.outputPath = arguments[2];
    options.size = QSize(arguments[3].toInt(), arguments[4].toInt());
    options.profile = static_cast<ExportProfile>(arguments[5].toInt());
    options.quality = static_cast<ExportQuality>(arguments[6].toInt());
    options.preset = static_cast<ExportPreset>(arguments[7].toInt());
    options.encoder = ExportJob::FindEncoder();
    std::printf("profile %s\nfactor %d\npreset %s\n", qPrintable(EncoderProfile(options.profile)),
                EncoderRateFactor(options.quality), qPrintable(EncoderPreset(options.preset)));

    ExportJob job;
    QElapsedTimer clock;
    QObject::connect(&job, &ExportJob::Line,
                     [](const QString& text, bool detailedOnly)
                     { std::fprintf(stderr, "%s%s\n", detailedOnly ? "  " : "", qPrintable(text)); });
    QObject::connect(&job, &ExportJob::Finished,
                     [&](bool succeeded)
                     {
                         std::printf("seconds %.3f\n", static_cast<double>(clock.nsecsElapsed()) / 1e9);
                         QApplication::exit(succeeded ? 0 : 1);
                     });
    clock.start();
    OutputViewers viewers;
    viewers.timelines[0] = &timeline;
    job.Start(MakeOutputPlan(viewers, FramesBetween(1, timeline.FrameCount()), true, true), options);
    return QApplication::exec();
}
