// SPDX-License-Identifier: MIT
#pragma once

/// How the files of a series of stills are numbered.
enum SnapshotNumbering
{
    SnapshotNumberingSequence = 0, ///< one after the other
    SnapshotNumberingFrame = 1     ///< by frame
};
