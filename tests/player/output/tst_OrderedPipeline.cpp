// SPDX-License-Identifier: MIT
#include "output/OrderedPipeline.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <atomic>
#include <chrono>

class tst_OrderedPipeline : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ResultsComeInOrder_data();
    void ResultsComeInOrder();
    void NotMoreThanAFewAreUnderWay();
    void CancellingEndsTheWait();
    void WhatIsLeftComesAtTheEnd();
    void NothingToDoEndsAtOnce();
};

namespace
{

using Pipeline = OrderedPipeline<int, int>;

void Sleep(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace

void tst_OrderedPipeline::ResultsComeInOrder_data()
{
    QTest::addColumn<int>("workers");
    for (const int workers : {1, 2, 5})
        QTest::addRow("%d", workers) << workers;
}

void tst_OrderedPipeline::ResultsComeInOrder()
{
    QFETCH(int, workers);
    std::vector<int> fed;
    Pipeline pipeline(
        60, workers,
        [&](int index)
        {
            fed.push_back(index);
            return index * 10;
        },
        [](int index, int& item)
        {
            // Later ones are done earlier.
            Sleep((index * 7) % 5);
            return item + index;
        });
    std::vector<int> results;
    for (int result = 0; pipeline.Next(&result);)
        results.push_back(result);
    QCOMPARE(results.size(), size_t(60));
    for (int index = 0; index < 60; ++index)
    {
        QCOMPARE(results[static_cast<size_t>(index)], index * 11);
        QCOMPARE(fed[static_cast<size_t>(index)], index);
    }
    int more = 0;
    QVERIFY(!pipeline.Next(&more));
}

void tst_OrderedPipeline::NotMoreThanAFewAreUnderWay()
{
    std::atomic<int> fed{0};
    Pipeline pipeline(
        1000, 2, [&](int index) { return ++fed, index; }, [](int, int& item) { return item; });
    Sleep(100);
    QVERIFY(fed.load() <= 8);
    int result = 0;
    for (int taken = 0; taken < 10; ++taken)
        QVERIFY(pipeline.Next(&result));
    Sleep(50);
    QVERIFY(fed.load() > 8);
    QVERIFY(fed.load() <= 18);
}

void tst_OrderedPipeline::CancellingEndsTheWait()
{
    std::atomic<bool> go{false};
    Pipeline pipeline(
        10, 2, [](int index) { return index; },
        [&](int, int& item)
        {
            while (!go)
                Sleep(1);
            return item;
        });
    std::atomic<bool> answered{false};
    std::thread taker(
        [&]
        {
            int result = 0;
            answered = !pipeline.Next(&result);
        });
    Sleep(20);
    pipeline.Cancel();
    taker.join();
    QVERIFY(answered);
    go = true;
}

void tst_OrderedPipeline::WhatIsLeftComesAtTheEnd()
{
    std::atomic<int> worked{0};
    Pipeline pipeline(
        10, 1, [](int index) { return index; }, [&](int, int& item) { return ++worked, item; });
    while (worked < 6)
        Sleep(1);
    int result = -1;
    QVERIFY(pipeline.Next(&result));
    const std::vector<int> left = pipeline.Finish();
    QCOMPARE(int(left.size()), worked.load() - 1);
    for (size_t index = 0; index < left.size(); ++index)
        QCOMPARE(left[index], static_cast<int>(index) + 1);
    QVERIFY(!pipeline.Next(&result));
}

void tst_OrderedPipeline::NothingToDoEndsAtOnce()
{
    Pipeline pipeline(
        0, 2, [](int index) { return index; }, [](int, int& item) { return item; });
    int result = 0;
    QVERIFY(!pipeline.Next(&result));
    QCOMPARE(Pipeline::WorkersFor(1), 1);
    QVERIFY(Pipeline::WorkersFor(1000) >= 1 && Pipeline::WorkersFor(1000) <= 8);
}

static const TestRegistration<tst_OrderedPipeline> OrderedPipelineRegistration;

#include "tst_OrderedPipeline.moc"
