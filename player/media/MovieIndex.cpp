// SPDX-License-Identifier: MIT
#include "media/MovieIndex.h"

#include "media/StreamPictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace
{

constexpr int64_t NoTime = AV_NOPTS_VALUE;

/// Calls @p visit for each packet of the stream until the file's end. Returns false if cancelled.
template<typename Visit>
bool ForEachPacket(AVFormatContext* format, int streamIndex, const CancelToken& cancel, Visit visit)
{
    const LibavPointer<AVPacket> packet(av_packet_alloc());
    while (!cancel.IsCancelled())
    {
        // A file that is cut off ends in an error instead of its end; what came before counts all the same.
        const int result = av_read_frame(format, packet.get());
        if (result == AVERROR(EAGAIN))
            continue;
        if (result < 0)
            return !cancel.IsCancelled();
        if (packet->stream_index == streamIndex)
            visit(*packet);
        av_packet_unref(packet.get());
    }
    return false;
}

/// A number that says what the packet's bytes are, from its ends and its size.
int64_t ContentOf(const AVPacket& packet)
{
    constexpr int edge = 96;
    uint64_t hash = 14695981039346656037ULL ^ uint64_t(packet.size);
    const auto add = [&](int begin, int end)
    {
        for (int i = begin; i < end; ++i)
            hash = (hash ^ packet.data[i]) * 1099511628211ULL;
    };
    add(0, std::min(packet.size, edge));
    add(std::max(packet.size - edge, 0), packet.size);
    return int64_t(hash >> 1);
}

MovieIndex::Packet PacketOf(const AVPacket& packet)
{
    return {packet.pts, packet.dts, packet.pos, ContentOf(packet), 0, (packet.flags & AV_PKT_FLAG_KEY) != 0};
}

bool IsUnique(std::vector<std::pair<int64_t, int>>& entries)
{
    std::sort(entries.begin(), entries.end());
    return std::adjacent_find(entries.begin(), entries.end(),
                              [](const auto& a, const auto& b)
                              { return a.first == b.first; }) == entries.end();
}

FrameRate Reduced(int64_t numerator, int64_t denominator)
{
    int reducedNumerator = 0;
    int reducedDenominator = 0;
    av_reduce(&reducedNumerator, &reducedDenominator, numerator, denominator, 1000000);
    return {reducedNumerator, reducedDenominator};
}

} // namespace

bool MovieIndex::Build(AVFormatContext* format, int streamIndex, const CancelToken& cancel)
{
    const AVStream* const stream = format->streams[streamIndex];
    const AVCodecID codec = stream->codecpar->codec_id;
    bool hasAllTimes = true;
    const bool finished = ForEachPacket(format, streamIndex, cancel,
                                        [&](const AVPacket& packet)
                                        {
                                            const bool isShown =
                                                (packet.flags & AV_PKT_FLAG_DISCARD) == 0 &&
                                                StreamPictures::IsShown(codec, packet.data, packet.size);
                                            hasAllTimes = hasAllTimes && (!isShown || packet.pts != NoTime);
                                            mPackets.push_back(PacketOf(packet));
                                            mPackets.back().frame = isShown ? 1 : 0;
                                        });
    if (!finished)
        return false;
    for (int i = 0; i < PacketCount(); ++i)
        if (At(i).isKey)
            mKeys.push_back(i);
    ChooseIdentity();

    std::vector<int64_t> order(mPackets.size());
    if (hasAllTimes)
        std::transform(mPackets.begin(), mPackets.end(), order.begin(),
                       [](const Packet& p) { return p.pts; });
    else
        std::iota(order.begin(), order.end(), int64_t(0));
    NumberFrames(order);
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(codec);
    mNeedsOrder = !hasAllTimes && descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_REORDER) != 0;
    return true;
}

bool MovieIndex::AssignOrder(AVFormatContext* format, int streamIndex, const CancelToken& cancel)
{
    const AVStream* const stream = format->streams[streamIndex];
    const LibavPointer<AVCodecParserContext> parser(av_parser_init(stream->codecpar->codec_id));
    const LibavPointer<AVCodecContext> context(avcodec_alloc_context3(nullptr));
    if (!parser || !context || avcodec_parameters_to_context(context.get(), stream->codecpar) < 0)
        return true;
    parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;

    const bool hasOrderCount =
        stream->codecpar->codec_id == AV_CODEC_ID_H264 || stream->codecpar->codec_id == AV_CODEC_ID_HEVC;
    std::vector<int64_t> order;
    // The picture order count starts anew at some key pictures; groups keep those apart.
    int64_t group = 0;
    int64_t highest = INT64_MIN;
    // Without one, a picture that others refer to is shown when the next such picture comes.
    int64_t shown = 0;
    int waiting = -1;
    const bool finished =
        ForEachPacket(format, streamIndex, cancel,
                      [&](const AVPacket& packet)
                      {
                          uint8_t* out = nullptr;
                          int outSize = 0;
                          av_parser_parse2(parser.get(), context.get(), &out, &outSize, packet.data,
                                           packet.size, packet.pts, packet.dts, packet.pos);
                          order.push_back(0);
                          if (hasOrderCount)
                          {
                              const int64_t count = parser->output_picture_number;
                              if (parser->key_frame == 1 && count < highest)
                              {
                                  ++group;
                                  highest = INT64_MIN;
                              }
                              highest = std::max(highest, count);
                              order.back() = group * (int64_t(1) << 32) + count;
                          }
                          else if (parser->pict_type == AV_PICTURE_TYPE_B)
                          {
                              order.back() = ++shown;
                          }
                          else
                          {
                              if (waiting >= 0)
                                  order[size_t(waiting)] = ++shown;
                              waiting = int(order.size()) - 1;
                          }
                      });
    if (waiting >= 0)
        order[size_t(waiting)] = ++shown;
    if (!finished)
        return false;
    if (order.size() == mPackets.size())
        NumberFrames(order);
    return true;
}

void MovieIndex::NumberFrames(const std::vector<int64_t>& order)
{
    mPacketOfFrame.clear();
    for (int i = 0; i < PacketCount(); ++i)
        if (At(i).frame > 0)
            mPacketOfFrame.push_back(i);
    std::stable_sort(mPacketOfFrame.begin(), mPacketOfFrame.end(),
                     [&](int a, int b) { return order[size_t(a)] < order[size_t(b)]; });
    for (int frame = 1; frame <= FrameCount(); ++frame)
        mPackets[size_t(PacketOfFrame(frame))].frame = frame;
}

int64_t MovieIndex::IdentityOf(const Packet& packet) const
{
    switch (mIdentity)
    {
    case Identity::Pts:
        return packet.pts;
    case Identity::Position:
        return packet.position;
    case Identity::Content:
        break;
    }
    return packet.content;
}

void MovieIndex::ChooseIdentity()
{
    // Times that the container wrote are the same after a seek, those that the library fills in are not: a
    // stream without all presentation times is known by where its packets lie or, at last, by what they hold.
    for (const Identity identity : {Identity::Pts, Identity::Position, Identity::Content})
    {
        mIdentity = identity;
        mByIdentity.clear();
        bool isComplete = true;
        for (int i = 0; i < PacketCount(); ++i)
        {
            isComplete = isComplete && IdentityOf(At(i)) != NoTime && IdentityOf(At(i)) != -1;
            mByIdentity.emplace_back(IdentityOf(At(i)), i);
        }
        if (IsUnique(mByIdentity) && (isComplete || identity == Identity::Content))
            return;
    }
}

int MovieIndex::Find(const AVPacket& packet, int expected) const
{
    const Packet wanted = PacketOf(packet);
    const int64_t identity = IdentityOf(wanted);
    if (expected >= 0 && expected < PacketCount() && IdentityOf(At(expected)) == identity)
        return expected;
    // Packets that hold the same are told apart by their times.
    int best = -1;
    uint64_t bestDistance = UINT64_MAX;
    for (auto found = std::lower_bound(mByIdentity.begin(), mByIdentity.end(), std::make_pair(identity, 0));
         found != mByIdentity.end() && found->first == identity; ++found)
    {
        const uint64_t a = uint64_t(At(found->second).dts);
        const uint64_t b = uint64_t(wanted.dts);
        const uint64_t distance = int64_t(a) > int64_t(b) ? a - b : b - a;
        if (best >= 0 && distance >= bestDistance)
            continue;
        best = found->second;
        bestDistance = distance;
    }
    return best;
}

int MovieIndex::StartPacket(int frame, int earlier) const
{
    const int packet = PacketOfFrame(frame);
    auto key = std::upper_bound(mKeys.begin(), mKeys.end(), packet);
    // Pictures that come after a key picture in the file and before it on the screen need the group before.
    while (key != mKeys.begin())
    {
        --key;
        const int keyFrame = At(*key).frame;
        if (keyFrame > 0 && keyFrame <= frame && earlier-- <= 0)
            return *key;
    }
    return 0;
}

int MovieIndex::GroupStart(int frame) const
{
    const int keyFrame = At(StartPacket(frame)).frame;
    return keyFrame > 0 && keyFrame <= frame ? keyFrame : 1;
}

int MovieIndex::ReorderDepth() const
{
    // A picture waits for each one that is decoded before and shown after it.
    int depth = 0;
    int highest = 0;
    std::vector<int> recent;
    for (const Packet& packet : mPackets)
    {
        if (packet.frame == 0)
            continue;
        if (packet.frame > highest)
        {
            highest = packet.frame;
        }
        else
        {
            const auto later =
                std::count_if(recent.begin(), recent.end(), [&](int frame) { return frame > packet.frame; });
            depth = std::max(depth, int(later));
        }
        recent.push_back(packet.frame);
        if (recent.size() > 32)
            recent.erase(recent.begin());
    }
    return std::min(depth, 16);
}

int64_t MovieIndex::FirstTime() const
{
    if (mPacketOfFrame.empty())
        return NoTime;
    const Packet& first = At(PacketOfFrame(1));
    return first.pts != NoTime ? first.pts : first.dts;
}

FrameRate MovieIndex::GuessRate(AVRational timeBase, AVRational guess) const
{
    const bool hasGuess = guess.num > 0 && guess.den > 0;
    const FrameRate guessed = hasGuess ? Reduced(guess.num, guess.den) : FrameRate();
    if (FrameCount() < 2 || timeBase.num <= 0 || timeBase.den <= 0)
        return guessed;
    const int64_t first = FirstTime();
    const int64_t last = At(PacketOfFrame(FrameCount())).pts;
    if (first == NoTime || last == NoTime || last <= first)
        return guessed;
    const double ticks = double(last - first);
    const double average = (FrameCount() - 1) / (ticks * timeBase.num / timeBase.den);
    // Each end may be rounded to the time base.
    const double tolerance = average * std::max(1.5 / ticks, 1e-6);
    if (hasGuess && std::abs(guessed.PerSecond() - average) <= tolerance)
        return guessed;
    for (const int rate : {24, 25, 30, 48, 50, 60, 12, 15, 100, 120, 10, 5, 1})
        for (const FrameRate& candidate : {FrameRate{rate, 1}, FrameRate{rate * 1000, 1001}})
            if (std::abs(candidate.PerSecond() - average) <= tolerance)
                return candidate;
    const int64_t span = last - first;
    if (span > INT64_MAX / (int64_t(timeBase.num) * 2))
        return guessed;
    const FrameRate exact = Reduced(int64_t(FrameCount() - 1) * timeBase.den, span * timeBase.num);
    return exact.IsValid() ? exact : guessed;
}
