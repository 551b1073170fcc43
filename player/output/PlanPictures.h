// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaReader.h"
#include "output/OutputPlan.h"

#include <array>
#include <list>
#include <memory>

/// The picture of one viewer's frame, decoded but not converted.
struct FetchedPicture
{
    /// Makes the picture; may be called once, on any thread. Empty where there is none.
    std::function<ReadResult()> finish;
    /// As of DecodedFrame.
    std::shared_ptr<const AVFrame> stored;
    /// What went wrong so far; empty if nothing did.
    QString problem;
};

/// What the viewers show on one frame of a plan.
using FetchedFrame = std::array<FetchedPicture, 2>;

/// Reads the pictures of a plan. One thread fetches; any thread may finish what was fetched.
class PlanPictures
{
public:
    /// @p plan outlives it.
    PlanPictures(const OutputPlan& plan, const CancelToken& cancel);

    /// Decodes what the viewers show on the frame at @p index; in order costs least. Pictures of sequences
    /// are left for FetchedPicture::finish.
    FetchedFrame Fetch(int index);

private:
    struct OpenMedium
    {
        int media;
        int track;
        /// Null if it can't be read; the reason then.
        std::shared_ptr<MediaReader> reader;
        QString error;
    };

    FetchedPicture FetchPlace(int track, const OutputPlace& place);
    OpenMedium& Open(int media, int track);

    const OutputPlan& mPlan;
    CancelToken mCancel;
    /// The one used last stands in front.
    std::list<OpenMedium> mOpen;
};
