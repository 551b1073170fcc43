// SPDX-License-Identifier: MIT
#pragma once

#include "output/EncoderArguments.h"
#include "output/OutputPlan.h"

#include <QStringList>

#include <memory>
#include <vector>

class ElementTimeline;
class ExportJob;
class MediaTimeline;

/// What tests of output need: timelines of real files, exports run to their end, and what became of them.
namespace OutputProbe
{

/// A numbered movie of @p frames frames, 320 x 180, at @p rate, whose first frame carries 1.
QString Movie(int frames, const QString& rate);

/// The timeline of the medium at @p path; null if it can't be opened.
std::shared_ptr<MediaTimeline> TimelineOf(const QString& path);

/// A timeline that plays @p sources one after the other.
std::shared_ptr<ElementTimeline> TimelineOf(const std::vector<std::shared_ptr<MediaTimeline>>& sources);

/// All of @p timeline with its annotations and sound.
OutputPlan WholePlan(ProjectTimeline& timeline);

/// Quick to encode, to @p path by the ffmpeg program on the path.
ExportOptions Options(const QString& path, const QSize& size = QSize(320, 180));

/// What an export told.
struct Record
{
    bool isFinished = false;
    bool succeeded = false;
    QStringList basicLines;
    QStringList detailedLines;
    std::vector<int> progress;
};

/// Records @p job from now on.
std::shared_ptr<Record> RecordOf(ExportJob& job);

/// Runs @p job with @p plan and waits for its end.
Record Run(ExportJob& job, OutputPlan plan, const ExportOptions& options);

/// The numbers that the frames of the medium at @p path carry, in order.
std::vector<int> NumbersIn(const QString& path);

/// An executable file at @p path that runs @p script in the shell.
bool MakeProgram(const QString& path, const QByteArray& script);

/// Names in @p directory, hidden ones too, sorted.
QStringList NamesIn(const QString& directory);

} // namespace OutputProbe
