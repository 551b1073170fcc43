// SPDX-License-Identifier: MIT
#include "media/FrameCache.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <algorithm>
#include <numeric>
#include <random>

namespace
{

// 100 by 10 pixels of 4 bytes.
constexpr int64_t CachePictureBytes = 4000;

ReadResult CachePicture(int number)
{
    QImage image(100, 10, QImage::Format_RGB32);
    image.fill(QColor(number & 255, number >> 8, 0));
    return {ReadStatus::Ok, image, QString()};
}

/// A bound for @p frames pictures and not one more.
int64_t RoomFor(int frames)
{
    return frames * (CachePictureBytes + 300);
}

QList<int> KeptFrames(const FrameCache& cache, int media, int last)
{
    QList<int> frames;
    for (int frame = 1; frame <= last; ++frame)
        if (cache.Contains(media, frame))
            frames << frame;
    return frames;
}

} // namespace

class tst_FrameCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void GivesBackWhatItKeeps();
    void NeverGoesBeyondItsBound();
    void DropsWhatWillBeWantedLast_data();
    void DropsWhatWillBeWantedLast();
    void DoesNotKeepWhatIsLargerThanTheBound();
    void ALowerBoundDropsAtOnce();
    void KeepsMediaApart();
    void TellsTheRangeRoundAFrame();
    void RangesAgreeWithTheFrames();
};

void tst_FrameCache::GivesBackWhatItKeeps()
{
    FrameCache cache(RoomFor(10));
    QVERIFY(cache.Insert(0, 5, CachePicture(5)));
    QVERIFY(cache.Insert(0, 6, {ReadStatus::Broken, QImage(), QStringLiteral("torn")}));
    QCOMPARE(cache.Find(0, 5)->image, CachePicture(5).image);
    QCOMPARE(cache.Find(0, 6)->status, ReadStatus::Broken);
    QCOMPARE(cache.Find(0, 6)->text, QStringLiteral("torn"));
    QVERIFY(!cache.Find(0, 7));
    QVERIFY(!cache.Find(1, 5));
    QVERIFY(cache.Insert(0, 5, CachePicture(9)));
    QCOMPARE(cache.Find(0, 5)->image, CachePicture(9).image);
    const int64_t bytes = cache.Bytes();
    QVERIFY(bytes >= CachePictureBytes && bytes < CachePictureBytes + 1000);
}

void tst_FrameCache::NeverGoesBeyondItsBound()
{
    FrameCache cache(RoomFor(7));
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i)
    {
        const int media = int(random() % 3);
        const int frame = 1 + int(random() % 60);
        if (i % 5 == 0)
            cache.SetPlayhead(media, {frame, i % 2 == 0 ? 1 : -1, 1, 60, i % 3 == 0});
        const bool isKept = cache.Insert(media, frame, CachePicture(i));
        QCOMPARE(cache.Contains(media, frame), isKept);
        QVERIFY(cache.Bytes() <= cache.Limit());
    }
}

void tst_FrameCache::DropsWhatWillBeWantedLast_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<bool>("loops");
    QTest::addColumn<QList<int>>("kept");
    // Of 1 to 40 with the playhead at 20; a frame behind counts four times.
    QTest::newRow("forwards") << 1 << false << QList<int>{18, 19, 20, 21, 22, 23, 24, 25, 26, 27};
    QTest::newRow("backwards") << -1 << false << QList<int>{12, 13, 14, 15, 16, 17, 18, 19, 20, 21};
    QTest::newRow("forwards, looping") << 1 << true << QList<int>{18, 19, 20, 21, 22, 23, 24, 25, 26, 27};
}

void tst_FrameCache::DropsWhatWillBeWantedLast()
{
    QFETCH(int, direction);
    QFETCH(bool, loops);
    QFETCH(QList<int>, kept);
    std::vector<int> order(40);
    std::iota(order.begin(), order.end(), 1);
    std::mt19937 random(7);
    for (int round = 0; round < 10; ++round)
    {
        FrameCache cache(RoomFor(10));
        cache.SetPlayhead(0, {20, direction, 1, 40, loops});
        std::shuffle(order.begin(), order.end(), random);
        for (const int frame : order)
            cache.Insert(0, frame, CachePicture(frame));
        QCOMPARE(KeptFrames(cache, 0, 40), kept);
    }
}

void tst_FrameCache::DoesNotKeepWhatIsLargerThanTheBound()
{
    FrameCache cache(CachePictureBytes);
    QVERIFY(!cache.Insert(0, 1, CachePicture(1)));
    QCOMPARE(cache.Bytes(), int64_t(0));
    QVERIFY(!cache.Contains(0, 1));
}

void tst_FrameCache::ALowerBoundDropsAtOnce()
{
    FrameCache cache(RoomFor(10));
    cache.SetPlayhead(0, {1, 1, 1, 10, false});
    for (int frame = 1; frame <= 10; ++frame)
        cache.Insert(0, frame, CachePicture(frame));
    cache.SetLimit(RoomFor(3));
    QCOMPARE(KeptFrames(cache, 0, 10), (QList<int>{1, 2, 3}));
    cache.SetLimit(-5);
    QCOMPARE(cache.Bytes(), int64_t(0));
}

void tst_FrameCache::KeepsMediaApart()
{
    FrameCache cache(RoomFor(4));
    cache.SetPlayhead(0, {1, 1, 1, 9, false});
    cache.SetPlayhead(1, {1, 1, 1, 9, false});
    for (int frame = 1; frame <= 9; ++frame)
        for (const int media : {0, 1})
            cache.Insert(media, frame, CachePicture(frame + media * 100));
    QCOMPARE(KeptFrames(cache, 0, 9), (QList<int>{1, 2}));
    QCOMPARE(KeptFrames(cache, 1, 9), (QList<int>{1, 2}));
    cache.Remove(0);
    QCOMPARE(KeptFrames(cache, 0, 9), QList<int>());
    QCOMPARE(cache.Find(1, 2)->image, CachePicture(102).image);
    cache.Remove(0);
}

void tst_FrameCache::TellsTheRangeRoundAFrame()
{
    FrameCache cache(RoomFor(20));
    for (const int frame : {3, 5, 4, 9, 7, 8})
        cache.Insert(2, frame, CachePicture(frame));
    QCOMPARE(cache.Range(2, 4), std::make_pair(3, 5));
    QCOMPARE(cache.Range(2, 9), std::make_pair(7, 9));
    QCOMPARE(cache.Range(2, 6), std::make_pair(0, -1));
    QCOMPARE(cache.Range(2, 1), std::make_pair(0, -1));
    QCOMPARE(cache.Range(1, 4), std::make_pair(0, -1));
    cache.Insert(2, 6, CachePicture(6));
    QCOMPARE(cache.Range(2, 6), std::make_pair(3, 9));
}

void tst_FrameCache::RangesAgreeWithTheFrames()
{
    FrameCache cache(RoomFor(25));
    std::mt19937 random(9);
    for (int i = 0; i < 500; ++i)
    {
        cache.SetPlayhead(0, {1 + int(random() % 50), 1, 1, 50, false});
        cache.Insert(0, 1 + int(random() % 50), CachePicture(i));
        QList<int> frames;
        int previous = -1;
        for (const auto& [first, last] : cache.Ranges(0))
        {
            QVERIFY(first > previous + 1 && last >= first);
            previous = last;
            for (int frame = first; frame <= last; ++frame)
                frames << frame;
        }
        QCOMPARE(frames, KeptFrames(cache, 0, 50));
    }
}

static const TestRegistration<tst_FrameCache> FrameCacheRegistration;

#include "tst_FrameCache.moc"
