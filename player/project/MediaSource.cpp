// SPDX-License-Identifier: MIT
#include "project/MediaSource.h"

MediaSource::MediaSource(const QUuid& id, const MediaInfo& info, bool missing)
    : Source(id, info.path), mInfo(info), mMissing(missing)
{
}
