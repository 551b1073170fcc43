// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"

#include <algorithm>

namespace
{

bool HasShownDrawings(const FrameData& data)
{
    return data.lastIndex >= 0;
}

/// Up to @p count annotated frames from @p first on to before @p last, the furthest from @p first in front.
template<typename Iterator>
QList<const FrameData*> NearestAnnotated(Iterator first, Iterator last, int count)
{
    QList<const FrameData*> nearest;
    for (; first != last && nearest.size() < count; ++first)
    {
        if (HasShownDrawings(*first->second))
            nearest.prepend(first->second.get());
    }
    return nearest;
}

} // namespace

const FrameData* AnnotationStore::Find(int frame) const
{
    const auto found = mFrames.find(frame);
    return found == mFrames.end() ? nullptr : found->second.get();
}

FrameData& AnnotationStore::At(int frame)
{
    std::unique_ptr<FrameData>& data = mFrames[frame];
    if (!data)
        data = std::make_unique<FrameData>();
    return *data;
}

void AnnotationStore::SetDrawings(int frame, const QList<DrawData>& drawings)
{
    FrameData& data = At(frame);
    data.drawData = drawings;
    data.firstIndex = 0;
    data.lastIndex = drawings.size() - 1;
}

QList<DrawData> AnnotationStore::Drawings(int frame) const
{
    const FrameData* const data = Find(frame);
    return data ? data->drawData : QList<DrawData>();
}

std::map<int, QList<DrawData>> AnnotationStore::MoveFrames(const std::function<int(int frame)>& target)
{
    std::map<int, QList<DrawData>> removed;
    std::map<int, std::unique_ptr<FrameData>> moved;
    for (auto& [frame, data] : mFrames)
    {
        const int place = target(frame);
        if (place > 0)
            moved[place] = std::move(data);
        else if (!data->drawData.isEmpty())
            removed[frame] = data->drawData;
    }
    mFrames = std::move(moved);
    return removed;
}

QList<const FrameData*> AnnotationStore::Before(int frame, int count) const
{
    return NearestAnnotated(std::make_reverse_iterator(mFrames.lower_bound(frame)), mFrames.rend(), count);
}

QList<const FrameData*> AnnotationStore::After(int frame, int count) const
{
    return NearestAnnotated(mFrames.upper_bound(frame), mFrames.end(), count);
}

QVector<int> AnnotationStore::AnnotatedFrames() const
{
    QVector<int> frames;
    for (const auto& [frame, data] : mFrames)
    {
        if (HasShownDrawings(*data))
            frames << frame;
    }
    return frames;
}
