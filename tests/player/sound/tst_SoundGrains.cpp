// SPDX-License-Identifier: MIT
#include "sound/SoundGrains.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

class tst_SoundGrains : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void AGrainFadesInAndOutAndEnds();
    void GrainsFadeIntoEachOther();
    void TheNewestPlaceIsTaken();

private:
    static std::vector<float> RenderAll(SoundGrains& grains, const SoundGrains::Reader& read, int count);
    static float Steepest(const std::vector<float>& samples);
};

std::vector<float> tst_SoundGrains::RenderAll(SoundGrains& grains, const SoundGrains::Reader& read, int count)
{
    std::vector<float> left;
    std::vector<float> stereo(2 * 100);
    while (int(left.size()) < count && grains.Render(read, 100, stereo.data()))
        for (int i = 0; i < 100; ++i)
            left.push_back(stereo[2 * size_t(i)]);
    return left;
}

float tst_SoundGrains::Steepest(const std::vector<float>& samples)
{
    float steepest = samples.empty() ? 0.0f : std::abs(samples.front());
    for (size_t i = 1; i < samples.size(); ++i)
        steepest = std::max(steepest, std::abs(samples[i] - samples[i - 1]));
    return steepest;
}

void tst_SoundGrains::AGrainFadesInAndOutAndEnds()
{
    SoundGrains grains;
    grains.Reset(48000);
    QCOMPARE(grains.GrainFrames(), 3840);
    QCOMPARE(grains.FadeFrames(), 480);
    int64_t asked = -1;
    const auto read = [&](int64_t first, int count, float* stereo)
    {
        asked = first;
        std::fill(stereo, stereo + 2 * count, 1.0f);
    };
    std::vector<float> stereo(2 * 100);
    QVERIFY(!grains.Render(read, 100, stereo.data()));
    grains.Request(12345);
    const std::vector<float> left = RenderAll(grains, read, 100000);
    QCOMPARE(asked, 12345);
    QVERIFY(left.size() >= 3840 && left.size() < 4100);
    QCOMPARE(left[0], 0.0f);
    QVERIFY(std::abs(left[240] - 0.5f) < 0.01f);
    for (size_t i = 480; i <= 3840 - 480; ++i)
        QCOMPARE(left[i], 1.0f);
    QVERIFY(std::abs(left[3600] - 0.5f) < 0.01f);
    for (size_t i = 3840; i < left.size(); ++i)
        QCOMPARE(left[i], 0.0f);
    // Half a turn's steepest step over the fade.
    QVERIFY(Steepest(left) < 1.01f * 3.1416f / 2.0f / 480.0f);
    QVERIFY(!grains.Render(read, 100, stereo.data()));
}

void tst_SoundGrains::GrainsFadeIntoEachOther()
{
    SoundGrains grains;
    grains.Reset(48000);
    const auto read = [](int64_t first, int count, float* stereo)
    { std::fill(stereo, stereo + 2 * count, first == 1 ? 1.0f : -1.0f); };
    std::vector<float> all;
    // Requests that come much faster than grains are long.
    for (int turn = 0; turn < 40; ++turn)
    {
        grains.Request(turn % 2);
        const std::vector<float> left = RenderAll(grains, read, 500);
        all.insert(all.end(), left.begin(), left.end());
    }
    const std::vector<float> rest = RenderAll(grains, read, 100000);
    all.insert(all.end(), rest.begin(), rest.end());
    // From one to the other it is twice as far as from silence.
    QVERIFY(Steepest(all) < 2.02f * 3.1416f / 2.0f / 480.0f);
    QVERIFY(*std::max_element(all.begin(), all.end()) <= 1.0f);
    QVERIFY(*std::max_element(all.begin(), all.end()) > 0.99f);
    QVERIFY(*std::min_element(all.begin(), all.end()) < -0.99f);
    QVERIFY(std::abs(all.back()) < 0.001f);
}

void tst_SoundGrains::TheNewestPlaceIsTaken()
{
    SoundGrains grains;
    grains.Reset(48000);
    std::vector<int64_t> asked;
    const auto read = [&](int64_t first, int count, float* stereo)
    {
        asked.push_back(first);
        std::fill(stereo, stereo + 2 * count, 0.0f);
    };
    grains.Request(1);
    RenderAll(grains, read, 100);
    for (int place = 2; place < 10; ++place)
        grains.Request(place);
    RenderAll(grains, read, 1000);
    QCOMPARE(asked.size(), size_t(1));
    RenderAll(grains, read, 1000);
    QCOMPARE(asked.size(), size_t(2));
    QCOMPARE(asked.back(), 9);
}

static const TestRegistration<tst_SoundGrains> SoundGrainsRegistration;

#include "tst_SoundGrains.moc"
