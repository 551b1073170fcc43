// SPDX-License-Identifier: MIT
#include "window/PropertiesBinding.h"

#include "host/Settings.h"
#include "media/MediaReader.h"
#include "playback/PlaybackController.h"
#include "project/ElementTimeline.h"
#include "project/MediaSource.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "views/TimelinePropertiesWidget.h"
#include "window/PanelArea.h"

#include <QFileDialog>

#include <algorithm>
#include <cmath>

namespace
{

/// The largest difference that the form's boxes don't show.
constexpr double HiddenPan = 0.005 + 1e-9;
constexpr float HiddenZoom = 0.05f + 1e-6f;

/// Whether the form shows both alike, so that leaving a box without an edit asks for @p edited.
bool LooksAlike(const PanZoom& view, const PanZoom& edited)
{
    const float shownZoom = std::min(std::max(view.zoom, 1.0f), Settings::zoomMaximum);
    return std::abs(view.pan.x() - edited.pan.x()) <= HiddenPan &&
           std::abs(view.pan.y() - edited.pan.y()) <= HiddenPan &&
           std::abs(shownZoom - edited.zoom) <= HiddenZoom && view.enabled == edited.enabled;
}

} // namespace

PropertiesBinding::PropertiesBinding(Project* project, PlaybackController* playback, PanelArea* panels,
                                     QObject* parent)
    : QObject(parent), mProject(project), mPlayback(playback), mForm(new TimelinePropertiesWidget)
{
    mForm->setObjectName(QStringLiteral("propertiesForm"));
    panels->SetPanel(QStringLiteral("properties"), mForm);

    connect(mForm, SIGNAL(RangeChangeRequested(int, int)), this, SLOT(OnRangeChangeRequested(int, int)));
    connect(mForm, SIGNAL(PanZoomChangeRequested(QPointF, float, bool)), this,
            SLOT(OnPanZoomEdited(QPointF, float, bool)));
    connect(mForm, SIGNAL(UseSourceInOutsChanged(bool)), this, SLOT(OnUseSourceInOutsChanged(bool)));
    connect(mForm, SIGNAL(SourceChangeRequested(QUuid, QString, QString)), this,
            SLOT(OnSourceChangeRequested(QUuid, QString, QString)));

    connect(playback, SIGNAL(LeadingTimelineChanged()), this, SLOT(ShowLeadingTimeline()));
    connect(playback, SIGNAL(RangeChanged(int64_t, int64_t)), this, SLOT(ShowRange()));
    connect(project, SIGNAL(Reset()), this, SLOT(ShowLeadingTimeline()));
    for (const char* const changed : {SIGNAL(TimelineChanged(QUuid)), SIGNAL(PropertiesChanged(QUuid)),
                                      SIGNAL(SourceChanged(QUuid)), SIGNAL(ObjectChanged(QUuid))})
        connect(project, changed, this, SLOT(OnTimelineChanged(QUuid)));
    connect(project, SIGNAL(Refused(QString)), this, SLOT(OnRefused()));
    // Both move the root that paths are relative to.
    connect(project, SIGNAL(SettingsChanged()), this, SLOT(ShowSource()));
    connect(project, SIGNAL(TitleChanged()), this, SLOT(ShowSource()));
    ShowLeadingTimeline();
}

TimelinePropertiesWidget* PropertiesBinding::Form() const
{
    return mForm;
}

const ProjectTimeline* PropertiesBinding::Shown() const
{
    return mPlayback->LeadingTimeline().get();
}

void PropertiesBinding::ShowLeadingTimeline()
{
    const std::shared_ptr<ProjectTimeline>& timeline = mPlayback->LeadingTimeline();
    if (!timeline)
        mForm->SetDisplayType(PropertiesDisplayNone);
    else
        mForm->SetDisplayType(timeline->IsSourceTimeline() ? PropertiesDisplaySource
                                                           : PropertiesDisplayTimeline);
    ShowRange();
    ShowView();
    ShowSource();
    if (const auto elements = std::dynamic_pointer_cast<ElementTimeline>(timeline))
        mForm->SetUseSourceInOuts(elements->UsesSourceRanges());
}

void PropertiesBinding::ShowRange()
{
    const ProjectTimeline* const timeline = Shown();
    mForm->SetFrameCount(timeline ? timeline->FrameCount() : 0);
    const PlaybackRange range = timeline ? timeline->Range() : PlaybackRange();
    mForm->SetFrameRange(range.first, range.last);
}

void PropertiesBinding::ShowView()
{
    const ProjectTimeline* const timeline = Shown();
    if (!timeline)
        return;
    const PanZoom view = timeline->View();
    mForm->SetPanAndZoom(view.pan, view.zoom, view.enabled);
    if (mToldID == timeline->GetID() && mTold == view)
        return;
    mToldID = timeline->GetID();
    mTold = view;
    Q_EMIT PanZoomChanged(view.pan, view.zoom, view.enabled);
}

void PropertiesBinding::ShowSource()
{
    mForm->SetSourceRootPath(mProject->SourceRootPath());
    const auto timeline = std::dynamic_pointer_cast<MediaTimeline>(mPlayback->LeadingTimeline());
    if (!timeline)
        return;
    const QString path = timeline->GetMediaSource()->GetPath();
    mForm->SetSourceInput(timeline->GetMediaSource()->GetID(), path, mProject->RelativePath(path));
}

void PropertiesBinding::OnTimelineChanged(const QUuid& id)
{
    if (Shown() && Shown()->GetID() == id)
        ShowLeadingTimeline();
}

void PropertiesBinding::OnRefused()
{
    // What was typed did not come to be.
    ShowSource();
}

void PropertiesBinding::OnRangeChangeRequested(int first, int last)
{
    if (!Shown())
        return;
    mProject->SetRange(Shown()->GetID(), first, last);
    // Boxes that have crossed show the range that it is, also where it was that before.
    ShowRange();
}

void PropertiesBinding::OnPanZoomEdited(QPointF panInterpolation, float zoom, bool enabled)
{
    const PanZoom edited{panInterpolation, zoom, enabled};
    // The boxes round: leaving one without an edit must change nothing. A reset is exact.
    const bool isReset = edited == PanZoom();
    if (Shown() && !isReset && LooksAlike(Shown()->View(), edited))
        return;
    RequestPanZoom(panInterpolation, zoom, enabled);
}

void PropertiesBinding::RequestPanZoom(QPointF panInterpolation, float zoom, bool enabled)
{
    if (!Shown())
    {
        mForm->SetPanAndZoom(panInterpolation, zoom, enabled);
        Q_EMIT PanZoomChanged(panInterpolation, zoom, enabled);
        return;
    }
    mProject->SetPanZoom(Shown()->GetID(), panInterpolation, zoom, enabled);
}

void PropertiesBinding::OnUseSourceInOutsChanged(bool enabled)
{
    if (Shown())
        mProject->SetUseSourceInOuts(Shown()->GetID(), enabled);
}

void PropertiesBinding::OnSourceChangeRequested(QUuid id, QString newPath, QString oldPath)
{
    QString path = newPath;
    if (!oldPath.isEmpty())
    {
        path = QFileDialog::getOpenFileName(
            mForm, tr("Replace Source"), oldPath,
            tr("Movies and Images (%1);;All Files (*)").arg(MediaNamePatterns().join(QLatin1Char(' '))));
    }
    const std::shared_ptr<MediaTimeline> source = mProject->FindSource(id);
    if (source && !path.isEmpty() && path != source->GetMediaSource()->GetPath())
        mProject->ReplaceSource(id, path);
    else
        ShowSource();
}
