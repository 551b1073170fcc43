// SPDX-License-Identifier: MIT
#include "annotation/AnnotationStore.h"
#include "support/TestRegistry.h"

#include <QtTest>

class tst_AnnotationStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void AFrameWithoutARecordHasNone();
    void RecordsKeepTheirAddress();
    void SetDrawingsShowsThemAll();
    void GhostsComeTheFurthestFirst();
    void GhostsPassOverClearedFrames();
};

namespace
{

AnnotationStore StoreWith(std::initializer_list<int> frames)
{
    AnnotationStore store;
    for (const int frame : frames)
        store.SetDrawings(frame, {DrawData()});
    return store;
}

} // namespace

void tst_AnnotationStore::AFrameWithoutARecordHasNone()
{
    AnnotationStore store;
    QVERIFY(!store.Find(3));
    QVERIFY(store.Drawings(3).isEmpty());
    QVERIFY(store.AnnotatedFrames().isEmpty());
}

void tst_AnnotationStore::RecordsKeepTheirAddress()
{
    AnnotationStore store;
    const FrameData* const third = &store.At(3);
    for (int frame = 1; frame < 500; ++frame)
        store.At(frame);
    store.SetDrawings(3, {DrawData(), DrawData()});
    QCOMPARE(store.Find(3), third);
    QCOMPARE(third->drawData.size(), 2);
}

void tst_AnnotationStore::SetDrawingsShowsThemAll()
{
    AnnotationStore store;
    store.SetDrawings(7, {DrawData(), DrawData(), DrawData()});
    QCOMPARE(store.Find(7)->firstIndex, 0);
    QCOMPARE(store.Find(7)->lastIndex, 2);
    store.SetDrawings(7, {});
    QCOMPARE(store.Find(7)->lastIndex, -1);
}

void tst_AnnotationStore::GhostsComeTheFurthestFirst()
{
    const AnnotationStore store = StoreWith({2, 5, 9, 10, 14, 20, 30});
    QCOMPARE(store.Before(10, 2), (QList<const FrameData*>{store.Find(5), store.Find(9)}));
    QCOMPARE(store.After(10, 2), (QList<const FrameData*>{store.Find(20), store.Find(14)}));
    QCOMPARE(store.Before(10, 9).size(), 3);
    QVERIFY(store.Before(10, 0).isEmpty());
}

void tst_AnnotationStore::GhostsPassOverClearedFrames()
{
    AnnotationStore store = StoreWith({2, 5, 9});
    store.SetDrawings(9, {});
    QCOMPARE(store.Before(10, 1), (QList<const FrameData*>{store.Find(5)}));
    QCOMPARE(store.AnnotatedFrames(), (QVector<int>{2, 5}));
}

static const TestRegistration<tst_AnnotationStore> AnnotationStoreRegistration;

#include "tst_AnnotationStore.moc"
