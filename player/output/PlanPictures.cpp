// SPDX-License-Identifier: MIT
#include "output/PlanPictures.h"

#include <algorithm>

namespace
{

/// Media that are kept open at once: more than a cut back and forth needs.
constexpr size_t MaximumOpen = 8;

} // namespace

PlanPictures::PlanPictures(const OutputPlan& plan, const CancelToken& cancel) : mPlan(plan), mCancel(cancel)
{
}

FetchedFrame PlanPictures::Fetch(int index)
{
    FetchedFrame frame;
    for (int track = 0; track < 2; ++track)
    {
        const std::vector<OutputPlace>& places = mPlan.tracks[static_cast<size_t>(track)].places;
        if (static_cast<size_t>(index) < places.size())
            frame[static_cast<size_t>(track)] = FetchPlace(track, places[static_cast<size_t>(index)]);
    }
    return frame;
}

FetchedPicture PlanPictures::FetchPlace(int track, const OutputPlace& place)
{
    FetchedPicture picture;
    if (place.media < 0)
        return picture;
    const OpenMedium& medium = Open(place.media, track);
    if (!medium.reader)
    {
        picture.problem = medium.error;
        return picture;
    }
    if (medium.reader->CanReadInParallel())
    {
        picture.finish = [reader = medium.reader, frame = place.frame, cancel = mCancel]
        { return reader->ReadFrame(frame, cancel); };
        return picture;
    }
    DecodedFrame decoded = medium.reader->DecodeFrame(place.frame, mCancel);
    if (decoded.status == ReadStatus::Ok)
        picture.stored = decoded.stored;
    picture.problem = decoded.text;
    // The stored picture would be held twice.
    decoded.stored.reset();
    picture.finish = [decoded = std::move(decoded)] { return decoded.Finish(); };
    return picture;
}

PlanPictures::OpenMedium& PlanPictures::Open(int media, int track)
{
    // A reader for each viewer, so that both can read in order.
    const auto found = std::find_if(mOpen.begin(), mOpen.end(),
                                    [&](const OpenMedium& medium)
                                    { return medium.media == media && medium.track == track; });
    if (found != mOpen.end())
    {
        mOpen.splice(mOpen.begin(), mOpen, found);
        return mOpen.front();
    }
    const MediaInfo& info = mPlan.media[static_cast<size_t>(media)];
    MediaOptions options;
    options.sequenceRate = info.frameRate;
    options.cancel = mCancel;
    OpenMedium medium{media, track, nullptr, QString()};
    medium.reader = OpenMedia(info.path, &medium.error, options);
    mOpen.push_front(std::move(medium));
    if (mOpen.size() > MaximumOpen)
        mOpen.pop_back();
    return mOpen.front();
}
