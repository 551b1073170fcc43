// SPDX-License-Identifier: MIT
#pragma once

#include "media/CancelToken.h"
#include "media/FrameRate.h"
#include "media/LibavPointers.h"

#include <cstdint>
#include <utility>
#include <vector>

/// Which packet of a video stream holds which frame.
///
/// It is built from the stream's own packets, without decoding: frame N is the N-th shown picture in the
/// order of presentation times. Neither the header's count nor its rate is trusted.
class MovieIndex
{
public:
    struct Packet
    {
        int64_t pts;
        int64_t dts;
        int64_t position;
        /// A hash of its bytes.
        int64_t content;
        /// 1-based; 0 for a picture that is not shown.
        int frame;
        bool isKey;
    };

    /// Reads every packet of stream @p streamIndex from where @p format stands, which is the beginning.
    /// Returns false if cancelled.
    bool Build(AVFormatContext* format, int streamIndex, const CancelToken& cancel);

    /// Whether presentation times are missing and the order has to come from AssignOrder().
    bool NeedsOrder() const { return mNeedsOrder; }
    /// Gives the packets of a stream without presentation times the order of their pictures, as the stream
    /// itself tells it; reads the packets again from where @p format stands, the beginning. Returns false if
    /// cancelled.
    bool AssignOrder(AVFormatContext* format, int streamIndex, const CancelToken& cancel);

    int FrameCount() const { return int(mPacketOfFrame.size()); }
    int PacketCount() const { return int(mPackets.size()); }
    const Packet& At(int packet) const { return mPackets[size_t(packet)]; }
    /// The packet of @p frame (1 to FrameCount()), in decoding order from 0.
    int PacketOfFrame(int frame) const { return mPacketOfFrame[size_t(frame - 1)]; }

    /// The packet to start decoding at for @p frame: the last key picture that neither follows it in decoding
    /// nor in presentation, or the @p earlier-th one before that. 0 if there is none.
    int StartPacket(int frame, int earlier = 0) const;
    /// The first frame shown of those decoded from StartPacket().
    int GroupStart(int frame) const;

    /// The index of @p packet, which was just read; @p expected is the likely one. -1 if it is none of ours.
    int Find(const AVPacket& packet, int expected) const;

    /// How many pictures the decoder must hold back so that they come out in order.
    int ReorderDepth() const;

    /// The rate of the frames, in whole 1001 family members where the times agree with one; @p guess is the
    /// header's, taken if it agrees.
    FrameRate GuessRate(AVRational timeBase, AVRational guess) const;

    /// Presentation time of the first frame, in the stream's time base; AV_NOPTS_VALUE if unknown.
    int64_t FirstTime() const;

private:
    /// What a packet is known by after a seek.
    enum class Identity
    {
        Pts,
        Position,
        Content
    };

    int64_t IdentityOf(const Packet& packet) const;
    void ChooseIdentity();
    void NumberFrames(const std::vector<int64_t>& order);

    std::vector<Packet> mPackets;
    std::vector<int> mPacketOfFrame;
    /// Key packets in decoding order.
    std::vector<int> mKeys;
    Identity mIdentity = Identity::Pts;
    /// Identity and packet, sorted.
    std::vector<std::pair<int64_t, int>> mByIdentity;
    bool mNeedsOrder = false;
};
