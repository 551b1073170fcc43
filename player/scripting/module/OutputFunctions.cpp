// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "host/Logger.h"
#include "host/Settings.h"
#include "output/ExportJob.h"
#include "output/SnapshotJob.h"
#include "playback/PlaybackController.h"
#include "project/MediaSource.h"
#include "project/ProjectTimeline.h"
#include "scripting/ScriptHost.h"
#include "viewers/ViewerWidget.h"

#include <QFileInfo>
#include <QPointer>
#include <QWidget>

#include <vector>

namespace py = pybind11;

namespace
{

using ScriptModule::ObjectHandle;
using ScriptModule::OnGui;
using ScriptModule::Words;

using Handle = std::optional<ObjectHandle>;

/// The pause between two looks whether a job is done, in seconds.
constexpr double JobInterval = 0.02;
/// Sizes that can be exported, as the preferences have them.
constexpr int SmallestExport = 16;
constexpr int LargestExport = 8192;

const QStringList QualityNames = {QStringLiteral("very high"), QStringLiteral("high"),
                                  QStringLiteral("medium"), QStringLiteral("low")};

/// A job that a script waits for; its fields belong to the GUI thread.
template<typename Job>
struct JobRun
{
    /// A child of the window; gone once it is done.
    QPointer<Job> job;
    bool done = false;
    /// Why it failed; empty if it didn't.
    QString error;
};

/// Waits until @p run is done, and has @p stop called on the GUI thread if the script is to stop before.
template<typename Job>
void WaitForJob(const std::shared_ptr<JobRun<Job>>& run, void (Job::*stop)())
{
    try
    {
        while (!OnGui([run](ScriptHost&) { return run->done; }))
            ScriptModule::Wait(JobInterval);
    }
    catch (const py::error_already_set&)
    {
        if (const auto channel = ScriptModule::CurrentChannel())
        {
            const py::gil_scoped_release release;
            channel->Post(
                [run, stop]
                {
                    if (run->job)
                        (run->job->*stop)();
                });
        }
        throw;
    }
    const QString error = OnGui([run](ScriptHost&) { return run->error; });
    if (!error.isEmpty())
        throw std::runtime_error(Words(error));
}

/// The number of @p word among the first @p count words that @p wordOf gives; @p fallback without a word.
template<typename WordOf>
int NumberOfWord(const char* what, const std::optional<QString>& word, int count, int fallback, WordOf wordOf)
{
    if (!word)
        return fallback;
    QStringList words;
    for (int number = 0; number < count; ++number)
    {
        words << QStringLiteral("\"%1\"").arg(wordOf(number));
        if (wordOf(number) == *word)
            return number;
    }
    throw std::invalid_argument(
        Words(QStringLiteral("there is no %1 \"%2\"; they are %3")
                  .arg(QString::fromLatin1(what), *word, words.join(QStringLiteral(", ")))));
}

/// What is shown, with @p timeline alone or, with @p layout, as the viewers show it.
OutputViewers ViewersFor(ScriptHost& host, ProjectTimeline* timeline, bool layout)
{
    OutputViewers viewers;
    viewers.timelines[0] = timeline;
    if (!layout)
        return viewers;
    for (int viewer = 0; viewer < PlaybackController::ViewerCount; ++viewer)
        viewers.timelines[static_cast<size_t>(viewer)] = host.Playback()->TimelineOf(viewer).get();
    viewers.leading = viewers.timelines[1] == timeline && viewers.timelines[0] != timeline ? 1 : 0;
    if (viewers.timelines[static_cast<size_t>(viewers.leading)] != timeline)
        throw std::invalid_argument(
            Words(QStringLiteral("no viewer shows %1, so that it has no layout").arg(timeline->GetName())));
    viewers.layout = host.Viewer()->GetViewerLayout();
    return viewers;
}

/// What a script asks of an export.
struct ExportWish
{
    std::optional<int> first;
    std::optional<int> last;
    std::optional<std::pair<int, int>> size;
    bool annotations = true;
    bool layout = false;
    Handle timeline;
};

QSize ExportSize(ProjectTimeline& timeline, int first, const std::optional<std::pair<int, int>>& size)
{
    if (size)
        return QSize(size->first, size->second);
    const std::shared_ptr<const MediaSource> source = timeline.SourceAt(first);
    return source ? QSize(source->Info().width, source->Info().height)
                  : QSize(Settings::globalExportWidth, Settings::globalExportHeight);
}

std::shared_ptr<JobRun<ExportJob>> StartExport(ScriptHost& host, const ExportWish& wish,
                                               ExportOptions options)
{
    const auto timeline = ScriptModule::TimelineFor(host, wish.timeline);
    if (timeline->FrameCount() == 0)
        throw std::runtime_error(Words(QStringLiteral("%1 has no frames").arg(timeline->GetName())));
    const PlaybackRange range = timeline->Range();
    const int first = ScriptModule::FrameFor(host, *timeline, wish.first.value_or(range.first));
    const int last = ScriptModule::FrameFor(host, *timeline, wish.last.value_or(range.last));
    if (first > last)
        throw std::invalid_argument(
            Words(QStringLiteral("the export would end at %1, before it starts at %2").arg(last).arg(first)));
    options.size = ExportSize(*timeline, first, wish.size);
    options.encoder = ExportJob::FindEncoder();
    options.temporaryDirectory = Settings::tempExportDirPath;
    const auto run = std::make_shared<JobRun<ExportJob>>();
    auto* const job = new ExportJob(host.Window());
    run->job = job;
    QObject::connect(job, &ExportJob::Line, job,
                     [run](const QString& text, bool detailedOnly)
                     {
                         // The last line of a failure is why.
                         if (!detailedOnly)
                             run->error = text;
                     });
    QObject::connect(job, &ExportJob::Finished, job,
                     [run, job](bool succeeded)
                     {
                         run->done = true;
                         if (succeeded)
                         {
                             Logger::GetInstance()->Info(run->error);
                             run->error.clear();
                         }
                         job->deleteLater();
                     });
    job->Start(MakeOutputPlan(ViewersFor(host, timeline.get(), wish.layout), FramesBetween(first, last),
                              wish.annotations, true),
               options);
    return run;
}

void Export(const QString& path, std::optional<int> first, std::optional<int> last,
            const std::optional<std::pair<int, int>>& size, const std::optional<QString>& quality,
            const std::optional<QString>& preset, const std::optional<QString>& profile, bool annotations,
            bool layout, const Handle& timeline)
{
    if (size && (std::min(size->first, size->second) < SmallestExport ||
                 std::max(size->first, size->second) > LargestExport))
        throw std::invalid_argument(
            Words(QStringLiteral("%1 x %2 can't be exported; sides can have %3 to %4 pixels")
                      .arg(size->first)
                      .arg(size->second)
                      .arg(SmallestExport)
                      .arg(LargestExport)));
    // What is not said is the user's choice, which is the GUI thread's.
    const auto chosen = OnGui(
        [](ScriptHost&) {
            return std::make_tuple(Settings::exportQuality, Settings::exportPreset, Settings::exportProfile);
        });
    ExportOptions options;
    options.outputPath = QFileInfo(path).absoluteFilePath();
    options.quality = static_cast<ExportQuality>(NumberOfWord(
        "quality", quality, 4, std::get<0>(chosen), [](int number) { return QualityNames.at(number); }));
    options.preset = static_cast<ExportPreset>(
        NumberOfWord("preset", preset, 9, std::get<1>(chosen),
                     [](int number) { return EncoderPreset(static_cast<ExportPreset>(number)); }));
    options.profile = static_cast<ExportProfile>(
        NumberOfWord("profile", profile, 3, std::get<2>(chosen),
                     [](int number) { return EncoderProfile(static_cast<ExportProfile>(number)); }));
    const ExportWish wish{first, last, size, annotations, layout, timeline};
    WaitForJob(OnGui([wish, options](ScriptHost& host) { return StartExport(host, wish, options); }),
               &ExportJob::Stop);
}

std::shared_ptr<JobRun<SnapshotJob>> StartSnapshot(ScriptHost& host, const QString& path,
                                                   std::optional<int> frame, bool annotations, bool replace,
                                                   const Handle& handle)
{
    const auto timeline = ScriptModule::TimelineFor(host, handle);
    const int shown = ScriptModule::FrameFor(host, *timeline, frame);
    const auto run = std::make_shared<JobRun<SnapshotJob>>();
    auto* const job = new SnapshotJob(host.Window());
    run->job = job;
    QObject::connect(job, &SnapshotJob::Finished, job,
                     [run, job, path](int written, const QStringList& problems)
                     {
                         run->done = true;
                         if (written == 0)
                             run->error = problems.isEmpty() ? QStringLiteral("%1 was not written").arg(path)
                                                             : problems.join(QLatin1Char('\n'));
                         else
                             for (const QString& problem : problems)
                                 Logger::GetInstance()->Warning(problem);
                         job->deleteLater();
                     });
    job->Start(MakeOutputPlan(ViewersFor(host, timeline.get(), false), {shown}, annotations, false), {path},
               replace);
    return run;
}

void Snapshot(const QString& path, std::optional<int> frame, bool annotations, bool replace,
              const Handle& timeline)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    WaitForJob(OnGui([=](ScriptHost& host)
                     { return StartSnapshot(host, absolute, frame, annotations, replace, timeline); }),
               &SnapshotJob::Cancel);
}

} // namespace

void ScriptModule::AddOutput(py::module_& module)
{
    module.def(
        "export", &Export, py::arg("path"), py::arg("first") = py::none(), py::arg("last") = py::none(),
        py::kw_only(), py::arg("size") = py::none(), py::arg("quality") = py::none(),
        py::arg("preset") = py::none(), py::arg("profile") = py::none(), py::arg("annotations") = true,
        py::arg("layout") = false, py::arg("timeline") = py::none(),
        "Exports frames first to last of a timeline, its playback range unless told, as an H.264 movie "
        "and returns when it is written and counted. The size is that of the source, and quality (\"very "
        "high\", \"high\", \"medium\", \"low\"), preset (\"veryslow\" to \"ultrafast\") and profile "
        "(\"high\", \"main\", \"baseline\") are the user's unless told; layout exports what the viewers "
        "show. A failure raises RuntimeError; stopping the script stops the export, and nothing is left "
        "of it.");
    module.def(
        "snapshot", &Snapshot, py::arg("path"), py::arg("frame") = py::none(), py::kw_only(),
        py::arg("annotations") = true, py::arg("replace") = false, py::arg("timeline") = py::none(),
        "Writes a frame, the one under the playhead unless told, as a still at the size of its picture; "
        "the suffix of path tells the format (png, jpg, tif, exr). A file that is there is replaced only "
        "with replace.");
}
