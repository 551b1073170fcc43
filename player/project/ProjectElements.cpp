// SPDX-License-Identifier: MIT
// Steps that change a timeline: its elements and what belongs to it.
#include "project/Project.h"

#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "project/NaturalOrder.h"

#include <algorithm>
#include <cmath>

namespace
{

size_t PlaceOfRow(int index, size_t count)
{
    return index < 0 ? count : std::min(static_cast<size_t>(index), count);
}

ElementTimeline::Elements::iterator FindElementIn(ElementTimeline::Elements& elements, const QUuid& id)
{
    return std::find_if(elements.begin(), elements.end(),
                        [&](const std::shared_ptr<ElementObject>& element)
                        { return element->GetID() == id; });
}

QString KeyOf(const char* kind, const QUuid& id)
{
    return QLatin1String(kind) + id.toString();
}

} // namespace

bool Project::ChangeState(const QUuid& timelineID, const Step& step,
                          const std::function<bool(ProjectTimeline&)>& mutate)
{
    const std::shared_ptr<ProjectTimeline> timeline = FindTimeline(timelineID);
    if (!timeline)
        return false;
    Followers timelines{timeline};
    if (timeline->IsSourceTimeline())
        timelines += FollowersOf({timeline.get()});
    Changes changes;
    bool isChanged = false;
    AppendStates(changes, timelines, [&] { isChanged = mutate(*timeline); });
    return isChanged && Push(step, changes);
}

bool Project::ChangeElements(const QUuid& timelineID, const QString& text, ElementTimeline::Elements elements)
{
    const std::shared_ptr<ElementTimeline> timeline = FindElementTimeline(timelineID);
    if (!timeline || timeline->GetElements() == elements)
        return false;
    Changes changes;
    AppendStates(changes, {timeline}, [&] { timeline->SetElements(elements); });
    return Push({text, {}, false}, changes);
}

QList<QUuid> Project::InsertElements(const QUuid& timelineID, const QList<QUuid>& sourceIDs,
                                     const QList<int>& indices)
{
    const std::shared_ptr<ElementTimeline> timeline = FindElementTimeline(timelineID);
    if (!timeline)
        return {};
    QList<QUuid> ids;
    ElementTimeline::Elements elements = timeline->GetElements();
    for (int index = 0; index < sourceIDs.size(); ++index)
    {
        const auto source = std::dynamic_pointer_cast<MediaTimeline>(Find(sourceIDs[index]));
        if (!source)
            continue;
        const auto element = std::make_shared<ElementObject>(source);
        const size_t place = PlaceOfRow(indices.value(index, -1), elements.size());
        elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(place), element);
        ids.append(element->GetID());
    }
    ChangeElements(timelineID, tr("Insert Elements"), elements);
    return ids;
}

bool Project::MoveElements(const QUuid& timelineID, const QList<QUuid>& ids, const QList<int>& indices)
{
    const std::shared_ptr<ElementTimeline> timeline = FindElementTimeline(timelineID);
    if (!timeline)
        return false;
    ElementTimeline::Elements elements = timeline->GetElements();
    for (int index = 0; index < ids.size(); ++index)
    {
        const auto from = FindElementIn(elements, ids[index]);
        if (from == elements.end())
            continue;
        const auto to = elements.begin() +
                        static_cast<std::ptrdiff_t>(PlaceOfRow(indices.value(index, -1), elements.size()));
        if (to > from)
            std::rotate(from, from + 1, to);
        else
            std::rotate(to, from, from + 1);
    }
    return ChangeElements(timelineID, tr("Move Elements"), elements);
}

bool Project::RemoveElements(const QUuid& timelineID, const QList<QUuid>& ids)
{
    const std::shared_ptr<ElementTimeline> timeline = FindElementTimeline(timelineID);
    if (!timeline)
        return false;
    const QSet<QUuid> removed(ids.begin(), ids.end());
    ElementTimeline::Elements elements = timeline->GetElements();
    elements.erase(std::remove_if(elements.begin(), elements.end(),
                                  [&](const std::shared_ptr<ElementObject>& element)
                                  { return removed.contains(element->GetID()); }),
                   elements.end());
    return ChangeElements(timelineID, tr("Remove Elements"), elements);
}

bool Project::SortElements(const QUuid& timelineID, bool ascending)
{
    const std::shared_ptr<ElementTimeline> timeline = FindElementTimeline(timelineID);
    if (!timeline)
        return false;
    ElementTimeline::Elements elements = timeline->GetElements();
    std::stable_sort(
        elements.begin(), elements.end(),
        [ascending](const std::shared_ptr<ElementObject>& a, const std::shared_ptr<ElementObject>& b)
        {
            return ascending ? IsBeforeNaturally(a->GetName(), b->GetName())
                             : IsBeforeNaturally(b->GetName(), a->GetName());
        });
    return ChangeElements(timelineID, ascending ? tr("Sort Ascending") : tr("Sort Descending"), elements);
}

bool Project::SetRange(const QUuid& timelineID, int first, int last)
{
    return ChangeState(timelineID, {tr("Range"), KeyOf("range", timelineID), false},
                       [&](ProjectTimeline& timeline)
                       {
                           const std::optional<PlaybackRange> before = timeline.RangeAsSet();
                           const int count = std::max(timeline.FrameCount(), 1);
                           const int start = std::clamp(first, 1, count);
                           timeline.SetRange({start, std::clamp(last, start, count)});
                           return timeline.RangeAsSet() != before;
                       });
}

bool Project::SetPanZoom(const QUuid& timelineID, const QPointF& pan, float zoom, bool enabled)
{
    if (!std::isfinite(pan.x()) || !std::isfinite(pan.y()) || !std::isfinite(zoom))
        return false;
    return ChangeState(timelineID, {tr("Pan and Zoom"), KeyOf("view", timelineID), true},
                       [&](ProjectTimeline& timeline)
                       {
                           const PanZoom view{pan, zoom, enabled};
                           if (timeline.View() == view)
                               return false;
                           timeline.SetView(view);
                           return true;
                       });
}

bool Project::SetUseSourceInOuts(const QUuid& timelineID, bool enabled)
{
    const std::shared_ptr<ElementTimeline> timeline = FindElementTimeline(timelineID);
    if (!timeline || timeline->UsesSourceRanges() == enabled)
        return false;
    return ChangeState(timelineID, {tr("Apply Source Ranges"), {}, false},
                       [&](ProjectTimeline&)
                       {
                           timeline->SetUsesSourceRanges(enabled);
                           return true;
                       });
}

bool Project::AddBookmark(const QUuid& timelineID, int frame)
{
    return ChangeState(timelineID, {tr("Mark Frame"), {}, false},
                       [&](ProjectTimeline& timeline)
                       {
                           if (frame < 1 || frame > timeline.FrameCount() ||
                               timeline.MarkedFrames().contains(frame))
                               return false;
                           timeline.SetMarked(frame, true);
                           return true;
                       });
}

bool Project::RemoveBookmark(const QUuid& timelineID, int frame)
{
    return ChangeState(timelineID, {tr("Unmark Frame"), {}, false},
                       [&](ProjectTimeline& timeline)
                       {
                           if (!timeline.MarkedFrames().contains(frame))
                               return false;
                           timeline.SetMarked(frame, false);
                           return true;
                       });
}

bool Project::AddRangeBookmark(const QUuid& timelineID, int first, int last, const QString& note)
{
    return ChangeState(timelineID, {tr("Mark Range"), {}, false},
                       [&](ProjectTimeline& timeline)
                       {
                           if (first < 1 || last < first || last > timeline.FrameCount())
                               return false;
                           RangeBookmark bookmark(timeline.FrameToTime(first), timeline.FrameToTime(last));
                           bookmark.note = note;
                           timeline.GetBookmarks()->AddRangeBookmark(bookmark);
                           return true;
                       });
}

bool Project::RemoveRangeBookmark(const QUuid& timelineID, int first, int last)
{
    return ChangeState(timelineID, {tr("Unmark Range"), {}, false},
                       [&](ProjectTimeline& timeline)
                       {
                           return timeline.GetBookmarks()->RemoveRangeBookmark(timeline.FrameToTime(first),
                                                                               timeline.FrameToTime(last));
                       });
}

bool Project::SetDrawings(const QUuid& timelineID, int frame, const QList<DrawData>& drawings,
                          const QString& text)
{
    return ChangeState(timelineID, {text, {}, false},
                       [&](ProjectTimeline& timeline)
                       {
                           if (frame < 1)
                               return false;
                           timeline.Annotations()->SetDrawings(frame, drawings);
                           timeline.UpdateAnnotationBookmark(frame);
                           return true;
                       });
}
