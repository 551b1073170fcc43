// SPDX-License-Identifier: MIT
#pragma once

#include "host/FrameData.h"

#include <QList>
#include <QVector>

#include <functional>
#include <map>
#include <memory>

/// The annotations of one timeline, by frame. Records keep their address until their frame is removed, so
/// that viewers may hold them.
class AnnotationStore
{
public:
    /// The annotations of @p frame; null if it has no record.
    const FrameData* Find(int frame) const;
    /// The annotations of @p frame, made empty where there are none.
    FrameData& At(int frame);
    /// Makes @p drawings the drawings of @p frame, all of them shown.
    void SetDrawings(int frame, const QList<DrawData>& drawings);
    /// The drawings of @p frame.
    QList<DrawData> Drawings(int frame) const;

    /// Moves the annotations of each frame to the frame that @p target answers for it, which keep their
    /// address; those for which it answers 0 are taken out and returned by their frame.
    std::map<int, QList<DrawData>> MoveFrames(const std::function<int(int frame)>& target);

    /// Up to @p count annotated frames before @p frame, the furthest first.
    QList<const FrameData*> Before(int frame, int count) const;
    /// Up to @p count annotated frames after @p frame, the furthest first.
    QList<const FrameData*> After(int frame, int count) const;
    /// Every annotated frame, in order.
    QVector<int> AnnotatedFrames() const;

private:
    std::map<int, std::unique_ptr<FrameData>> mFrames;
};
