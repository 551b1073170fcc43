// SPDX-License-Identifier: MIT
#include "host/Timeline.h"

namespace
{

const int TimelineMetaType = qRegisterMetaType<std::weak_ptr<Timeline>>("std::weak_ptr<Timeline>");

} // namespace

Timeline::~Timeline() = default;

int Timeline::GetType()
{
    Q_UNUSED(TimelineMetaType)
    return 1;
}

Bookmarks* Timeline::GetBookmarks()
{
    return &mBookmarks;
}
