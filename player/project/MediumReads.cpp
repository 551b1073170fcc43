// SPDX-License-Identifier: MIT
#include "project/MediumReads.h"

#include "media/FrameLoader.h"

#include <QTimer>

#include <algorithm>

namespace
{

/// How many media are read at once: their index is read from the disk, which more don't make faster.
constexpr int ReadsAtOnce = 4;
/// Numbers of the loader's media that nothing else takes.
constexpr int FirstNumber = 1 << 30;

} // namespace

MediumReads::MediumReads(FrameLoader* loader, QImage::Format pictureFormat, QObject* parent)
    : QObject(parent), mLoader(loader), mPictureFormat(pictureFormat), mNextNumber(FirstNumber)
{
    if (!loader)
        return;
    connect(loader, SIGNAL(MediaOpened(int, const MediaInfo&)), this,
            SLOT(OnMediaOpened(int, const MediaInfo&)));
    connect(loader, SIGNAL(OpenFailed(int, const QString&)), this, SLOT(OnOpenFailed(int, const QString&)));
}

int MediumReads::Read(const QString& path, double sequenceRate, Done done, bool keepOpen)
{
    const int number = mNextNumber++;
    mPending[number] = Pending{path, sequenceRate, std::move(done), keepOpen, false};
    StartLater();
    return number;
}

void MediumReads::Cancel(int number)
{
    const auto found = mPending.find(number);
    if (found == mPending.end())
        return;
    if (found->second.started && mLoader)
        mLoader->Close(number);
    mPending.erase(found);
    StartLater();
}

void MediumReads::CancelAll()
{
    while (!mPending.empty())
        Cancel(mPending.begin()->first);
}

void MediumReads::Close(int number)
{
    if (mLoader)
        mLoader->Close(number);
}

bool MediumReads::IsReading() const
{
    return !mPending.empty();
}

void MediumReads::StartLater()
{
    QTimer::singleShot(0, this, SLOT(StartNext()));
}

void MediumReads::StartNext()
{
    auto running = std::count_if(mPending.begin(), mPending.end(),
                                 [](const auto& pending) { return pending.second.started; });
    for (auto pending = mPending.begin(); pending != mPending.end() && running < ReadsAtOnce; ++pending)
    {
        if (pending->second.started)
            continue;
        if (!mLoader)
        {
            // The others follow when this one is done.
            Finish(pending->first, nullptr, tr("%1 can't be read here").arg(pending->second.path));
            return;
        }
        pending->second.started = true;
        ++running;
        MediaOptions options;
        options.pictureFormat = mPictureFormat;
        options.sequenceRate = FrameRate::FromPerSecond(pending->second.sequenceRate);
        mLoader->Open(pending->first, pending->second.path, options);
    }
}

void MediumReads::OnMediaOpened(int media, const MediaInfo& info)
{
    const auto found = mPending.find(media);
    if (found == mPending.end())
        return;
    const MediaInfo kept = info;
    if (!found->second.keepOpen)
        mLoader->Close(media);
    Finish(media, &kept, QString());
}

void MediumReads::OnOpenFailed(int media, const QString& text)
{
    Finish(media, nullptr, text);
}

void MediumReads::Finish(int number, const MediaInfo* info, const QString& error)
{
    const auto found = mPending.find(number);
    if (found == mPending.end())
        return;
    const Done done = std::move(found->second.done);
    mPending.erase(found);
    StartLater();
    done(info, error);
}
