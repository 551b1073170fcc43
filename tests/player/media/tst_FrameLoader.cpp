// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/FrameLoader.h"
#include "media/NumberedMedia.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <random>

namespace
{

QString LoaderMovie()
{
    return NumberedMedia::Movie(
        QStringLiteral("loader.mp4"), 300, QStringLiteral("24"),
        QStringLiteral("-c:v libx264 -preset veryfast -pix_fmt yuv420p -bf 3 -g 60").split(QLatin1Char(' ')));
}

/// A loader with everything that it said.
struct LoaderRecord
{
    explicit LoaderRecord(int megabytes = 0)
    {
        if (megabytes > 0)
            loader.SetCacheSize(megabytes);
        QObject::connect(&loader, &FrameLoader::FrameReady, &loader,
                         [this](int media, int frame, const ReadResult& result)
                         {
                             frames.append(frame);
                             last = result;
                             lastMedia = media;
                             isRight = isRight && result.status == ReadStatus::Ok &&
                                       NumberedMedia::NumberIn(result.image) == frame;
                             onGuiThread = onGuiThread && QThread::currentThread() == qApp->thread();
                         });
    }

    bool Open(int media, const QString& path)
    {
        QSignalSpy opened(&loader, &FrameLoader::MediaOpened);
        loader.Open(media, path);
        return opened.wait(20000);
    }

    /// Asks and waits for the answer.
    bool Get(int media, const FrameRequest& request)
    {
        frames.clear();
        loader.RequestFrame(media, request);
        return QTest::qWaitFor([&] { return frames.contains(request.frame); }, 20000);
    }

    QList<int> frames;
    ReadResult last;
    int lastMedia = -1;
    bool isRight = true;
    bool onGuiThread = true;
    // Last, so that nothing is said when the rest is gone.
    FrameLoader loader;
};

FrameRequest At(int frame, int direction = 1)
{
    FrameRequest request;
    request.frame = frame;
    request.direction = direction;
    return request;
}

} // namespace

class tst_FrameLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void PlaysForwards();
    void PlaysBackwards_data();
    void PlaysBackwards();
    void AnswersTheLastOfManySeeks();
    void ReadsAheadWithinTheBound();
    void AKeptFrameComesAtOnce();
    void ReadsAheadNoFurtherThanAsked();
    void GoesRoundWhereItLoops();
    void TwoMediaShareTheCache();
    void ARequestBeforeOpeningIsKept();
    void TellsWhyAMediumCannotBeOpened();
    void TellsOfAMissingFrameOnce();
    void LateFramesOfPlayAreShown();
    void ClosingEndsTheAnswers();
    void GoesAwayPromptly();
    void LeavesTheGlobalPoolAlone();
    void ClampsTheRequest();
    void AFrameLargerThanTheCacheIsShown();
};

void tst_FrameLoader::PlaysForwards()
{
    LoaderRecord record;
    QVERIFY(record.Open(0, LoaderMovie()));
    QCOMPARE(record.loader.Info(0)->frameCount, 300);
    for (int frame = 1; frame <= 300; ++frame)
    {
        QVERIFY(record.Get(0, At(frame)));
        QCOMPARE(record.frames, QList<int>{frame});
    }
    QVERIFY(record.isRight && record.onGuiThread);
}

void tst_FrameLoader::PlaysBackwards_data()
{
    QTest::addColumn<int>("megabytes");
    // 160 by 90 pixels are 57,600 bytes: room for all, and for less than a group of 60.
    QTest::newRow("much room") << 256;
    QTest::newRow("little room") << 2;
}

void tst_FrameLoader::PlaysBackwards()
{
    QFETCH(int, megabytes);
    LoaderRecord record(megabytes);
    QVERIFY(record.Open(0, LoaderMovie()));
    for (int frame = 300; frame >= 1; --frame)
    {
        QVERIFY(record.Get(0, At(frame, -1)));
        QCOMPARE(record.frames, QList<int>{frame});
    }
    QVERIFY(record.isRight);
}

void tst_FrameLoader::AnswersTheLastOfManySeeks()
{
    LoaderRecord record(4);
    QVERIFY(record.Open(0, LoaderMovie()));
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round)
    {
        const int seeks = 1 + int(random() % 6);
        int frame = 1;
        for (int i = 0; i < seeks; ++i)
        {
            frame = 1 + int(random() % 300);
            record.loader.RequestFrame(0, At(frame, random() % 2 == 0 ? 1 : -1));
            if (random() % 2 == 0)
                QTest::qWait(int(random() % 3));
        }
        QVERIFY(QTest::qWaitFor([&] { return !record.frames.isEmpty() && record.frames.last() == frame; },
                                20000));
        QVERIFY(record.isRight);
    }
}

void tst_FrameLoader::ReadsAheadWithinTheBound()
{
    LoaderRecord record(4);
    QVERIFY(record.Open(0, LoaderMovie()));
    QVERIFY(record.Get(0, At(100)));
    // Three quarters of 4 MB of pictures of 57,600 bytes.
    const int ahead = int(4.0 * 1024 * 1024 * 0.75 / 57600);
    QVERIFY(QTest::qWaitFor(
        [&] {
            return record.loader.CachedRanges(0) == std::map<int, int>{{100, 100 + ahead}};
        },
        20000));
    QTest::qWait(50);
    QCOMPARE(record.loader.CachedRanges(0), (std::map<int, int>{{100, 100 + ahead}}));
}

void tst_FrameLoader::AKeptFrameComesAtOnce()
{
    LoaderRecord record;
    QVERIFY(record.Open(0, LoaderMovie()));
    QVERIFY(record.Get(0, At(10)));
    QVERIFY(QTest::qWaitFor([&] { return record.loader.CachedFrame(0, 40).has_value(); }, 20000));
    record.frames.clear();
    record.loader.RequestFrame(0, At(40));
    QCOMPARE(record.frames, QList<int>{40});
    QVERIFY(record.isRight);
}

void tst_FrameLoader::ReadsAheadNoFurtherThanAsked()
{
    LoaderRecord record;
    QVERIFY(record.Open(0, LoaderMovie()));
    FrameRequest request = At(20);
    request.readAhead = 5;
    QVERIFY(record.Get(0, request));
    QVERIFY(QTest::qWaitFor(
        [&] {
            return record.loader.CachedRanges(0) == std::map<int, int>{{20, 25}};
        },
        20000));
    QTest::qWait(50);
    QCOMPARE(record.loader.CachedRanges(0), (std::map<int, int>{{20, 25}}));
}

void tst_FrameLoader::GoesRoundWhereItLoops()
{
    LoaderRecord record;
    QVERIFY(record.Open(0, LoaderMovie()));
    FrameRequest request = At(95);
    request.first = 91;
    request.last = 100;
    request.loops = true;
    QVERIFY(record.Get(0, request));
    QVERIFY(QTest::qWaitFor(
        [&] {
            return record.loader.CachedRanges(0) == std::map<int, int>{{91, 100}};
        },
        20000));
    request.direction = -1;
    QVERIFY(record.Get(0, request));
    QVERIFY(record.isRight);
}

void tst_FrameLoader::TwoMediaShareTheCache()
{
    LoaderRecord record(8);
    QVERIFY(record.Open(0, LoaderMovie()));
    QVERIFY(record.Open(1, LoaderMovie()));
    for (int frame = 1; frame <= 60; ++frame)
    {
        QVERIFY(record.Get(0, At(frame)));
        QCOMPARE(record.lastMedia, 0);
        QVERIFY(record.Get(1, At(301 - frame, -1)));
        QCOMPARE(record.lastMedia, 1);
    }
    QVERIFY(record.isRight);
    const int ahead = int(8.0 * 1024 * 1024 * 0.75 / 57600 / 2);
    QVERIFY(QTest::qWaitFor([&] { return record.loader.CachedFrame(0, 60 + ahead).has_value(); }, 20000));
    QVERIFY(!record.loader.CachedFrame(0, 60 + ahead + 2).has_value());
}

void tst_FrameLoader::ARequestBeforeOpeningIsKept()
{
    LoaderRecord record;
    record.loader.Open(3, LoaderMovie());
    record.loader.RequestFrame(3, At(5));
    record.loader.RequestFrame(3, At(77));
    QVERIFY(QTest::qWaitFor([&] { return record.frames.contains(77); }, 20000));
    QCOMPARE(record.frames, QList<int>{77});
    QVERIFY(record.isRight);
}

void tst_FrameLoader::TellsWhyAMediumCannotBeOpened()
{
    FrameLoader loader;
    QSignalSpy failed(&loader, &FrameLoader::OpenFailed);
    loader.Open(0, QStringLiteral("/nowhere/nothing.mov"));
    loader.RequestFrame(0, At(1));
    QVERIFY(failed.wait(20000));
    QCOMPARE(failed.first().at(0).toInt(), 0);
    QVERIFY(failed.first().at(1).toString().contains(QLatin1String("/nowhere/nothing.mov")));
    QVERIFY(loader.Info(0) == nullptr);
    // Unknown now.
    loader.RequestFrame(0, At(1));
    loader.Close(0);
}

void tst_FrameLoader::TellsOfAMissingFrameOnce()
{
    QTemporaryDir folder;
    for (const int number : {1, 2, 4})
        QVERIFY(
            NumberedMedia::Picture(number - 0).save(folder.filePath(QStringLiteral("s%1.png").arg(number))));
    LoaderRecord record;
    QSignalSpy failed(&record.loader, &FrameLoader::FrameFailed);
    QVERIFY(record.Open(0, folder.filePath(QStringLiteral("s1.png"))));
    for (const int frame : {1, 2, 4, 2, 1})
        QVERIFY(record.Get(0, At(frame)));
    QVERIFY(record.isRight);
    QCOMPARE(failed.size(), 0);
    QVERIFY(record.Get(0, At(3)));
    QCOMPARE(record.last.status, ReadStatus::Missing);
    QVERIFY(record.Get(0, At(2)));
    QVERIFY(record.Get(0, At(3)));
    QCOMPARE(failed.size(), 1);
    QVERIFY(failed.first().at(2).toString().contains(QLatin1String("s3.png")));
}

void tst_FrameLoader::LateFramesOfPlayAreShown()
{
    LoaderRecord record(4);
    QVERIFY(record.Open(0, LoaderMovie()));
    // A clock far faster than the movie's: the last frame asked for comes, and so do some on the way.
    for (int frame = 1; frame <= 300; frame += 3)
    {
        FrameRequest request = At(frame);
        request.isPlaying = true;
        record.loader.RequestFrame(0, request);
        QTest::qWait(1);
    }
    QVERIFY(QTest::qWaitFor([&] { return record.frames.contains(298); }, 20000));
    QVERIFY(record.isRight);
    QVERIFY2(record.frames.size() > 3, qPrintable(QString::number(record.frames.size())));
    for (int i = 1; i < record.frames.size(); ++i)
        QVERIFY(record.frames.at(i) > record.frames.at(i - 1));
}

void tst_FrameLoader::ClosingEndsTheAnswers()
{
    LoaderRecord record;
    QVERIFY(record.Open(0, LoaderMovie()));
    record.loader.RequestFrame(0, At(250));
    record.loader.Close(0);
    QTest::qWait(150);
    QVERIFY(record.frames.isEmpty());
    QVERIFY(record.loader.CachedRanges(0).empty());
    // The number may be used again at once.
    record.loader.Open(0, LoaderMovie());
    record.loader.Close(0);
    QVERIFY(record.Open(0, LoaderMovie()));
    QVERIFY(record.Get(0, At(250)));
    QVERIFY(record.isRight);
}

void tst_FrameLoader::GoesAwayPromptly()
{
    for (int round = 0; round < 20; ++round)
    {
        LoaderRecord record;
        record.loader.Open(0, LoaderMovie());
        record.loader.Open(1, LoaderMovie());
        record.loader.RequestFrame(0, At(200, -1));
        QTest::qWait(round);
        QElapsedTimer timer;
        timer.start();
        record.loader.Close(1);
        QVERIFY(timer.elapsed() < 200);
    }
}

void tst_FrameLoader::LeavesTheGlobalPoolAlone()
{
    LoaderRecord record;
    QVERIFY(record.Open(0, LoaderMovie()));
    record.loader.RequestFrame(0, At(200));
    bool isAlone = true;
    QVERIFY(QTest::qWaitFor(
        [&]
        {
            isAlone = isAlone && QThreadPool::globalInstance()->activeThreadCount() == 0;
            return record.frames.contains(200);
        },
        20000));
    QVERIFY(isAlone);
}

void tst_FrameLoader::ClampsTheRequest()
{
    LoaderRecord record;
    QVERIFY(record.Open(0, LoaderMovie()));
    record.loader.RequestFrame(0, At(INT_MAX));
    QVERIFY(QTest::qWaitFor([&] { return record.frames.contains(300); }, 20000));
    record.loader.RequestFrame(0, At(INT_MIN, -1));
    QVERIFY(QTest::qWaitFor([&] { return record.frames.contains(1); }, 20000));
    FrameRequest request = At(50, 0);
    request.first = 400;
    request.last = -3;
    request.loops = true;
    QVERIFY(record.Get(0, request));
    QVERIFY(record.isRight);
}

void tst_FrameLoader::AFrameLargerThanTheCacheIsShown()
{
    LoaderRecord record;
    record.loader.SetCacheSize(0);
    QVERIFY(record.Open(0, LoaderMovie()));
    for (const int frame : {5, 6, 7, 6, 5, 300, 1})
        QVERIFY(record.Get(0, At(frame, frame == 6 ? -1 : 1)));
    QVERIFY(record.isRight);
    QVERIFY(record.loader.CachedRanges(0).empty());
}

static const TestRegistration<tst_FrameLoader> FrameLoaderRegistration;

#include "tst_FrameLoader.moc"
