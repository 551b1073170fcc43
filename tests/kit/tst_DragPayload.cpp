// SPDX-License-Identifier: MIT
#include "kit/DragPayload.h"
#include "kit/UiGlobals.h"
#include "support/TestRegistry.h"
#include "viewers/AllocationCount.h"

#include <QDataStream>
#include <QMimeData>
#include <QRandomGenerator>
#include <QUrl>
#include <QtTest>

class tst_DragPayload : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void TheFormatsHaveTheirNames();
    void IDsAreANumberAndTheirBytes();
    void NoIDsAreFourZeroBytes();
    void WhatQtWritesIsRead();
    void WhatIsWrittenQtReads();
    void AForgedPayloadIsEmptyAndAllocatesNothing_data();
    void AForgedPayloadIsEmptyAndAllocatesNothing();
    void EachCutOfAPayloadIsEmpty();
    void DropTypesAreFiveBytesInOrder();
    void DropTypesReadEachValueButZeroAsSet();
    void FewerThanFiveDropTypesAreNone();
    void MoreThanFiveDropTypesAreRead();
    void FilesAreThoseThatAreLocalSorted();
    void FormatsAreTold();
};

namespace
{

QList<QUuid> SomeIDs(int count)
{
    QList<QUuid> ids;
    for (int index = 0; index < count; ++index)
        ids << QUuid::createUuid();
    return ids;
}

QByteArray Bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}

} // namespace

void tst_DragPayload::TheFormatsHaveTheirNames()
{
    QCOMPARE(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, QStringLiteral("merovane/proj-obj-uuid"));
    QCOMPARE(UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE, QStringLiteral("merovane/element-uuid"));
    QCOMPARE(UiGlobals::ALLOWED_DROP_TYPES, QStringLiteral("merovane/allowed-drop-types"));
}

void tst_DragPayload::IDsAreANumberAndTheirBytes()
{
    const QList<QUuid> ids = {QUuid(QStringLiteral("{00112233-4455-6677-8899-aabbccddeeff}")), QUuid()};
    QCOMPARE(DragPayload::WriteIDs(ids),
             Bytes("00000002 00112233445566778899aabbccddeeff 00000000000000000000000000000000"));
    QCOMPARE(DragPayload::ReadIDs(DragPayload::WriteIDs(ids)), ids);
}

void tst_DragPayload::NoIDsAreFourZeroBytes()
{
    QCOMPARE(DragPayload::WriteIDs({}), Bytes("00000000"));
    QCOMPARE(DragPayload::ReadIDs(Bytes("00000000")), QList<QUuid>());
}

void tst_DragPayload::WhatQtWritesIsRead()
{
    const QList<QUuid> ids = SomeIDs(100);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << ids;
    QCOMPARE(DragPayload::ReadIDs(bytes), ids);
}

void tst_DragPayload::WhatIsWrittenQtReads()
{
    const QList<QUuid> ids = SomeIDs(100);
    QByteArray bytes = DragPayload::WriteIDs(ids);
    QCOMPARE(bytes.size(), 4 + 16 * 100);
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    QList<QUuid> read;
    stream >> read;
    QCOMPARE(read, ids);
    QVERIFY(stream.atEnd());
}

void tst_DragPayload::AForgedPayloadIsEmptyAndAllocatesNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray id(16, 'i');
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one byte") << Bytes("00");
    QTest::newRow("three bytes") << Bytes("000000");
    QTest::newRow("number alone") << Bytes("00000001");
    QTest::newRow("largest number") << Bytes("7fffffff") + id;
    QTest::newRow("minus one") << Bytes("ffffffff") + id;
    QTest::newRow("most negative") << Bytes("80000000") + id;
    QTest::newRow("number whose size wraps in 32 bits") << Bytes("10000001") + id;
    QTest::newRow("number whose size wraps to nothing") << Bytes("10000000");
    QTest::newRow("little-endian number") << Bytes("01000000") + id;
    QTest::newRow("cut") << Bytes("00000001") + id.left(15);
    QTest::newRow("second cut") << Bytes("00000002") + id + id.left(15);
    QTest::newRow("one missing") << Bytes("00000002") + id;
    QTest::newRow("a byte more") << Bytes("00000001") + id + "x";
    QTest::newRow("an id more") << Bytes("00000001") + id + id;
    QTest::newRow("ids behind none") << Bytes("00000000") + id;
}

void tst_DragPayload::AForgedPayloadIsEmptyAndAllocatesNothing()
{
    QFETCH(QByteArray, bytes);
    AllocationCount::Start();
    const QList<QUuid> ids = DragPayload::ReadIDs(bytes);
    AllocationCount::Stop();
    QCOMPARE(ids, QList<QUuid>());
    QVERIFY(AllocationCount::Requests().isEmpty());

    // The count counts: a good payload needs room for its ids.
    const QByteArray good = DragPayload::WriteIDs(SomeIDs(3));
    AllocationCount::Start();
    const QList<QUuid> three = DragPayload::ReadIDs(good);
    AllocationCount::Stop();
    QCOMPARE(three.size(), 3);
    QVERIFY(!AllocationCount::Requests().isEmpty());
}

void tst_DragPayload::EachCutOfAPayloadIsEmpty()
{
    const QByteArray whole = DragPayload::WriteIDs(SomeIDs(3));
    for (int size = 0; size < whole.size(); ++size)
        QCOMPARE(DragPayload::ReadIDs(whole.left(size)), QList<QUuid>());
    QCOMPARE(DragPayload::ReadIDs(whole).size(), 3);
}

void tst_DragPayload::DropTypesAreFiveBytesInOrder()
{
    DragPayload::AllowedDropTypes types;
    QCOMPARE(DragPayload::WriteAllowedDropTypes(types), Bytes("0000000000"));
    types.general = true;
    QCOMPARE(DragPayload::WriteAllowedDropTypes(types), Bytes("0100000000"));
    types.folders = true;
    QCOMPARE(DragPayload::WriteAllowedDropTypes(types), Bytes("0101000000"));
    types.sources = true;
    QCOMPARE(DragPayload::WriteAllowedDropTypes(types), Bytes("0101010000"));
    types.sourcesForElements = true;
    QCOMPARE(DragPayload::WriteAllowedDropTypes(types), Bytes("0101010100"));
    types.timelines = true;
    QCOMPARE(DragPayload::WriteAllowedDropTypes(types), Bytes("0101010101"));
}

void tst_DragPayload::DropTypesReadEachValueButZeroAsSet()
{
    for (int value = 0; value < 256; ++value)
    {
        for (int place = 0; place < 5; ++place)
        {
            QByteArray bytes(5, '\0');
            bytes[place] = static_cast<char>(value);
            const auto types = DragPayload::ReadAllowedDropTypes(bytes);
            QVERIFY(types);
            QCOMPARE(types->general, place == 0 && value != 0);
            QCOMPARE(types->folders, place == 1 && value != 0);
            QCOMPARE(types->sources, place == 2 && value != 0);
            QCOMPARE(types->sourcesForElements, place == 3 && value != 0);
            QCOMPARE(types->timelines, place == 4 && value != 0);
        }
    }
}

void tst_DragPayload::FewerThanFiveDropTypesAreNone()
{
    for (int size = 0; size < 5; ++size)
        QVERIFY(!DragPayload::ReadAllowedDropTypes(QByteArray(size, '\1')));
    QVERIFY(!DragPayload::ReadAllowedDropTypes(std::make_unique<QMimeData>().get()));
}

void tst_DragPayload::MoreThanFiveDropTypesAreRead()
{
    QMimeData data;
    data.setData(UiGlobals::ALLOWED_DROP_TYPES, Bytes("00010001000101"));
    const auto types = DragPayload::ReadAllowedDropTypes(&data);
    QVERIFY(types);
    QVERIFY(!types->general && types->folders && !types->sources && types->sourcesForElements &&
            !types->timelines);
}

void tst_DragPayload::FilesAreThoseThatAreLocalSorted()
{
    QMimeData data;
    QVERIFY(!DragPayload::HasFiles(&data));
    QCOMPARE(DragPayload::ReadFiles(&data), QList<QString>());
    data.setUrls({QUrl(QStringLiteral("file:///x/b.mov")), QUrl(QStringLiteral("http://host/c.mov")),
                  QUrl(QStringLiteral("file:///x/A%20a.mov")), QUrl()});
    QVERIFY(DragPayload::HasFiles(&data));
    QCOMPARE(DragPayload::ReadFiles(&data),
             QList<QString>({QStringLiteral("/x/A a.mov"), QStringLiteral("/x/b.mov")}));
}

void tst_DragPayload::FormatsAreTold()
{
    QMimeData data;
    QVERIFY(!DragPayload::HasProjectObjects(&data) && !DragPayload::HasElements(&data));
    data.setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, QByteArray());
    QVERIFY(DragPayload::HasProjectObjects(&data) && !DragPayload::HasElements(&data));
    data.clear();
    data.setData(UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE, "x");
    QVERIFY(!DragPayload::HasProjectObjects(&data) && DragPayload::HasElements(&data));
}

static const TestRegistration<tst_DragPayload> DragPayloadRegistration;

#include "tst_DragPayload.moc"
