// SPDX-License-Identifier: MIT
#include "console/ConsoleHighlighter.h"
#include "support/TestRegistry.h"

#include <QPlainTextDocumentLayout>
#include <QRandomGenerator>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QtTest>

class tst_ConsoleHighlighter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void LettersTakeTheColourOfTheirTag_data();
    void LettersTakeTheColourOfTheirTag();
    void GeneratedLogsAreColouredAsTheSecondStatementSays();
    void OnlyTheForegroundIsSet();
    void LinesAddedLaterAreColouredAtOnce();
};

namespace
{

QString ColouredLetters(const QTextBlock& block)
{
    QString colours(block.text().size(), QLatin1Char('.'));
    for (const QTextLayout::FormatRange& range : block.layout()->formats())
    {
        const QColor colour = range.format.foreground().color();
        const QChar mark = colour == QColor(Qt::red)      ? QLatin1Char('r')
                           : colour == QColor(Qt::yellow) ? QLatin1Char('y')
                                                          : QLatin1Char('?');
        for (int i = 0; i < range.length; ++i)
            colours[range.start + i] = mark;
    }
    return colours;
}

/// What the colours are to be: each letter is looked at on its own.
QString ExpectedLetters(const QString& line)
{
    const QString error = QStringLiteral("[ERROR]");
    const QString warning = QStringLiteral("[WARNING]");
    QString colours(line.size(), QLatin1Char('.'));
    for (int letter = 0; letter < line.size(); ++letter)
    {
        for (int start = qMax(0, letter - 8); start <= letter; ++start)
        {
            if (line.midRef(start, 7) == error && letter < start + 7)
                colours[letter] = QLatin1Char('r');
            if (line.midRef(start, 9) == warning && letter < start + 9)
                colours[letter] = QLatin1Char('y');
        }
    }
    return colours;
}

struct HighlightedLog
{
    explicit HighlightedLog(const QString& text)
    {
        document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
        document.setPlainText(text);
        highlighter = new ConsoleHighlighter(&document);
        // The first pass over a document comes from a timer.
        QCoreApplication::processEvents();
    }

    QTextDocument document;
    ConsoleHighlighter* highlighter;
};

} // namespace

void tst_ConsoleHighlighter::LettersTakeTheColourOfTheirTag_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("colours");
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("plain") << "all is well"
                           << "...........";
    QTest::newRow("error") << "[ERROR] no file"
                           << "rrrrrrr........";
    QTest::newRow("warning") << "[WARNING] late"
                             << "yyyyyyyyy.....";
    QTest::newRow("two errors") << "[ERROR] a [ERROR] b"
                                << "rrrrrrr...rrrrrrr..";
    QTest::newRow("adjoining") << "[ERROR][ERROR]"
                               << "rrrrrrrrrrrrrr";
    QTest::newRow("both") << "[WARNING] [ERROR]"
                          << "yyyyyyyyy.rrrrrrr";
    QTest::newRow("in the middle") << "he said [ERROR]!"
                                   << "........rrrrrrr.";
    QTest::newRow("lower case") << "[error] [warning]"
                                << ".................";
    QTest::newRow("mixed case") << "[Error] [WARNINg]"
                                << ".................";
    QTest::newRow("without brackets") << "ERROR WARNING"
                                      << ".............";
    QTest::newRow("a class of letters") << "E R O [ E ]"
                                        << "...........";
    QTest::newRow("twice bracketed") << "[[ERROR]]"
                                     << ".rrrrrrr.";
    QTest::newRow("broken") << "[ERR OR] [WARNING"
                            << ".................";
}

void tst_ConsoleHighlighter::LettersTakeTheColourOfTheirTag()
{
    QFETCH(QString, line);
    const HighlightedLog log(line);
    QTEST(ColouredLetters(log.document.firstBlock()), "colours");
    QCOMPARE(ExpectedLetters(line), ColouredLetters(log.document.firstBlock()));
}

void tst_ConsoleHighlighter::GeneratedLogsAreColouredAsTheSecondStatementSays()
{
    const QStringList pieces = {"[ERROR]", "[WARNING]", "[error]", "[",      "]",        "ERROR", "WARN",
                                " ",       "text",      "\u00e9",  "[ERROR", "WARNING]", "\t"};
    QRandomGenerator random(17);
    QStringList lines;
    for (int i = 0; i < 3000; ++i)
    {
        QString line;
        for (quint32 count = random.bounded(9u); count > 0; --count)
            line += pieces[random.bounded(pieces.size())];
        lines << line;
    }
    const HighlightedLog log(lines.join(QLatin1Char('\n')));
    QCOMPARE(log.document.blockCount(), lines.size());
    for (int i = 0; i < lines.size(); ++i)
    {
        const QTextBlock block = log.document.findBlockByNumber(i);
        QCOMPARE(block.text(), lines[i]);
        QVERIFY2(ColouredLetters(block) == ExpectedLetters(lines[i]), qPrintable(lines[i]));
        QCOMPARE(block.userState(), -1);
    }
}

void tst_ConsoleHighlighter::OnlyTheForegroundIsSet()
{
    const HighlightedLog log(QStringLiteral("[ERROR] [WARNING]"));
    const QVector<QTextLayout::FormatRange> ranges = log.document.firstBlock().layout()->formats();
    QCOMPARE(ranges.size(), 2);
    for (const QTextLayout::FormatRange& range : ranges)
    {
        QCOMPARE(range.format.properties().keys(), QList<int>{QTextFormat::ForegroundBrush});
        QCOMPARE(range.format.foreground().style(), Qt::SolidPattern);
    }
    QCOMPARE(log.highlighter->parent(), &log.document);
}

void tst_ConsoleHighlighter::LinesAddedLaterAreColouredAtOnce()
{
    HighlightedLog log(QStringLiteral("first"));
    QTextCursor cursor(&log.document);
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(QStringLiteral("\n[ERROR] second\n[WARN"));
    QCOMPARE(ColouredLetters(log.document.findBlockByNumber(1)), QStringLiteral("rrrrrrr......."));
    cursor.insertText(QStringLiteral("ING] third"));
    QCOMPARE(ColouredLetters(log.document.findBlockByNumber(2)), QStringLiteral("yyyyyyyyy......"));
}

static const TestRegistration<tst_ConsoleHighlighter> ConsoleHighlighterRegistration;

#include "tst_ConsoleHighlighter.moc"
