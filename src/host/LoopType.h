// SPDX-License-Identifier: MIT
#pragma once

/// What playback does at the end of its range.
enum LoopType
{
    NoLoop = 0,  ///< stop
    Loop = 1,    ///< go on from the start
    PingPong = 2 ///< turn round
};
