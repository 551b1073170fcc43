// SPDX-License-Identifier: MIT
// Measures the parts of playing a medium, each alone: decoding, conversion, and painting one frame. Prints
// the processor seconds of each, and the frames a second that they would allow if they overlapped perfectly
// on the machine's cores.
//
//   torvalen_bench_play_through_floor FILE [FRAMES]
#include "media/MediaReader.h"
#include "viewers/ViewerWidget.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace
{

constexpr int DefaultFrames = 300;
/// Frames decoded ahead of their conversion, so that memory stays bounded.
constexpr int BatchFrames = 16;
constexpr QSize WindowSize(1600, 900);

/// Processor seconds of all threads of the process so far.
double ProcessorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time)
    { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Process number of the virtual display server that shows this process's windows; 0 if none is found.
int DisplayServer()
{
    const QByteArray display = qgetenv("DISPLAY").split('.').first();
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString& process : processes)
    {
        QFile file(QStringLiteral("/proc/%1/cmdline").arg(process));
        if (process.toInt() == 0 || !file.open(QIODevice::ReadOnly))
            continue;
        const QList<QByteArray> words = file.readAll().split('\0');
        if (words.first().endsWith("Xvfb") && words.contains(display))
            return process.toInt();
    }
    return 0;
}

/// Processor seconds of process @p process so far, in the system's ticks.
double ProcessorSecondsOf(int process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    if (process == 0 || !file.open(QIODevice::ReadOnly))
        return 0.0;
    // Behind the name in brackets, which may hold blanks, user and system time are the 12th and 13th word.
    const QByteArray text = file.readAll();
    const QList<QByteArray> words = text.mid(text.lastIndexOf(')') + 2).split(' ');
    return words.size() < 13
               ? 0.0
               : (words[11].toDouble() + words[12].toDouble()) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc < 2)
    {
        std::fprintf(stderr, "usage: %s FILE [FRAMES]\n", argv[0]);
        return 2;
    }
    QString error;
    MediaOptions options;
    options.decoderThreads = 2;
    const std::unique_ptr<MediaReader> reader = OpenMedia(QString::fromLocal8Bit(argv[1]), &error, options);
    if (!reader)
    {
        std::fprintf(stderr, "%s\n", qUtf8Printable(error));
        return 1;
    }
    const int frames = std::min(argc > 2 ? std::atoi(argv[2]) : DefaultFrames, reader->Info().frameCount);

    ViewerWidget viewer;
    viewer.resize(WindowSize);
    viewer.show();
    QApplication::processEvents();
    QWidget* const backEnd = viewer.findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);

    const int server = DisplayServer();
    const double serverStart = ProcessorSecondsOf(server);
    double decoding = 0.0;
    double converting = 0.0;
    double painting = 0.0;
    const auto measure = [](double* total, const auto& work)
    {
        const double start = ProcessorSeconds();
        work();
        *total += ProcessorSeconds() - start;
    };
    for (int first = 1; first <= frames; first += BatchFrames)
    {
        const int last = std::min(first + BatchFrames - 1, frames);
        std::vector<DecodedFrame> decoded;
        std::vector<QImage> images;
        measure(&decoding,
                [&]
                {
                    for (int frame = first; frame <= last; ++frame)
                        decoded.push_back(reader->DecodeFrame(frame, CancelToken()));
                });
        measure(&converting,
                [&]
                {
                    for (const DecodedFrame& frame : decoded)
                        images.push_back(frame.Finish().image);
                });
        measure(&painting,
                [&]
                {
                    for (const QImage& image : images)
                    {
                        viewer.SetImage(0, image, false);
                        backEnd->repaint();
                    }
                });
    }
    const double cores = static_cast<double>(std::max(1u, std::thread::hardware_concurrency()));
    const double serving = ProcessorSecondsOf(server) - serverStart;
    const double total = decoding + converting + painting + serving;
    std::printf("frames %d decode_ms %.3f convert_ms %.3f paint_ms %.3f server_ms %.3f floor_fps %.2f\n",
                frames, decoding * 1e3 / frames, converting * 1e3 / frames, painting * 1e3 / frames,
                serving * 1e3 / frames, frames * cores / total);
    return 0;
}
