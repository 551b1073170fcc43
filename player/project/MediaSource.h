// SPDX-License-Identifier: MIT
#pragma once

#include "host/Source.h"
#include "media/MediaInfo.h"

/// A source of the project: the file or the sequence at a path, with what is known of it.
///
/// It does not change: a source that is replaced or read anew becomes another object with the same identity.
class MediaSource : public Source
{
public:
    /// @p info is what is known of the medium, and what was known of it where @p missing says that its file
    /// can't be read now.
    MediaSource(const QUuid& id, const MediaInfo& info, bool missing = false);

    const MediaInfo& Info() const { return mInfo; }
    bool IsMissing() const { return mMissing; }

private:
    MediaInfo mInfo;
    bool mMissing;
};
