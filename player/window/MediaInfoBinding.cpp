// SPDX-License-Identifier: MIT
#include "window/MediaInfoBinding.h"

#include "dialogs/output/MediaInfoDialog.h"
#include "playback/PlaybackController.h"
#include "project/MediaSource.h"
#include "project/ProjectTimeline.h"
#include "viewers/ViewerWidget.h"

#include <QEvent>

MediaInfoBinding::MediaInfoBinding(PlaybackController* playback, ViewerWidget* viewer, QWidget* window)
    : QObject(window), mPlayback(playback), mViewer(viewer), mPanel(new MediaInfoDialog(window))
{
    // Queued, so that the viewer has its new picture and size.
    connect(playback, SIGNAL(PlayheadMoved(int64_t)), this, SLOT(Update()), Qt::QueuedConnection);
    connect(playback, SIGNAL(LeadingTimelineChanged()), this, SLOT(Update()), Qt::QueuedConnection);
    connect(playback, SIGNAL(PictureReady(int, int, const ReadResult&)), this, SLOT(Update()),
            Qt::QueuedConnection);
    // The back end, which knows its pictures' sizes once it has painted them.
    for (QWidget* const backEnd : viewer->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        backEnd->installEventFilter(this);
}

void MediaInfoBinding::Toggle()
{
    mPanel->setVisible(!mPanel->isVisible());
    Update();
}

bool MediaInfoBinding::IsShown() const
{
    return mPanel->isVisible();
}

MediaInfoDialog* MediaInfoBinding::Panel() const
{
    return mPanel;
}

QString MediaInfoBinding::DurationText(int64_t time)
{
    const int64_t milliseconds = (time + 500) / 1000;
    const QLatin1Char zero('0');
    return QStringLiteral("%1:%2:%3.%4")
        .arg(milliseconds / 3600000, 2, 10, zero)
        .arg(milliseconds / 60000 % 60, 2, 10, zero)
        .arg(milliseconds / 1000 % 60, 2, 10, zero)
        .arg(milliseconds % 1000, 3, 10, zero);
}

bool MediaInfoBinding::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint && mPanel->isVisible())
        QMetaObject::invokeMethod(this, "Update", Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

void MediaInfoBinding::Update()
{
    if (!mPanel->isVisible())
        return;
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    const std::shared_ptr<const MediaSource> source =
        timeline ? timeline->SourceAt(mPlayback->CurrentFrame()) : nullptr;
    if (source != mShown)
    {
        mPanel->Clear();
        if (source)
            ShowSource(*source);
        mShown = source;
    }
    if (source)
        mPanel->SetCurrentSize(
            tr("%1 x %2").arg(mViewer->GetImageDisplayWidth()).arg(mViewer->GetImageDisplayHeight()));
}

void MediaInfoBinding::ShowSource(const MediaSource& source)
{
    const MediaInfo& info = source.Info();
    mPanel->SetSourcePath(info.path);
    mPanel->SetDuration(DurationText(info.duration));
    mPanel->SetNormalSize(tr("%1 x %2").arg(info.width).arg(info.height));
    mPanel->SetVideoCodec(info.pixelFormat.isEmpty() ? info.codecName
                                                     : tr("%1 (%2)").arg(info.codecName, info.pixelFormat));
    mPanel->SetNumFrames(info.frameCount);
    mPanel->SetFrameRate(info.frameRate.PerSecond());
    if (!info.hasAudio)
        return;
    mPanel->SetAudioCodec(info.audioCodecName);
    mPanel->SetNumAudioChannels(info.audioChannels);
    mPanel->SetSampleRate(info.audioSampleRate);
}
