// SPDX-License-Identifier: MIT
#include "host/Bookmarks.h"
#include "support/TestRegistry.h"

#include <QtTest>

class tst_Bookmarks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void KeepsTheOrderOfAdding();
    void RemovesEveryBookmarkOfATime();
    void RemovesARangeByBothEnds();
    void ClearEmptiesBothLists();
};

void tst_Bookmarks::KeepsTheOrderOfAdding()
{
    Bookmarks bookmarks;
    bookmarks.AddTimeBookmark(TimeBookmark(40));
    bookmarks.AddTimeBookmark(TimeBookmark(20));
    bookmarks.AddTimeBookmark(TimeBookmark(40));
    QList<int64_t> times;
    for (const TimeBookmark& bookmark : bookmarks.GetTimeBookmarks())
        times << bookmark.time;
    QCOMPARE(times, (QList<int64_t>{40, 20, 40}));
}

void tst_Bookmarks::RemovesEveryBookmarkOfATime()
{
    Bookmarks bookmarks;
    for (const int64_t time : {40, 20, 40})
        bookmarks.AddTimeBookmark(TimeBookmark(time));
    QVERIFY(bookmarks.RemoveTimeBookmark(40));
    QCOMPARE(bookmarks.GetTimeBookmarks().size(), 1);
    QCOMPARE(bookmarks.GetTimeBookmarks().first().time, int64_t(20));
    QVERIFY(!bookmarks.RemoveTimeBookmark(40));
}

void tst_Bookmarks::RemovesARangeByBothEnds()
{
    Bookmarks bookmarks;
    bookmarks.AddRangeBookmark(RangeBookmark(10, 30));
    bookmarks.AddRangeBookmark(RangeBookmark(10, 40));
    QVERIFY(!bookmarks.RemoveRangeBookmark(10, 20));
    QVERIFY(bookmarks.RemoveRangeBookmark(10, 30));
    QCOMPARE(bookmarks.GetRangeBookmarks().size(), 1);
    QCOMPARE(bookmarks.GetRangeBookmarks().first().endTime, int64_t(40));
}

void tst_Bookmarks::ClearEmptiesBothLists()
{
    Bookmarks bookmarks;
    bookmarks.AddTimeBookmark(TimeBookmark(1));
    bookmarks.AddRangeBookmark(RangeBookmark(1, 2));
    bookmarks.Clear();
    QVERIFY(bookmarks.GetTimeBookmarks().isEmpty());
    QVERIFY(bookmarks.GetRangeBookmarks().isEmpty());
}

static const TestRegistration<tst_Bookmarks> BookmarksRegistration;

#include "tst_Bookmarks.moc"
