// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Makes a drag of @p bytes, whatever they are, and lets each reader of drags have it: the payload reader,
/// the viewer, the project tree and the element list. Returns what was done against the rules; nothing if all
/// is well. An application must be there.
///
/// The first byte tells by its bits which formats the drag has (1 ids of project objects, 2 ids of elements,
/// 4 flags, 8 files), the second where it is dropped, the third how many flags follow; the rest is the ids,
/// and the list of files.
std::string UseDragPayload(const uint8_t* bytes, size_t size);
