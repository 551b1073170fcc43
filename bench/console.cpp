// SPDX-License-Identifier: MIT
#include "console/ConsoleWindow.h"
#include "host/Logger.h"
#include "host/Settings.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

// What a burst of log costs the console, against a bare text pane that takes the same lines one by one, and
// how long the window stands still meanwhile. The figures that carry over between machines are `x_floor` and
// `still_share`, the longest time that the event loop stood still as a share of the whole.

namespace
{

constexpr int Repetitions = 3;

QString Line(int index, bool tagged)
{
    const QString text = QStringLiteral("%1: a line of a script's output, as long as they are").arg(index);
    return tagged && index % 10 == 0 ? QStringLiteral("[WARNING] ") + text : text;
}

/// Calls @p run a few times and returns the median of what it returns.
double Median(const std::function<double()>& run)
{
    std::vector<double> values;
    for (int i = 0; i < Repetitions; ++i)
        values.push_back(run());
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double Seconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

/// Seconds that a bare pane takes for @p lines lines.
double Floor(int lines, bool tagged)
{
    QPlainTextEdit pane;
    pane.setReadOnly(true);
    pane.setUndoRedoEnabled(false);
    pane.setWordWrapMode(QTextOption::NoWrap);
    pane.resize(700, 500);
    pane.show();
    QApplication::processEvents();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < lines; ++i)
        pane.appendPlainText(Line(i, tagged));
    QApplication::processEvents();
    return Seconds(timer);
}

struct BenchConsole
{
    BenchConsole()
    {
        Settings::consoleShowOnType = ConsoleShowOnDisabled;
        window.resize(700, 500);
        window.show();
        QApplication::processEvents();
        pane = window.findChild<QPlainTextEdit*>(QStringLiteral("outputPane"));
    }

    ConsoleWindow window;
    QPlainTextEdit* pane;
};

void LogLine(int index, bool tagged)
{
    if (tagged && index % 10 == 0)
        Logger::GetInstance()->Warning(Line(index, false));
    else
        Logger::GetInstance()->Output(Line(index, false) + QLatin1Char('\n'));
}

void Report(benchmark::State& state, double seconds, double floor)
{
    state.SetIterationTime(seconds);
    state.counters["floor_ms"] = floor * 1e3;
    state.counters["x_floor"] = seconds / floor;
}

/// A burst from another thread: from the first line logged to the last one in the pane.
void BurstOfAThread(benchmark::State& state, bool tagged)
{
    const int lines = static_cast<int>(state.range(0));
    for (auto _ : state)
    {
        double longest = 0.0;
        double stillShare = 0.0;
        const double seconds = Median(
            [&]
            {
                BenchConsole console;
                QElapsedTimer whole;
                QElapsedTimer sinceBeat;
                QTimer beat;
                double still = 0.0;
                QObject::connect(&beat, &QTimer::timeout,
                                 [&]
                                 {
                                     still = std::max(still, Seconds(sinceBeat));
                                     sinceBeat.start();
                                 });
                whole.start();
                sinceBeat.start();
                beat.start(1);
                std::thread thread(
                    [=]
                    {
                        for (int i = 0; i < lines; ++i)
                            LogLine(i, tagged);
                    });
                while (console.pane->blockCount() <= lines)
                    QApplication::processEvents(QEventLoop::WaitForMoreEvents);
                const double taken = Seconds(whole);
                thread.join();
                longest = std::max(longest, still);
                stillShare = std::max(stillShare, still / taken);
                return taken;
            });
        Report(state, seconds, Floor(lines, tagged));
        state.counters["still_ms"] = longest * 1e3;
        state.counters["still_share"] = stillShare;
    }
}

/// A burst that the window's own thread logs, each line written when its call returns.
void BurstOfTheWindowsThread(benchmark::State& state, bool tagged)
{
    const int lines = static_cast<int>(state.range(0));
    for (auto _ : state)
    {
        const double seconds = Median(
            [&]
            {
                BenchConsole console;
                QElapsedTimer timer;
                timer.start();
                for (int i = 0; i < lines; ++i)
                    LogLine(i, tagged);
                QApplication::processEvents();
                return Seconds(timer);
            });
        Report(state, seconds, Floor(lines, tagged));
    }
}

void Bursts(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("lines")->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
    for (const int lines : {1000, 10000, 100000})
        benchmark->Arg(lines);
}

} // namespace

BENCHMARK_CAPTURE(BurstOfAThread, Plain, false)->Apply(Bursts);
BENCHMARK_CAPTURE(BurstOfAThread, Tagged, true)->Apply(Bursts);
BENCHMARK_CAPTURE(BurstOfTheWindowsThread, Plain, false)->Apply(Bursts);

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
