// SPDX-License-Identifier: MIT
#include "OutputProbe.h"

#include "media/MediaReader.h"
#include "media/NumberedMedia.h"
#include "output/ExportJob.h"
#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace
{

constexpr int ExportTimeout = 60000;

}

QString OutputProbe::Movie(int frames, const QString& rate)
{
    return NumberedMedia::Movie(QStringLiteral("output%1.mp4").arg(frames), frames, rate,
                                {"-vf", "scale=out_color_matrix=bt601:out_range=tv", "-c:v", "libx264", "-qp",
                                 "14", "-g", "12", "-bf", "2", "-pix_fmt", "yuv420p", "-colorspace",
                                 "smpte170m"},
                                QSize(320, 180));
}

std::shared_ptr<MediaTimeline> OutputProbe::TimelineOf(const QString& path)
{
    QString error;
    const std::unique_ptr<MediaReader> reader = OpenMedia(path, &error);
    if (!reader)
    {
        qWarning("%s", qPrintable(error));
        return nullptr;
    }
    return std::make_shared<MediaTimeline>(
        std::make_shared<const MediaSource>(QUuid::createUuid(), reader->Info()));
}

std::shared_ptr<ElementTimeline>
OutputProbe::TimelineOf(const std::vector<std::shared_ptr<MediaTimeline>>& sources)
{
    auto timeline = std::make_shared<ElementTimeline>(QStringLiteral("cut"));
    ElementTimeline::Elements elements;
    for (const std::shared_ptr<MediaTimeline>& source : sources)
        elements.push_back(std::make_shared<ElementObject>(source));
    timeline->SetElements(elements);
    return timeline;
}

OutputPlan OutputProbe::WholePlan(ProjectTimeline& timeline)
{
    OutputViewers viewers;
    viewers.timelines[0] = &timeline;
    return MakeOutputPlan(viewers, FramesBetween(1, timeline.FrameCount()), true, true);
}

ExportOptions OutputProbe::Options(const QString& path, const QSize& size)
{
    ExportOptions options;
    options.outputPath = path;
    options.size = size;
    options.quality = ExportQualityVeryHigh;
    options.preset = ExportPresetUltraFast;
    options.encoder = ExportJob::FindEncoder();
    return options;
}

std::shared_ptr<OutputProbe::Record> OutputProbe::RecordOf(ExportJob& job)
{
    auto record = std::make_shared<Record>();
    QObject::connect(&job, &ExportJob::Line, &job,
                     [record](const QString& text, bool detailedOnly)
                     {
                         record->detailedLines << text;
                         if (!detailedOnly)
                             record->basicLines << text;
                     });
    QObject::connect(&job, &ExportJob::Progress, &job,
                     [record](int perMille) { record->progress.push_back(perMille); });
    QObject::connect(&job, &ExportJob::Finished, &job,
                     [record](bool succeeded)
                     {
                         record->isFinished = true;
                         record->succeeded = succeeded;
                     });
    return record;
}

OutputProbe::Record OutputProbe::Run(ExportJob& job, OutputPlan plan, const ExportOptions& options)
{
    const std::shared_ptr<Record> record = RecordOf(job);
    job.Start(std::move(plan), options);
    if (!QTest::qWaitFor([&] { return record->isFinished; }, ExportTimeout))
        qWarning("the export did not end:\n%s", qPrintable(record->detailedLines.join('\n')));
    return *record;
}

std::vector<int> OutputProbe::NumbersIn(const QString& path)
{
    QString error;
    const std::unique_ptr<MediaReader> reader = OpenMedia(path, &error);
    if (!reader)
    {
        qWarning("%s", qPrintable(error));
        return {};
    }
    std::vector<int> numbers;
    for (int frame = 1; frame <= reader->Info().frameCount; ++frame)
        numbers.push_back(NumberedMedia::NumberIn(reader->ReadFrame(frame).image));
    return numbers;
}

bool OutputProbe::MakeProgram(const QString& path, const QByteArray& script)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("#!/bin/sh\n" + script) > 0 &&
           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QStringList OutputProbe::NamesIn(const QString& directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}
