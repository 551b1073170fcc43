// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

class SoundFeed;

/// A device that pulls sample frames out of a feed and makes them audible, and by that a clock.
///
/// All operations but HeardPosition() belong to one thread.
class AudioSink
{
public:
    virtual ~AudioSink() = default;

    /// Opens the device for @p feed, which must live until Close(), and lets it pull. Returns false on
    /// failure, with the reason in @p error; it may then be tried again.
    virtual bool Open(SoundFeed* feed, QString* error) = 0;
    /// Ends pulling; does nothing unless the device is open.
    virtual void Close() = 0;
    /// Sample frames a second; valid while the device is open.
    virtual int Rate() const = 0;
    /// Position, in the feed, of the frame that is audible now: what was pulled less what is still on its
    /// way. Stands still while nothing is audible. For any thread.
    virtual int64_t HeardPosition() const = 0;
};
