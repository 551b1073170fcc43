// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "viewers/ViewerWidget.h"

#include <QApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>

/// What a repaint of the software viewer costs, each against its floor in the same run: a stroke in progress
/// by its length and by what lies behind it, and a whole frame.
namespace
{

constexpr int Width = 1600;
constexpr int Height = 900;

DrawData MakeStroke(int points, double y)
{
    DrawData stroke;
    stroke.type = DrawPencil;
    stroke.width = 0.004f;
    stroke.color = QColor(255, 64, 64);
    for (int point = 0; point < points; ++point)
        stroke.points << QPointF(-0.4 + 0.8 * point / points, y + 0.02 * (point % 7) / 7);
    return stroke;
}

/// A viewer of its own with a picture and a stroke in progress, painted into an image as into a window's
/// backing store.
class Bench
{
public:
    Bench(int points, int drawingsBehind)
    {
        Settings::hardwareAcceleratedPlayback = false;
        Settings::annotationTool = Eyedropper;
        for (int drawing = 0; drawing < drawingsBehind; ++drawing)
            mFrame.drawData << MakeStroke(8, -0.25 + 0.5 * drawing / drawingsBehind);
        mFrame.drawData << MakeStroke(points, 0.1);
        mFrame.lastIndex = mFrame.drawData.size() - 1;
        mPicture.fill(QColor(40, 80, 120));
        mViewer = std::make_unique<ViewerWidget>();
        mViewer->resize(Width, Height);
        // Shown, so that the back end gets its size; the platform shows nothing.
        mViewer->show();
        QCoreApplication::processEvents();
        mBackEnd = mViewer->findChildren<QWidget*>().first();
        mViewer->SetStoreLastImageEnabled(true);
        mViewer->SetImage(0, mPicture, false);
        mViewer->SetOverlayData(0, &mFrame, {}, {});
        Paint();
    }

    void Paint() { mBackEnd->render(&mCanvas, QPoint(), QRegion(), QWidget::RenderFlags()); }

    /// One cursor position more, and the repaint that it asks for.
    void GrowStroke()
    {
        QList<QPointF>& points = mFrame.drawData.last().points;
        points << QPointF(points.last().x(), points.last().y() > 0.1 ? 0.09 : 0.11);
        mViewer->RefreshAnnotations();
        Paint();
    }

    const QImage& Picture() const { return mPicture; }

private:
    FrameData mFrame;
    QImage mPicture{1920, 1080, QImage::Format_RGB32};
    QImage mCanvas{Width, Height, QImage::Format_RGB32};
    std::unique_ptr<ViewerWidget> mViewer;
    QWidget* mBackEnd = nullptr;
};

void Refresh(benchmark::State& state)
{
    Bench bench(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    bench.GrowStroke();
    for (auto _ : state)
        bench.GrowStroke();
}

void FullPaint(benchmark::State& state)
{
    Bench bench(10, 0);
    for (auto _ : state)
        bench.Paint();
}

QImage OverlayImage()
{
    QImage overlay(Width, Height, QImage::Format_ARGB32);
    overlay.fill(Qt::transparent);
    QPainter painter(&overlay);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 64, 64), 6.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(100, 500, 1500, 540);
    return overlay;
}

/// The least that a growing stroke can cost, without the picture under it.
void RefreshFloor(benchmark::State& state)
{
    const QImage overlay = OverlayImage();
    QImage canvas(Width, Height, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    for (auto _ : state)
    {
        QImage scratch = overlay.copy();
        {
            QPainter painter(&scratch);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(QColor(255, 64, 64), 6.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.drawLine(QPointF(700.5, 500.25), QPointF(704.5, 508.75));
        }
        QPainter painter(&canvas);
        painter.drawImage(0, 0, scratch);
        benchmark::ClobberMemory();
    }
}

/// The same with the stored picture copied to the widget first, which every such repaint needs too.
void RefreshFloorWithPicture(benchmark::State& state)
{
    const QImage overlay = OverlayImage();
    QImage stored(Width, Height, QImage::Format_RGB32);
    stored.fill(Qt::darkCyan);
    QImage canvas(Width, Height, QImage::Format_RGB32);
    for (auto _ : state)
    {
        QImage scratch = overlay.copy();
        {
            QPainter painter(&scratch);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(QColor(255, 64, 64), 6.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.drawLine(QPointF(700.5, 500.25), QPointF(704.5, 508.75));
        }
        QPainter painter(&canvas);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(0, 0, stored);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.drawImage(0, 0, scratch);
        benchmark::ClobberMemory();
    }
}

void FullPaintFloor(benchmark::State& state)
{
    QImage picture(1920, 1080, QImage::Format_RGB32);
    picture.fill(QColor(40, 80, 120));
    QImage canvas(Width, Height, QImage::Format_RGB32);
    for (auto _ : state)
    {
        const QImage scaled = picture.scaled(Width, Height, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        QPainter painter(&canvas);
        painter.drawImage(0, 0, scaled);
        benchmark::ClobberMemory();
    }
}

void OneImageCopy(benchmark::State& state)
{
    const QImage overlay = OverlayImage();
    for (auto _ : state)
        benchmark::DoNotOptimize(overlay.copy());
}

/// Prints as usual and keeps each benchmark's median.
class MedianReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& reports) override
    {
        ConsoleReporter::ReportRuns(reports);
        for (const Run& run : reports)
        {
            if (run.aggregate_name != "median")
                continue;
            const std::string name =
                run.run_name.function_name + (run.run_name.args.empty() ? "" : "/") + run.run_name.args;
            // A repaint keeps to its thread, whose own time a busy machine disturbs least. A full paint
            // scales on several.
            const bool threaded = name.find("FullPaint") == 0;
            mMedians[name] = threaded ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        }
    }

    /// How many times @p what takes as long as @p base; 0 if either was not run.
    double Ratio(const std::string& what, const std::string& base) const
    {
        const auto above = mMedians.find(what);
        const auto below = mMedians.find(base);
        return above == mMedians.end() || below == mMedians.end() ? 0.0 : above->second / below->second;
    }

private:
    std::map<std::string, double> mMedians;
};

} // namespace

// Each by points of the stroke and drawings behind it. Repetitions interleave, so that a busy machine slows
// all of them.
BENCHMARK(Refresh)->Args({10, 0})->Args({10000, 0})->Args({100000, 0})->Args({10, 2000})->Args({10, 5000});
BENCHMARK(RefreshFloor);
BENCHMARK(RefreshFloorWithPicture);
BENCHMARK(FullPaint);
BENCHMARK(FullPaintFloor);
BENCHMARK(OneImageCopy);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    std::string repetitions = "--benchmark_repetitions=15";
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string time = "--benchmark_min_time=0.02";
    std::string aggregates = "--benchmark_display_aggregates_only=true";
    std::vector<char*> arguments{argv[0], repetitions.data(), interleaving.data(), time.data(),
                                 aggregates.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    struct Row
    {
        const char* text;
        const char* what;
        const char* base;
        double limit;
    };
    const Row rows[] = {
        {"repaint at 10,000 points against 10", "Refresh/10000/0", "Refresh/10/0", 1.2},
        {"repaint at 100,000 points against 10", "Refresh/100000/0", "Refresh/10/0", 0.0},
        {"repaint with 2,000 drawings behind against none", "Refresh/10/2000", "Refresh/10/0", 1.2},
        {"repaint with 5,000 drawings behind against none", "Refresh/10/5000", "Refresh/10/0", 0.0},
        {"repaint against one copy, one blit, one segment", "Refresh/10/0", "RefreshFloor", 0.0},
        {"repaint against the same and the stored picture", "Refresh/10/0", "RefreshFloorWithPicture", 0.0},
        {"full paint against QImage::scaled and one blit", "FullPaint", "FullPaintFloor", 0.0}};
    std::printf("\n%-52s %6s  %s\n", "Ratio of medians", "is", "must be below");
    bool met = true;
    for (const Row& row : rows)
    {
        const double ratio = reporter.Ratio(row.what, row.base);
        if (ratio == 0.0)
            continue;
        std::printf("%-52s %6.3f  ", row.text, ratio);
        std::printf(row.limit > 0.0 ? "%.1f\n" : "-\n", row.limit);
        met = met && (row.limit == 0.0 || ratio < row.limit);
    }
    return met ? 0 : 1;
}
