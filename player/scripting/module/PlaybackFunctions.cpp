// SPDX-License-Identifier: MIT
#include "scripting/module/ScriptModule.h"

#include "host/Settings.h"
#include "playback/PlaybackController.h"
#include "project/ProjectTimeline.h"
#include "scripting/ScriptHost.h"
#include "window/CommandTable.h"

#include <cmath>
#include <utility>

namespace py = pybind11;

namespace
{

using ScriptModule::OnGui;
using ScriptModule::Words;

/// The pause between two looks whether the player has settled, in seconds.
constexpr double SettleInterval = 0.005;

const QStringList LoopNames = {QStringLiteral("off"), QStringLiteral("loop"), QStringLiteral("ping-pong")};

ProjectObject& Leader(ScriptHost& host)
{
    const auto& timeline = host.Playback()->LeadingTimeline();
    if (!timeline)
        throw std::runtime_error("no viewer shows anything: open a medium first");
    return *timeline;
}

int LastFrame(ProjectObject& timeline)
{
    return timeline.TimeToFrame(timeline.GetEndTime());
}

void CheckFrame(ProjectObject& timeline, int frame)
{
    const int last = LastFrame(timeline);
    if (frame < 1 || frame > last)
        throw std::invalid_argument(Words(
            QStringLiteral("there is no frame %1; the timeline has frames 1 to %2").arg(frame).arg(last)));
}

int GetFrame()
{
    return OnGui(
        [](ScriptHost& host)
        {
            Leader(host);
            return host.Playback()->CurrentFrame();
        });
}

int64_t GetTime()
{
    return OnGui(
        [](ScriptHost& host)
        {
            Leader(host);
            return host.Playback()->CurrentTime();
        });
}

void Seek(std::optional<int> frame, std::optional<int64_t> time)
{
    if (frame.has_value() == time.has_value())
        throw py::type_error("seek() takes either a frame or a time");
    OnGui(
        [frame, time](ScriptHost& host)
        {
            ProjectObject& timeline = Leader(host);
            if (frame)
            {
                CheckFrame(timeline, *frame);
                host.Playback()->SeekFrame(*frame);
                return;
            }
            const int64_t end = timeline.FrameToTime(LastFrame(timeline) + 1);
            if (*time < timeline.GetStartTime() || *time >= end)
                throw std::invalid_argument(
                    Words(QStringLiteral("%1 is no time of the timeline; they are %2 to %3")
                              .arg(*time)
                              .arg(timeline.GetStartTime())
                              .arg(end - 1)));
            host.Playback()->SeekTime(*time);
        });
}

void Play(const QString& direction)
{
    if (direction != QLatin1String("forwards") && direction != QLatin1String("backwards"))
        throw std::invalid_argument(
            Words(QStringLiteral("there is no direction \"%1\"; they are \"forwards\" and \"backwards\"")
                      .arg(direction)));
    OnGui(
        [forwards = direction == QLatin1String("forwards")](ScriptHost& host)
        {
            Leader(host);
            host.Playback()->Play(forwards ? 1 : -1);
        });
}

std::pair<int, int> Range(std::optional<int> first, std::optional<int> last)
{
    if (first.has_value() != last.has_value())
        throw py::type_error("range() takes the first and the last frame, or nothing");
    return OnGui(
        [first, last](ScriptHost& host)
        {
            ProjectObject& timeline = Leader(host);
            if (first)
            {
                CheckFrame(timeline, *first);
                CheckFrame(timeline, *last);
                if (*first > *last)
                    throw std::invalid_argument(
                        Words(QStringLiteral("the range would end at %1, before it starts at %2")
                                  .arg(*last)
                                  .arg(*first)));
                host.Playback()->SetRange(timeline.FrameToTime(*first), timeline.FrameToTime(*last));
            }
            const PlaybackRange& range = host.Playback()->Range();
            return std::make_pair(range.first, range.last);
        });
}

float Speed(std::optional<float> speed)
{
    // As the controller bounds it, which would clamp in silence.
    if (speed && !(*speed >= 0.05f && *speed <= 16.0f))
        throw std::invalid_argument(
            Words(QStringLiteral("the speed %1 lies outside 0.05 to 16").arg(static_cast<double>(*speed))));
    return OnGui(
        [speed](ScriptHost& host)
        {
            if (speed)
                host.Playback()->SetSpeed(*speed);
            return host.Playback()->Speed();
        });
}

QString LoopMode(const std::optional<QString>& mode)
{
    if (mode && !LoopNames.contains(*mode))
        throw std::invalid_argument(
            Words(QStringLiteral("there is no loop \"%1\"; they are \"off\", \"loop\" and \"ping-pong\"")
                      .arg(*mode)));
    return OnGui(
        [mode](ScriptHost& host)
        {
            if (mode)
            {
                Settings::loopType = static_cast<LoopType>(LoopNames.indexOf(*mode));
                host.ApplySetting(QStringLiteral("loopType"));
            }
            return LoopNames.value(Settings::loopType);
        });
}

bool Stepped(std::optional<bool> stepped)
{
    return OnGui(
        [stepped](ScriptHost& host)
        {
            if (stepped)
            {
                host.Playback()->SetStepped(*stepped);
                host.Commands()->UpdateSwitches();
            }
            return host.Playback()->IsStepped();
        });
}

void WaitUntilSettled(double timeout)
{
    if (!(timeout >= 0.0))
        throw std::invalid_argument("a timeout can't be below 0");
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(std::min(timeout, 1e9));
    while (!OnGui([](ScriptHost& host) { return host.IsSettled(); }))
    {
        if (std::chrono::steady_clock::now() >= end)
        {
            PyErr_SetString(PyExc_TimeoutError, "the viewers don't show yet what they are to show");
            throw py::error_already_set();
        }
        ScriptModule::Wait(SettleInterval);
    }
}

} // namespace

void ScriptModule::AddPlayback(py::module_& module)
{
    module.def("frame", &GetFrame, "The frame under the playhead, counted from 1.");
    module.def("time", &GetTime, "The time under the playhead in microseconds: the start of its frame.");
    module.def(
        "frame_count", [] { return OnGui([](ScriptHost& host) { return LastFrame(Leader(host)); }); },
        "Number of frames of the timeline that leads: that of the active viewer.");
    module.def("seek", &Seek, py::arg("frame") = py::none(), py::kw_only(), py::arg("time") = py::none(),
               "Moves the playhead: seek(12) to a frame, seek(time=500000) to the frame at a time in "
               "microseconds. The picture comes later; see wait_until_settled().");
    module.def("play", &Play, py::arg("direction") = QStringLiteral("forwards"),
               "Plays, \"forwards\" or \"backwards\".");
    module.def(
        "pause", [] { OnGui([](ScriptHost& host) { host.Playback()->Pause(); }); }, "Stops playing.");
    module.def(
        "is_playing", [] { return OnGui([](ScriptHost& host) { return host.Playback()->IsPlaying(); }); },
        "Whether the player plays.");
    module.def(
        "step",
        [](int frames)
        {
            OnGui(
                [frames](ScriptHost& host)
                {
                    Leader(host);
                    host.Playback()->Step(frames);
                });
        },
        py::arg("frames") = 1, "Pauses and moves the playhead by frames, backwards if below 0.");
    module.def("range", &Range, py::arg("first") = py::none(), py::arg("last") = py::none(),
               "The first and the last frame of the playback range; range(10, 20) sets it first.");
    module.def("speed", &Speed, py::arg("speed") = py::none(),
               "How many times as fast playback runs; speed(2) sets it first (0.05 to 16).");
    module.def(
        "loop", &LoopMode, py::arg("mode") = py::none(),
        "What playback does at the end of its range: \"off\", \"loop\" or \"ping-pong\"; loop(mode) sets "
        "it first.");
    module.def("every_frame", &Stepped, py::arg("enabled") = py::none(),
               "Whether playback shows every frame rather than keeping the time; every_frame(True) sets it "
               "first.");
    module.def("wait_until_settled", &WaitUntilSettled, py::arg("timeout") = 30.0,
               "Waits until every viewer shows the picture that it is to show and nothing is being opened; "
               "raises TimeoutError after timeout seconds.");
}
