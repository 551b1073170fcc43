// SPDX-License-Identifier: MIT
#include "sound/SoundRenderer.h"

#include "host/Logger.h"
#include "sound/SampleTime.h"

#include <algorithm>
#include <cmath>

namespace
{

// How far the sound is made ahead of the device, as parts of a second: enough for a slow disk; little while
// scrubbing, so that a new place is heard soon.
constexpr int PlaybackLeads = 4;
constexpr int GrainLeads = 40;
/// Frames that are made at a time, at normal speed.
constexpr int PieceFrames = 512;
/// How often the feed is looked after.
constexpr std::chrono::milliseconds FeedInterval(10);
constexpr std::chrono::seconds RetryInterval(5);
/// After how long without a use the device is closed.
constexpr std::chrono::seconds IdleTime(30);

} // namespace

SoundRenderer::SoundRenderer(std::unique_ptr<AudioSink> sink, AudioOpener opener, Threading threading)
    : mSink(std::move(sink)), mSound(std::move(opener))
{
    if (threading == Threading::Own)
        mThread = std::thread([this] { Run(); });
}

SoundRenderer::~SoundRenderer()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mQuits = true;
        mSerial.store(++mLastSerial);
        mFeed.SetRunning(false);
        mNews.notify_all();
    }
    if (mThread.joinable())
        mThread.join();
    CloseSink();
}

void SoundRenderer::Give(Order order)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    // A further grain goes on from the one before; anything else ends what is heard.
    if (order.kind != Kind::Grains)
        mFeed.SetRunning(false);
    order.serial = ++mLastSerial;
    mOrder = std::move(order);
    mState = State::Pending;
    mSerial.store(mLastSerial);
    mNews.notify_all();
}

int SoundRenderer::Play(std::vector<AudioSegment> segments, const PlaybackStart& start)
{
    Order order;
    order.kind = Kind::Playback;
    order.segments = std::move(segments);
    order.start = start;
    Give(std::move(order));
    const std::lock_guard<std::mutex> lock(mMutex);
    return mLastSerial;
}

void SoundRenderer::Stop()
{
    Give(Order());
}

void SoundRenderer::PlayGrain(std::vector<AudioSegment> segments, int64_t time)
{
    Order order;
    order.kind = Kind::Grains;
    order.segments = std::move(segments);
    order.time = time;
    Give(std::move(order));
}

void SoundRenderer::Prepare(std::vector<AudioSegment> segments)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mToPrepare = std::move(segments);
    mNews.notify_all();
}

void SoundRenderer::GiveUpDevice()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mGivesUp = true;
    }
    Stop();
}

SoundRenderer::Progress SoundRenderer::ProgressOf(int run) const
{
    const std::lock_guard<std::mutex> lock(mMutex);
    Progress progress;
    if (run != mLastSerial)
        return progress;
    progress.state = mState;
    if (mState == State::Sounding)
    {
        const int64_t heard = std::max<int64_t>(mSink->HeardPosition() - mBase, 0);
        progress.played = av_rescale_rnd(heard, mPlayedNumerator, mPlayedDenominator, AV_ROUND_UP);
    }
    return progress;
}

void SoundRenderer::Run()
{
    std::unique_lock<std::mutex> lock(mMutex);
    while (!mQuits)
    {
        lock.unlock();
        Work();
        lock.lock();
        if (mQuits || mOrder || (mToPrepare && !mIsLive))
            continue;
        if (mIsLive)
            mNews.wait_for(lock, FeedInterval);
        else if (mIsOpen)
            mNews.wait_for(lock, IdleTime);
        else
            mNews.wait(lock);
    }
}

void SoundRenderer::Pump()
{
    Work();
}

void SoundRenderer::Work()
{
    TakeOrder();
    if (mIsLive)
        mIsLive = Feed();
    else
        DoPreparation();
    if (mIsLive)
        mLastUse = Clock::now();
    else if (mIsOpen && Clock::now() - mLastUse >= IdleTime)
        CloseSink();
}

void SoundRenderer::TakeOrder()
{
    bool givesUp = false;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (!mOrder)
            return;
        const bool goesOn = mOrder->kind == Kind::Grains && mCurrent.kind == Kind::Grains;
        mIsLive = mIsLive && goesOn;
        mCurrent = std::move(*mOrder);
        mOrder.reset();
        givesUp = std::exchange(mGivesUp, false);
    }
    if (givesUp)
    {
        CloseSink();
        mRetryAt = Clock::now() + RetryInterval;
    }
    if (mCurrent.kind == Kind::Nothing)
    {
        mFeed.Discard();
        return;
    }
    if (!OpenSink())
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (mCurrent.serial == mLastSerial)
            mState = State::Failed;
        return;
    }
    if (mCurrent.kind == Kind::Playback)
        BeginPlayback();
    else
        BeginGrain();
}

void SoundRenderer::DoPreparation()
{
    std::vector<AudioSegment> segments;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (!mToPrepare)
            return;
        segments = std::move(*mToPrepare);
        mToPrepare.reset();
    }
    if (!OpenSink())
        return;
    mSound.SetSegments(std::move(segments), mSink->Rate());
    mSound.OpenMedia();
    mLastUse = Clock::now();
}

bool SoundRenderer::OpenSink()
{
    if (mIsOpen)
        return true;
    if (mRetryAt && Clock::now() < *mRetryAt)
        return false;
    QString reason;
    mIsOpen = mSink->Open(&mFeed, &reason);
    mRetryAt.reset();
    if (mIsOpen)
    {
        mHasToldOfDevice = false;
        return true;
    }
    mRetryAt = Clock::now() + RetryInterval;
    if (!std::exchange(mHasToldOfDevice, true))
        Logger::GetInstance()->Warning(QStringLiteral("Playback is silent: %1").arg(reason));
    return false;
}

void SoundRenderer::CloseSink()
{
    if (std::exchange(mIsOpen, false))
        mSink->Close();
}

void SoundRenderer::BeginPlayback()
{
    const int rate = mSink->Rate();
    const double speed = static_cast<double>(mCurrent.start.speed);
    mFeed.Discard();
    mSound.SetSegments(mCurrent.segments, rate);
    mPath = SoundPath(mCurrent.start, rate);
    // What is played and counted goes by this whole number; both thus keep in step at any speed.
    mSpeedRate = std::max(static_cast<int>(std::lround(rate * speed)), 1);
    mSpeedChanger.Start(mSpeedRate, rate);
    mMade.clear();
    mMadeOffset = 0;
    mIsLive = true;
    const std::lock_guard<std::mutex> lock(mMutex);
    mBase = mFeed.WritePosition();
    mPlayedNumerator = mSpeedRate * MicrosecondsPerSecond;
    mPlayedDenominator = int64_t(rate) * rate;
}

void SoundRenderer::BeginGrain()
{
    const int rate = mSink->Rate();
    if (!mIsLive)
    {
        mFeed.Discard();
        mGrains.Reset(rate);
        mMade.clear();
        mMadeOffset = 0;
        mSound.SetSegments(mCurrent.segments, rate);
    }
    mGrains.Request(SampleAt(mCurrent.time, rate));
    mIsLive = true;
}

bool SoundRenderer::Feed()
{
    const int leads = mCurrent.kind == Kind::Grains ? GrainLeads : PlaybackLeads;
    const int wanted = std::min(mSink->Rate() / leads, SoundFeed::Capacity / 2);
    while (mFeed.Lead() < wanted && !HasNews())
    {
        if (mMadeOffset == mMade.size() / 2 && !Make())
            return false;
        const int count = std::min(static_cast<int>(mMade.size() / 2 - mMadeOffset), mFeed.Room());
        if (count == 0)
            break;
        mFeed.Write(mMade.data() + 2 * mMadeOffset, count);
        mMadeOffset += static_cast<size_t>(count);
        LetSound();
    }
    return true;
}

void SoundRenderer::LetSound()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mSerial.load() != mCurrent.serial)
        return;
    mFeed.SetRunning(true);
    mState = State::Sounding;
}

bool SoundRenderer::Make()
{
    mMade.clear();
    mMadeOffset = 0;
    if (mCurrent.kind == Kind::Grains)
        return MakeGrains();
    // The speed changer keeps the first frames back.
    while (mMade.empty())
        MakePlayback();
    return true;
}

void SoundRenderer::MakePlayback()
{
    const int rate = mSink->Rate();
    const int wanted = PieceFrames * std::max(mSpeedRate / rate, 1);
    const SoundPath::Piece piece = mPath.Next(wanted);
    mPiece.resize(2 * static_cast<size_t>(piece.count));
    if (piece.isSilent)
        std::fill(mPiece.begin(), mPiece.end(), 0.0f);
    else if (piece.isBackwards)
        mSound.ReadBackwards(piece.first, piece.count, mPiece.data());
    else
        mSound.Read(piece.first, piece.count, mPiece.data());
    mSpeedChanger.Push(mPiece.data(), piece.count, &mMade);
}

bool SoundRenderer::MakeGrains()
{
    const int count = mSink->Rate() / (4 * GrainLeads);
    mMade.resize(2 * static_cast<size_t>(count));
    return mGrains.Render([this](int64_t first, int frames, float* stereo)
                          { mSound.Read(first, frames, stereo); },
                          count, mMade.data());
}
