// SPDX-License-Identifier: MIT
#include "fuzz/DragPayloadUse.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QRandomGenerator>
#include <QtTest>

/// What the fuzzer does, with the inputs that were worth keeping and with many made at random.
class tst_DragPayloadReplay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void KeptInputs();
    void RandomInputs();
    void WhatIsTooShortIsNoDrag();
};

namespace
{

std::string Use(const QByteArray& bytes)
{
    return UseDragPayload(reinterpret_cast<const uint8_t*>(bytes.constData()),
                          static_cast<size_t>(bytes.size()));
}

} // namespace

void tst_DragPayloadReplay::KeptInputs()
{
    const QDir folder(QStringLiteral(TORVALEN_FUZZ_CORPUS) + QStringLiteral("/drag-payload"));
    const QStringList names = folder.entryList(QDir::Files);
    QVERIFY(names.size() >= 10);
    for (const QString& name : names)
    {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const std::string fault = Use(file.readAll());
        QVERIFY2(fault.empty(), qPrintable(name + QStringLiteral(": ") + QString::fromStdString(fault)));
    }
}

void tst_DragPayloadReplay::RandomInputs()
{
    QRandomGenerator random(12);
    for (int round = 0; round < 20000; ++round)
    {
        QByteArray bytes;
        for (int index = 0; index < 2; ++index)
            bytes += static_cast<char>(random.bounded(256));
        const int flags = random.bounded(4) > 0 ? 5 : random.bounded(8);
        bytes += static_cast<char>(flags);
        for (int index = 0; index < flags; ++index)
            bytes += static_cast<char>(random.bounded(2));
        // Half of the lists are whole; the others lie about their number, or are cut, or go on.
        const int count = random.bounded(4);
        const int told = random.bounded(2) == 0 ? count : static_cast<int>(random.generate());
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(static_cast<unsigned>(told) >> shift);
        const int size = random.bounded(4) > 0 ? 16 * count : random.bounded(60);
        for (int index = 0; index < size; ++index)
            bytes += static_cast<char>(random.bounded(256));
        const std::string fault = Use(bytes);
        QVERIFY2(fault.empty(), (bytes.toHex() + ": " + fault.c_str()).constData());
    }
}

void tst_DragPayloadReplay::WhatIsTooShortIsNoDrag()
{
    QVERIFY(Use(QByteArray()).empty());
    QVERIFY(Use(QByteArray(2, '\xff')).empty());
}

static const TestRegistration<tst_DragPayloadReplay> DragPayloadReplayRegistration;

#include "tst_DragPayloadReplay.moc"
