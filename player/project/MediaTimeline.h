// SPDX-License-Identifier: MIT
#pragma once

#include "project/ProjectTimeline.h"

class MediaSource;
struct MediaInfo;

/// The timeline of one source: a single element as long as the medium, with the medium's clock.
class MediaTimeline : public ProjectTimeline
{
public:
    explicit MediaTimeline(std::shared_ptr<const MediaSource> source, const QUuid& id = QUuid::createUuid(),
                           const QUuid& parentID = QUuid());

    const std::shared_ptr<const MediaSource>& GetMediaSource() const;
    /// Puts @p source in the place of the one before; what hangs on the timeline stays.
    void SetMediaSource(std::shared_ptr<const MediaSource> source);
    /// What is known of the medium.
    const MediaInfo& Info() const;

    FrameRate Rate() const override;
    const std::vector<TimelineSegment>& Segments() const override;
    bool IsMissing() override;
    bool IsSourceTimeline() override;
    std::weak_ptr<Source> GetSource() override;

private:
    std::shared_ptr<const MediaSource> mSource;
    QUuid mElementID = QUuid::createUuid();
    std::vector<TimelineSegment> mSegments;
};
