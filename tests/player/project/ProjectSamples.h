// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaInfo.h"
#include "project/Project.h"

#include <QByteArray>
#include <QRandomGenerator>

/// What tests of the project are made of.
namespace ProjectSamples
{

/// A medium called @p name that is nowhere on the disk.
MediaInfo Medium(const QString& name, int frames = 48, const FrameRate& rate = FrameRate{24, 1});

/// A text drawing with an id.
DrawData Note(const QString& text, uint64_t id);
/// A stroke of @p points points.
DrawData Stroke(QRandomGenerator& random, int points);

/// The project as its file says it: what two equal projects have in common.
QByteArray Written(const Project& project);

/// Does one change at random, of any kind. Returns whether anything was changed.
bool ChangeAtRandom(Project& project, QRandomGenerator& random);

} // namespace ProjectSamples
