// SPDX-License-Identifier: MIT
#include "scripting/CommandPortReader.h"

#include "scripting/PortReaderModel.h"
#include "support/TestRegistry.h"

#include <QRandomGenerator>
#include <QtTest>

class tst_CommandPortReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void LinesAreReadToTheirBounds_data();
    void LinesAreReadToTheirBounds();
    void NothingIsReadBehindAProblem();
    void HowItIsCutMakesNoDifference();
};

void tst_CommandPortReader::LinesAreReadToTheirBounds_data()
{
    using Reader = CommandPortReader;
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("requests");
    QTest::addColumn<QByteArray>("problem");
    const QByteArray token = "token x\n";
    const QByteArray longest = "eval " + QByteArray(Reader::LongestLine - 5, 'x');
    const QByteArray longestToken = "token " + QByteArray(Reader::LongestTokenLine - 6, 'x');
    QTest::newRow("nothing") << QByteArray() << 0 << QByteArray();
    QTest::newRow("longest token") << longestToken + '\n' << 1 << QByteArray();
    QTest::newRow("longest token, two ends") << longestToken + "\r\n" << 1 << QByteArray();
    QTest::newRow("too long a token") << longestToken + "x\n" << 0 << QByteArray("a line is too long");
    QTest::newRow("endless token") << longestToken + "xx" << 0 << QByteArray("a line is too long");
    QTest::newRow("longest line") << token + longest + '\n' << 2 << QByteArray();
    QTest::newRow("longest line, two ends") << token + longest + "\r\n" << 2 << QByteArray();
    QTest::newRow("too long a line") << token + longest + "x\n" << 1 << QByteArray("a line is too long");
    QTest::newRow("endless line") << token + longest + "xx" << 1 << QByteArray("a line is too long");
    QTest::newRow("largest script") << token + "script 1048576\n" + QByteArray(Reader::LargestScript, '\n')
                                    << 2 << QByteArray();
    QTest::newRow("empty script") << token + "script 0\nlist\n" << 3 << QByteArray();
    QTest::newRow("script cut off") << token + "script 5\nlist" << 1 << QByteArray();
    QTest::newRow("token again") << token + token << 1 << QByteArray("there is no request \"token\"");
    QTest::newRow("blank argument") << token + "run  \t\n" << 1 << QByteArray("run needs an argument");
    QTest::newRow("size with a sign")
        << token + "script +1\n1" << 1 << QByteArray("the size of the script is no number");
    QTest::newRow("size with a blank")
        << token + "script 1 \n1" << 1 << QByteArray("the size of the script is no number");
}

void tst_CommandPortReader::LinesAreReadToTheirBounds()
{
    QFETCH(QByteArray, bytes);
    CommandPortReader reader;
    std::deque<CommandPortReader::Request> requests;
    const bool fine = reader.Feed(bytes, &requests);
    QTEST(reader.Problem(), "problem");
    QCOMPARE(fine, reader.Problem().isEmpty());
    QTEST(static_cast<int>(requests.size()), "requests");
}

void tst_CommandPortReader::NothingIsReadBehindAProblem()
{
    CommandPortReader reader;
    std::deque<CommandPortReader::Request> requests;
    QVERIFY(!reader.Feed("token x\nlist\nwrong\nlist\n", &requests));
    QCOMPARE(requests.size(), size_t(2));
    QVERIFY(!reader.Feed("list\n", &requests));
    QCOMPARE(requests.size(), size_t(2));
    QCOMPARE(reader.Held(), 0);
}

namespace
{

/// Something that a caller might send: mostly right, with anything in between.
QByteArray GeneratedBytes(QRandomGenerator* random)
{
    static const QByteArray words[] = {
        "token ",     "token abc\n", "list\n",         "run a\n",   "run ", "eval 1\r\n", "eval ", "script ",
        "script 5\n", "stop\n",      "script 70000\n", "\n",        "\r\n", "\r",         "12",    " ",
        "list ",      "0\n",         "\xff\xc3\x9c",   "1048577\n", "hello"};
    static const QByteArray right[] = {"list\n", "run a\n", "eval 1\r\n", "script 5\nhello", "stop\r\n"};
    QByteArray bytes = random->bounded(8) == 0 ? QByteArray() : QByteArray("token abc\n");
    const int parts = random->bounded(12);
    for (int part = 0; part < parts; ++part)
    {
        switch (random->bounded(16))
        {
        case 0:
            bytes += QByteArray(random->bounded(200), static_cast<char>(random->bounded(256)));
            break;
        case 1:
            bytes += QByteArray(random->bounded(70000), 'x');
            break;
        case 2:
            bytes += static_cast<char>(random->bounded(256));
            break;
        case 3:
        case 4:
        case 5:
        case 6:
        case 7:
        case 8:
            bytes += right[random->bounded(static_cast<int>(std::size(right)))];
            break;
        default:
            bytes += words[random->bounded(static_cast<int>(std::size(words)))];
            break;
        }
    }
    return bytes;
}

} // namespace

void tst_CommandPortReader::HowItIsCutMakesNoDifference()
{
    QRandomGenerator random(20260101);
    int broken = 0;
    int complete = 0;
    for (int round = 0; round < 20000; ++round)
    {
        const QByteArray bytes = GeneratedBytes(&random);
        const PortReaderModel::Reading expected = PortReaderModel::Read(bytes);
        broken += expected.problem.isEmpty() ? 0 : 1;
        complete += expected.requests.size() > 2 ? 1 : 0;
        for (const int longest : {1 << 30, 1 + random.bounded(9000), 1 + random.bounded(7)})
        {
            if (longest < 8 && bytes.size() > 2000)
                continue;
            const QString difference = PortReaderModel::Difference(bytes, longest, round);
            QVERIFY2(difference.isEmpty(), qPrintable(difference));
        }
    }
    // The bytes are of every kind.
    QVERIFY2(broken > 2000 && broken < 19000, qPrintable(QString::number(broken)));
    QVERIFY2(complete > 1000, qPrintable(QString::number(complete)));
}

static const TestRegistration<tst_CommandPortReader> CommandPortReaderRegistration;

#include "tst_CommandPortReader.moc"
