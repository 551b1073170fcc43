// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectTimeline.h"

#include <map>
#include <utility>

class MediaTimeline;

/// An element of a timeline: a source timeline's frames, played at a place of another timeline.
class ElementObject : public ProjectObject
{
public:
    /// The element is called after @p sourceTimeline until it gets a name of its own.
    explicit ElementObject(std::shared_ptr<MediaTimeline> sourceTimeline,
                           const QUuid& id = QUuid::createUuid());

    const std::shared_ptr<MediaTimeline>& SourceTimeline() const;
    /// Its own name; empty while it is called after its source.
    const QString& OwnName() const;
    void SetOwnName(const QString& name);
    /// Microseconds on its timeline.
    void SetStartTime(int64_t time);

    const QString& GetName() override;
    /// Always 2.
    int GetType() override;
    bool IsMissing() override;
    std::weak_ptr<Source> GetSource() override;
    int64_t GetStartTime() override;

private:
    std::shared_ptr<MediaTimeline> mSourceTimeline;
    QString mOwnName;
    int64_t mStartTime = 0;
};

/// A timeline that plays elements one after the other, across sources of different sizes and rates.
class ElementTimeline : public ProjectTimeline
{
public:
    using ProjectTimeline::ProjectTimeline;

    using Elements = std::vector<std::shared_ptr<ElementObject>>;

    const Elements& GetElements() const;
    /// Makes @p elements the elements, in order, and lays them out. A timeline without a rate takes that of
    /// the first source.
    ///
    /// Marks, drawings and range bookmarks that lie within an element move with it; those of elements that
    /// are gone go too. The caller keeps what it wants to bring back, and hands the viewers the annotations
    /// anew.
    void SetElements(const Elements& elements);
    /// Lays the elements out anew, after a source or its range has changed.
    void Relayout();

    /// Sets the frames per second; marks and drawings keep their frames.
    void SetRate(const FrameRate& rate);
    /// Whether there is a rate yet: one that was set or came with an element.
    bool HasRate() const;
    /// Whether elements play only the range of their source timelines; on at first.
    bool UsesSourceRanges() const;
    void SetUsesSourceRanges(bool use);

    /// Drawings by element and frame of its source.
    using Offstage = std::map<std::pair<QUuid, int>, QList<DrawData>>;
    /// Drawings on frames that are cut off by their source's range. They come back with the frame.
    const Offstage& OffstageDrawings() const;
    void SetOffstageDrawings(const Offstage& drawings);

    FrameRate Rate() const override;
    const std::vector<TimelineSegment>& Segments() const override;
    QList<std::shared_ptr<ProjectObject>> GetChildren() override;
    /// Whether the source of any element is missing.
    bool IsMissing() override;

private:
    std::vector<TimelineSegment> LayOut() const;
    void FollowElements(const std::vector<TimelineSegment>& before);
    /// The frame at @p time, also beyond the end.
    int TimelineFrame(int64_t time) const;

    Elements mElements;
    std::vector<TimelineSegment> mSegments;
    /// Not valid until the first element brings a rate.
    FrameRate mRate{0, 0};
    bool mUsesSourceRanges = true;
    Offstage mOffstage;
};
