// SPDX-License-Identifier: MIT
#include "host/Source.h"

Source::Source(const QUuid& id, const QString& path) : mID(id), mPath(path) {}

Source::~Source() = default;

const QUuid& Source::GetID() const
{
    return mID;
}

const QString& Source::GetPath() const
{
    return mPath;
}
