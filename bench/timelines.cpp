// SPDX-License-Identifier: MIT
#include "host/Bookmarks.h"
#include "host/Settings.h"
#include "host/Timeline.h"
#include "timelines/TimelineWidget.h"
#include "timelines/UiHelpers.h"

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

// What a repaint of a timeline costs, against the least that any timeline has to do: fill its background and
// write its label. The figure that carries over between machines is `x_floor`.

namespace
{

constexpr int BenchWidth = 1600;
constexpr int FramesInElement = 24;

/// A timeline of @p elements elements of a second each.
class BenchTimeline : public Timeline
{
public:
    explicit BenchTimeline(int elements)
    {
        for (int i = 0; i < elements; ++i)
        {
            ElementInfo info;
            info.startFrame = i * FramesInElement + 1;
            info.frameCount = FramesInElement;
            mElements << info;
        }
    }

    QList<ElementInfo> GetElementInfos() override { return mElements; }
    int64_t GetEndTime() override { return FrameToTime(std::max(FrameCount(), 1)); }
    int TimeToFrame(int64_t time) override { return static_cast<int>(time * 24 / 1000000) + 1; }
    int64_t FrameToTime(int frame) override { return (static_cast<int64_t>(frame) - 1) * 1000000 / 24 + 1; }

    int FrameCount() const { return static_cast<int>(mElements.size()) * FramesInElement; }

    /// Adds @p count bookmarks of each kind, spread over the timeline: every third annotated, and each range
    /// half as long as its distance from the next. With @p shuffled they stand in no order, and the ranges
    /// overlap.
    void AddBookmarks(int count, bool shuffled)
    {
        const int frames = std::max(FrameCount(), 1);
        for (int i = 0; i < count; ++i)
        {
            const int place = shuffled ? static_cast<int>(i * 7919LL % count) : i;
            const int frame = static_cast<int>(static_cast<int64_t>(place) * frames / count) + 1;
            TimeBookmark bookmark(FrameToTime(frame));
            if (i % 3 == 0)
                bookmark.drawings << DrawData();
            GetBookmarks()->AddTimeBookmark(bookmark);
            const int length = shuffled ? frames / 3 : frames / count / 2;
            GetBookmarks()->AddRangeBookmark(RangeBookmark(FrameToTime(frame), FrameToTime(frame + length)));
        }
    }

private:
    QList<ElementInfo> mElements;
};

enum BookmarkOrder
{
    Sorted,
    Shuffled
};

/// A timeline widget of 1600 pixels with what it shows.
struct Bench
{
    Bench(bool range, int elements, int bookmarks, BookmarkOrder order)
        : timeline(std::make_shared<BenchTimeline>(elements))
        , widget(range ? UiHelpers::CreateRangeTimeline(nullptr) : UiHelpers::CreateGlobalTimeline(nullptr))
    {
        timeline->AddBookmarks(bookmarks, order == Shuffled);
        widget->resize(BenchWidth, widget->height());
        widget->SetTimeline(timeline);
        widget->SetPlaybackRange(0, timeline->GetEndTime() * 9 / 10);
        widget->SetCachedRange(0, timeline->GetEndTime() / 2);
        widget->SetDesiredFrameRate(24.0f);
        widget->SetPlaybackTime(timeline->GetEndTime() / 2);
        widget->show();
        QApplication::processEvents();
    }

    std::shared_ptr<BenchTimeline> timeline;
    std::unique_ptr<TimelineWidget> widget;
};

/// Microseconds that @p work takes at the median.
double MedianMicroseconds(const std::function<void()>& work)
{
    std::vector<double> times;
    for (int i = 0; i < 201; ++i)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
        times.push_back(time.count());
    }
    std::nth_element(times.begin(), times.begin() + 100, times.end());
    return times[100];
}

QImage BenchImage()
{
    return QImage(BenchWidth, 46, QImage::Format_RGB32);
}

/// The floor: a widget that fills its background and writes one label.
class FloorWidget : public QWidget
{
public:
    FloorWidget()
    {
        setFixedHeight(40);
        resize(BenchWidth, 40);
    }

    QString text = QStringLiteral("120000");

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(rect(), Qt::black);
        QFont font(painter.font());
        font.setPointSize(15);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QRect(700, 0, 200, 20), Qt::AlignCenter, text);
    }
};

double PaintFloor()
{
    static const double floor = []
    {
        FloorWidget widget;
        QImage image = BenchImage();
        return MedianMicroseconds([&]
                                  { widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags()); });
    }();
    return floor;
}

double UpdateFloor()
{
    static const double floor = []
    {
        FloorWidget widget;
        widget.show();
        QApplication::processEvents();
        int frame = 0;
        return MedianMicroseconds(
            [&]
            {
                widget.text = QString::number(++frame);
                widget.update();
                QApplication::processEvents();
            });
    }();
    return floor;
}

void Report(benchmark::State& state, double microseconds, double floor)
{
    state.counters["median_us"] = microseconds;
    state.counters["floor_us"] = floor;
    state.counters["x_floor"] = microseconds / floor;
}

void Paint(benchmark::State& state, bool range, BookmarkOrder order)
{
    const Bench bench(range, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), order);
    QImage image = BenchImage();
    const auto paint = [&] { bench.widget->render(&image, QPoint(), QRegion(), QWidget::RenderFlags()); };
    Report(state, MedianMicroseconds(paint), PaintFloor());
    for (auto _ : state)
        paint();
}

void SetPlaybackTimeToPixel(benchmark::State& state, bool range)
{
    const Bench bench(range, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), Sorted);
    const int frames = std::max(bench.timeline->FrameCount() * 9 / 10, 2);
    int frame = 1;
    const auto move = [&]
    {
        frame = frame % frames + 1;
        bench.widget->SetPlaybackTime(bench.timeline->FrameToTime(frame));
        QApplication::processEvents();
    };
    Report(state, MedianMicroseconds(move), UpdateFloor());
    for (auto _ : state)
        move();
}

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"elements", "bookmarks"})->Unit(benchmark::kMicrosecond)->MinTime(0.2);
    for (const int count : {0, 100, 1000, 10000})
        benchmark->Args({count, count});
    benchmark->Args({10000, 0})->Args({10, 10000});
}

} // namespace

BENCHMARK_CAPTURE(Paint, Global, false, Sorted)->Apply(Sizes);
BENCHMARK_CAPTURE(Paint, GlobalShuffled, false, Shuffled)
    ->Args({10000, 10000})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Paint, Range, true, Sorted)->Apply(Sizes);
BENCHMARK_CAPTURE(SetPlaybackTimeToPixel, Global, false)->Apply(Sizes);
BENCHMARK_CAPTURE(SetPlaybackTimeToPixel, Range, true)->Apply(Sizes);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Settings::RestoreDefaults();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
