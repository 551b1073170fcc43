// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

struct Command;
class AnnotationBarBinding;
class AnnotationController;
class BookmarkController;
class BookmarksBarBinding;
class VolumeState;

/// Appends the commands of drawing, those of the strip of tools among them. @p clearFrame clears the frame
/// that is shown; its argument says whether the bookmark goes too.
void AddAnnotationCommands(std::vector<Command>& commands, AnnotationBarBinding* bar,
                           AnnotationController* annotation, std::function<void(bool)> clearFrame);

/// Appends the commands of bookmarks and of the playback range.
void AddBookmarkCommands(std::vector<Command>& commands, BookmarkController* bookmarks,
                         BookmarksBarBinding* bar);

/// Appends the commands of loudness.
void AddSoundCommands(std::vector<Command>& commands, VolumeState* volume);
