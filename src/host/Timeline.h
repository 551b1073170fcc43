// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenCoreExport.h"
#include "host/Bookmarks.h"
#include "host/ProjectObject.h"

#include <QMetaType>

#include <memory>

/// A timeline of a project: an object of type 1 that has bookmarks. The host subclasses it to give it
/// elements and a clock.
class TORVALENCORE_EXPORT Timeline : public ProjectObject
{
public:
    using ProjectObject::ProjectObject;
    ~Timeline() override;

    /// Always 1.
    int GetType() override;
    /// The timeline's own bookmarks; never null.
    Bookmarks* GetBookmarks() override;

private:
    Bookmarks mBookmarks;
};

Q_DECLARE_METATYPE(std::weak_ptr<Timeline>)
