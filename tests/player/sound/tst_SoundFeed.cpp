// SPDX-License-Identifier: MIT
#include "sound/SoundFeed.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <thread>

// The sanitizers bring their own.
#ifndef TORVALEN_SANITIZED
namespace
{

/// Allocations of this thread.
thread_local int AllocationCount = 0;

} // namespace

void* operator new(std::size_t size)
{
    ++AllocationCount;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
#endif

class tst_SoundFeed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void FramesComeOutInOrder();
    void NothingComesOutWhileItIsHeldBack();
    void WhatIsGivenUpIsPassedOver();
    void AnEmptyFeedIsSilenceAndPositionsWait();
    void BreaksHaveNoClicks();
    void TheLevelMovesWithoutSteps();
    void BadLevelsAreClamped();
    void BadSamplesStayWithinFullScale();
    void PullingDoesNotAllocate();
    void TwoThreadsAgree();

private:
    static std::vector<float> Ramp(int first, int count);
};

/// Frames that tell their number: left the low bits, right the high ones.
std::vector<float> tst_SoundFeed::Ramp(int first, int count)
{
    std::vector<float> stereo;
    for (int i = first; i < first + count; ++i)
    {
        stereo.push_back(float(i % 4096) / 8192.0f);
        stereo.push_back(float(i / 4096) / 8192.0f);
    }
    return stereo;
}

void tst_SoundFeed::FramesComeOutInOrder()
{
    SoundFeed feed;
    feed.SetRunning(true);
    QCOMPARE(feed.Room(), SoundFeed::Capacity);
    int written = 0;
    int pulled = 0;
    // Three times round.
    while (pulled < 3 * SoundFeed::Capacity)
    {
        const int count = std::min(feed.Room(), 30011);
        feed.Write(Ramp(written, count).data(), count);
        written += count;
        QCOMPARE(feed.WritePosition(), written);
        std::vector<float> stereo(2 * 17011);
        const SoundFeed::Pulled got = feed.Pull(stereo.data(), 17011);
        QCOMPARE(got.position, pulled);
        QCOMPARE(got.frames, 17011);
        // The ramp from silence into the first frame changes what comes first.
        const std::vector<float> wanted = Ramp(pulled, 17011);
        const int skip = pulled == 0 ? 2 * SoundFeed::RampFrames : 0;
        QVERIFY(std::equal(stereo.begin() + skip, stereo.end(), wanted.begin() + skip));
        pulled += 17011;
        QCOMPARE(feed.Lead(), written - pulled);
        QCOMPARE(feed.Room(), SoundFeed::Capacity - written + pulled);
    }
}

void tst_SoundFeed::NothingComesOutWhileItIsHeldBack()
{
    SoundFeed feed;
    feed.Write(Ramp(1, 1000).data(), 1000);
    std::vector<float> stereo(2 * 100, 9.0f);
    QCOMPARE(feed.Pull(stereo.data(), 100).frames, 0);
    QVERIFY(std::all_of(stereo.begin(), stereo.end(), [](float sample) { return sample == 0.0f; }));
    QCOMPARE(feed.Lead(), 1000);
    feed.SetRunning(true);
    QCOMPARE(feed.Pull(stereo.data(), 100).frames, 100);
}

void tst_SoundFeed::WhatIsGivenUpIsPassedOver()
{
    for (const bool isRunning : {true, false})
    {
        SoundFeed feed;
        feed.SetRunning(isRunning);
        feed.Write(Ramp(0, 1000).data(), 1000);
        feed.Discard();
        QCOMPARE(feed.Lead(), 0);
        feed.Write(Ramp(5000, 1000).data(), 1000);
        std::vector<float> stereo(2 * 500);
        feed.Pull(stereo.data(), 1);
        feed.SetRunning(true);
        const SoundFeed::Pulled pulled = feed.Pull(stereo.data(), 500);
        QCOMPARE(pulled.position, isRunning ? 1001 : 1000);
        const std::vector<float> wanted = Ramp(isRunning ? 5001 : 5000, 500);
        QVERIFY(std::equal(stereo.begin() + 2 * SoundFeed::RampFrames, stereo.end(),
                           wanted.begin() + 2 * SoundFeed::RampFrames));
    }
}

void tst_SoundFeed::AnEmptyFeedIsSilenceAndPositionsWait()
{
    SoundFeed feed;
    feed.SetRunning(true);
    feed.Write(Ramp(0, 300).data(), 300);
    std::vector<float> stereo(2 * 1000);
    QCOMPARE(feed.Pull(stereo.data(), 1000).frames, 300);
    QVERIFY(std::all_of(stereo.begin() + 2 * (300 + SoundFeed::RampFrames), stereo.end(),
                        [](float sample) { return sample == 0.0f; }));
    QCOMPARE(feed.Pull(stereo.data(), 1000).frames, 0);
    feed.Write(Ramp(300, 300).data(), 300);
    QCOMPARE(feed.Pull(stereo.data(), 100).position, 300);
}

void tst_SoundFeed::BreaksHaveNoClicks()
{
    SoundFeed feed;
    std::vector<float> heard;
    const auto pull = [&](int frames)
    {
        std::vector<float> stereo(2 * size_t(frames));
        feed.Pull(stereo.data(), frames);
        for (int i = 0; i < frames; ++i)
            heard.push_back(stereo[2 * size_t(i)]);
    };
    const std::vector<float> loud(2 * 4000, 0.9f);
    const std::vector<float> opposite(2 * 4000, -0.9f);
    pull(100);
    feed.Write(loud.data(), 4000);
    feed.SetRunning(true);
    pull(50); // cut short within its own ramp
    feed.SetRunning(false);
    pull(1000);
    feed.SetRunning(true);
    pull(1000);
    feed.Discard();
    feed.Write(opposite.data(), 500);
    pull(1000); // a jump, and then nothing is left
    feed.Write(loud.data(), 4000);
    pull(1000);
    float steepest = 0.0f;
    for (size_t i = 1; i < heard.size(); ++i)
        steepest = std::max(steepest, std::abs(heard[i] - heard[i - 1]));
    // A jump of 1.8 spread over the ramp.
    QVERIFY2(steepest <= 1.81f / SoundFeed::RampFrames, qPrintable(QString::number(double(steepest))));
    QCOMPARE(heard.back(), 0.9f);
    QVERIFY(*std::min_element(heard.begin(), heard.end()) < -0.85f);
}

void tst_SoundFeed::TheLevelMovesWithoutSteps()
{
    SoundFeed feed;
    feed.SetRunning(true);
    const std::vector<float> loud(2 * 20000, 0.5f);
    feed.Write(loud.data(), 20000);
    std::vector<float> stereo(2 * 4000);
    feed.Pull(stereo.data(), 4000);
    for (const float gain : {0.0f, 1.5f, 0.25f, 1.0f})
    {
        const float last = stereo[2 * 3999];
        feed.SetGain(gain);
        feed.Pull(stereo.data(), 4000);
        QVERIFY(std::abs(stereo[0] - last) < 0.002f);
        for (size_t i = 1; i < 4000; ++i)
            QVERIFY(std::abs(stereo[2 * i] - stereo[2 * i - 2]) < 0.002f);
        QVERIFY(std::abs(stereo[2 * 3999 + 1] - 0.5f * gain) < 1e-6f);
    }
}

void tst_SoundFeed::BadLevelsAreClamped()
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    const std::vector<float> loud(2 * 3000, 0.9f);
    for (const auto& [gain, level] : {std::pair<float, float>{nan, 0.0f},
                                      {-1.0f, 0.0f},
                                      {-infinite, 0.0f},
                                      {infinite, 1.0f},
                                      {1e30f, 1.0f},
                                      {1.1f, 0.99f}})
    {
        SoundFeed feed;
        feed.SetGain(gain);
        feed.SetRunning(true);
        feed.Write(loud.data(), 3000);
        std::vector<float> stereo(2 * 3000);
        feed.Pull(stereo.data(), 3000);
        // At most one and a half times 0.9, cut off at full scale.
        QVERIFY(std::abs(stereo.back() - level) < 1e-5f);
    }
}

void tst_SoundFeed::BadSamplesStayWithinFullScale()
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    SoundFeed feed;
    feed.SetRunning(true);
    std::vector<float> stereo(2 * 1000);
    for (const float bad : {nan, infinite, -infinite, 1e30f, nan})
    {
        const std::vector<float> samples(2 * 100, bad);
        feed.Write(samples.data(), 100);
        feed.Pull(stereo.data(), 300);
        for (const float sample : stereo)
            QVERIFY(sample >= -1.0f && sample <= 1.0f);
    }
    const std::vector<float> good(2 * 1000, 0.5f);
    feed.Write(good.data(), 1000);
    feed.Pull(stereo.data(), 1000);
    QCOMPARE(stereo.back(), 0.5f);
}

void tst_SoundFeed::PullingDoesNotAllocate()
{
#ifdef TORVALEN_SANITIZED
    QSKIP("the sanitizers allocate by themselves");
#else
    SoundFeed feed;
    std::vector<float> stereo(2 * 2000, 0.1f);
    feed.Write(stereo.data(), 2000);
    const int before = AllocationCount;
    feed.SetRunning(true);
    for (int turn = 0; turn < 10; ++turn)
        feed.Pull(stereo.data(), 300);
    QCOMPARE(AllocationCount, before);
    std::vector<int> counted(1);
    QVERIFY(AllocationCount > before);
#endif
}

void tst_SoundFeed::TwoThreadsAgree()
{
    SoundFeed feed;
    feed.SetRunning(true);
    std::atomic<bool> ends{false};
    std::atomic<int64_t> wrong{0};
    std::thread device(
        [&]
        {
            std::vector<float> stereo(2 * 256);
            int64_t expected = 0;
            while (!ends)
            {
                const SoundFeed::Pulled pulled = feed.Pull(stereo.data(), 256);
                wrong += pulled.position < expected ? 1 : 0;
                expected = pulled.position + pulled.frames;
                if (pulled.frames < 256)
                    continue;
                // Behind the ramp every frame tells its position.
                for (int i = SoundFeed::RampFrames; i < pulled.frames; ++i)
                    wrong += stereo[2 * size_t(i)] == float((pulled.position + i) % 4096) / 8192.0f ? 0 : 1;
            }
        });
    int written = 0;
    for (int turn = 0; turn < 20000; ++turn)
    {
        const int count = std::min(feed.Room(), 1 + turn % 700);
        feed.Write(Ramp(written, count).data(), count);
        written += count;
        if (turn % 97 == 0)
            feed.Discard();
        if (turn % 331 == 0)
            feed.SetRunning(turn % 2 == 0);
        feed.SetGain(1.0f);
    }
    feed.SetRunning(true);
    const bool isDrained = QTest::qWaitFor([&] { return feed.Lead() == 0; }, 10000);
    ends = true;
    device.join();
    QVERIFY(isDrained);
    QCOMPARE(wrong.load(), 0);
}

static const TestRegistration<tst_SoundFeed> SoundFeedRegistration;

#include "tst_SoundFeed.moc"
