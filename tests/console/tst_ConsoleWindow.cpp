// SPDX-License-Identifier: MIT
#include "console/ConsoleHighlighter.h"
#include "console/ConsoleWindow.h"
#include "host/Logger.h"
#include "host/Settings.h"
#include "support/TestRegistry.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTextBlock>
#include <QtTest>

#include <memory>

/// What the window shows, how it is laid out, and when it comes forward.
class tst_ConsoleWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void WidgetsStandAsTold();
    void LayoutsStandAsTold();
    void StoredPolicyIsTheRow_data();
    void StoredPolicyIsTheRow();
    void PickingARowStoresThePolicyAtOnce();
    void EachKindIsWrittenInItsForm_data();
    void EachKindIsWrittenInItsForm();
    void PartialLinesAreContinued();
    void TextLandsAtTheEndWhereverTheCursorIs();
    void LongLinesLeaveTheViewAtTheLeft();
    void WindowComesForwardByThePolicy_data();
    void WindowComesForwardByThePolicy();
    void PolicyIsReadFromTheComboAndNotFromTheSettings();
    void ShownWindowIsRaisedAndNotShownAgain();
    void LoggerIsHeardWhileHidden();
    void ClearEmptiesThePane();
    void CloseHidesAndKeepsTextAndGeometry();
    void TagsAreColoured();

private:
    QPlainTextEdit* Pane() const { return mWindow->findChild<QPlainTextEdit*>("outputPane"); }
    QPlainTextEdit* Input() const { return mWindow->findChild<QPlainTextEdit*>("inputPane"); }
    QComboBox* Combo() const { return mWindow->findChild<QComboBox*>("showOnCombo"); }
    void Make(int policy);

    std::unique_ptr<ConsoleWindow> mWindow;
};

namespace
{

/// Counts the events of a kind that an object gets.
class EventCount : public QObject
{
public:
    EventCount(QObject* watched, QList<QEvent::Type> types) : mTypes(std::move(types))
    {
        watched->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (mTypes.contains(event->type()))
            ++count;
        return false;
    }

    int count = 0;

private:
    QList<QEvent::Type> mTypes;
};

} // namespace

void tst_ConsoleWindow::init()
{
    Settings::RestoreDefaults();
    Make(0);
}

void tst_ConsoleWindow::cleanup()
{
    mWindow.reset();
    QVERIFY(QApplication::allWidgets().isEmpty());
}

void tst_ConsoleWindow::Make(int policy)
{
    Settings::consoleShowOnType = policy;
    mWindow = std::make_unique<ConsoleWindow>(nullptr, Qt::WindowFlags());
}

void tst_ConsoleWindow::WidgetsStandAsTold()
{
    QCOMPARE(mWindow->windowTitle(), QStringLiteral("Console"));
    QCOMPARE(mWindow->minimumWidth(), 300);
    QVERIFY(mWindow->isHidden());
    QVERIFY(Pane()->isReadOnly());
    QVERIFY(!Input()->isReadOnly());
    QVERIFY(!Pane()->isHidden());
    QVERIFY(Input()->isHidden());
    QVERIFY(!mWindow->IsInputVisible());
    QFont font("Consolas");
    font.setStyleHint(QFont::Monospace, QFont::PreferDefault);
    for (const QPlainTextEdit* pane : {Pane(), Input()})
    {
        QCOMPARE(pane->wordWrapMode(), QTextOption::NoWrap);
        QCOMPARE(pane->font().family(), font.family());
        QCOMPARE(pane->font().styleHint(), QFont::Monospace);
        QCOMPARE(pane->font().styleStrategy(), QFont::PreferDefault);
        QCOMPARE(pane->maximumBlockCount(), 0);
    }
    QCOMPARE(mWindow->findChild<QLabel*>("showOnLabel")->text(), QStringLiteral("Show on"));
    const QStringList rows = {"Disabled", "Errors Only", "Errors and Warnings", "Errors, Warnings and Info",
                              "Any Output"};
    QCOMPARE(Combo()->count(), rows.size());
    for (int row = 0; row < rows.size(); ++row)
    {
        QCOMPARE(Combo()->itemText(row), rows[row]);
        QCOMPARE(Combo()->itemData(row), QVariant(row));
    }
    const auto* clear = mWindow->findChild<QPushButton*>("clearButton");
    const auto* close = mWindow->findChild<QPushButton*>("closeButton");
    QCOMPARE(clear->text(), QStringLiteral("Clear Display"));
    QCOMPARE(clear->minimumSize(), QSize(60, 24));
    QCOMPARE(close->text(), QStringLiteral("Close"));
    QCOMPARE(close->minimumSize(), QSize(60, 24));
    QVERIFY(close->autoDefault());
    QVERIFY(close->isDefault());
    QCOMPARE(mWindow->focusWidget(), close);
    const ConsoleWindow tool(nullptr, Qt::Tool);
    QVERIFY(tool.windowFlags().testFlag(Qt::Tool));
}

void tst_ConsoleWindow::LayoutsStandAsTold()
{
    const auto* layout = qobject_cast<QVBoxLayout*>(mWindow->layout());
    QVERIFY(layout);
    QCOMPARE(layout->contentsMargins(), QMargins(4, 4, 4, 4));
    QCOMPARE(layout->spacing(), 4);
    QCOMPARE(layout->count(), 3);
    const auto* policy = qobject_cast<QHBoxLayout*>(layout->itemAt(0)->layout());
    QVERIFY(policy);
    QCOMPARE(policy->count(), 3);
    QVERIFY(policy->itemAt(0)->spacerItem());
    QCOMPARE(policy->itemAt(1)->widget(), mWindow->findChild<QLabel*>("showOnLabel"));
    QCOMPARE(policy->itemAt(2)->widget(), Combo());
    const auto* splitter = qobject_cast<QSplitter*>(layout->itemAt(1)->widget());
    QVERIFY(splitter);
    QCOMPARE(splitter->orientation(), Qt::Vertical);
    QCOMPARE(splitter->count(), 2);
    QCOMPARE(splitter->widget(0), Pane());
    QCOMPARE(splitter->widget(1), Input());
    const auto* buttons = qobject_cast<QHBoxLayout*>(layout->itemAt(2)->layout());
    QVERIFY(buttons);
    QCOMPARE(buttons->count(), 3);
    QCOMPARE(buttons->itemAt(0)->widget(), mWindow->findChild<QPushButton*>("clearButton"));
    QVERIFY(buttons->itemAt(1)->spacerItem());
    QCOMPARE(buttons->itemAt(2)->widget(), mWindow->findChild<QPushButton*>("closeButton"));
    mWindow->show();
    QVERIFY(Input()->isHidden());
    mWindow->SetInputVisible(true);
    QVERIFY(mWindow->IsInputVisible());
    QVERIFY(Input()->isVisible());
    QCOMPARE(mWindow->focusWidget(), Input());
    mWindow->SetInputVisible(false);
    QVERIFY(Input()->isHidden());
}

void tst_ConsoleWindow::StoredPolicyIsTheRow_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("row");
    for (int stored = 0; stored <= 4; ++stored)
        QTest::addRow("%d", stored) << stored << stored;
    QTest::newRow("one above the last selects none") << 5 << -1;
    QTest::newRow("6") << 6 << 1;
    QTest::newRow("9") << 9 << 1;
    QTest::newRow("-1") << -1 << 1;
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << 1;
    QTest::newRow("largest") << std::numeric_limits<int>::max() << 1;
}

void tst_ConsoleWindow::StoredPolicyIsTheRow()
{
    QFETCH(int, stored);
    Make(stored);
    QTEST(Combo()->currentIndex(), "row");
    QCOMPARE(Settings::consoleShowOnType, stored);
    if (stored == 5)
    {
        QCOMPARE(Combo()->currentText(), QString());
        mWindow->Error("x");
        mWindow->Output("x");
        QVERIFY(mWindow->isHidden());
    }
}

void tst_ConsoleWindow::PickingARowStoresThePolicyAtOnce()
{
    for (const int row : {4, 2, 0, 3, 1})
    {
        Combo()->setCurrentIndex(row);
        QCOMPARE(Settings::consoleShowOnType, row);
    }
    Make(9);
    QCOMPARE(Settings::consoleShowOnType, 9);
    Combo()->setCurrentIndex(3);
    QCOMPARE(Settings::consoleShowOnType, 3);
    // A row that there isn't holds no data.
    mWindow->OnShowOnTypeChanged(17);
    QCOMPARE(Settings::consoleShowOnType, 0);
}

void tst_ConsoleWindow::EachKindIsWrittenInItsForm_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("written");
    QTest::newRow("output") << QByteArray("Output") << "some"
                            << "some";
    QTest::newRow("output of a line") << QByteArray("Output") << "some\n"
                                      << "some\n";
    QTest::newRow("info") << QByteArray("Info") << "some"
                          << "some\n";
    QTest::newRow("warning") << QByteArray("Warning") << "some"
                             << "[WARNING] some\n";
    QTest::newRow("error") << QByteArray("Error") << "some"
                           << "[ERROR] some\n";
    QTest::newRow("empty output") << QByteArray("Output") << ""
                                  << "";
    QTest::newRow("empty info") << QByteArray("Info") << ""
                                << "\n";
    QTest::newRow("empty error") << QByteArray("Error") << ""
                                 << "[ERROR] \n";
    QTest::newRow("placeholder") << QByteArray("Error") << "%1 %2"
                                 << "[ERROR] %1 %2\n";
    QTest::newRow("markup") << QByteArray("Warning") << "<b>&amp;"
                            << "[WARNING] <b>&amp;\n";
}

void tst_ConsoleWindow::EachKindIsWrittenInItsForm()
{
    QFETCH(QByteArray, slot);
    QFETCH(QString, text);
    QFETCH(QString, written);
    Pane()->setPlainText("before\n");
    QVERIFY(QMetaObject::invokeMethod(mWindow.get(), slot, Q_ARG(QString, text)));
    QCOMPARE(Pane()->toPlainText(), "before\n" + written);
}

void tst_ConsoleWindow::PartialLinesAreContinued()
{
    mWindow->Output("one ");
    mWindow->Output("two\n");
    mWindow->Info("three");
    mWindow->Output("part");
    mWindow->Error("four");
    QCOMPARE(Pane()->toPlainText(), QStringLiteral("one two\nthree\npart[ERROR] four\n"));
}

void tst_ConsoleWindow::TextLandsAtTheEndWhereverTheCursorIs()
{
    mWindow->Info("first");
    mWindow->Info("second");
    QTextCursor cursor = Pane()->textCursor();
    cursor.setPosition(2);
    cursor.setPosition(7, QTextCursor::KeepAnchor);
    Pane()->setTextCursor(cursor);
    mWindow->Warning("third");
    QCOMPARE(Pane()->toPlainText(), QStringLiteral("first\nsecond\n[WARNING] third\n"));
    QVERIFY(!Pane()->textCursor().hasSelection());
    QVERIFY(Pane()->textCursor().atEnd());
}

void tst_ConsoleWindow::LongLinesLeaveTheViewAtTheLeft()
{
    mWindow->resize(400, 300);
    mWindow->show();
    for (int i = 0; i < 60; ++i)
        mWindow->Info(QString::number(i));
    mWindow->Output(QString(2000, 'x'));
    QVERIFY(Pane()->horizontalScrollBar()->maximum() > 0);
    QCOMPARE(Pane()->horizontalScrollBar()->sliderPosition(), 0);
    QCOMPARE(Pane()->verticalScrollBar()->value(), Pane()->verticalScrollBar()->maximum());
    Pane()->horizontalScrollBar()->setValue(100);
    Pane()->verticalScrollBar()->setValue(0);
    mWindow->Output(QString(10, 'y'));
    QCOMPARE(Pane()->horizontalScrollBar()->value(), 0);
    QCOMPARE(Pane()->verticalScrollBar()->value(), Pane()->verticalScrollBar()->maximum());
}

void tst_ConsoleWindow::WindowComesForwardByThePolicy_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<int>("policy");
    QTest::addColumn<bool>("isShown");
    const QList<QPair<QByteArray, QByteArray>> rows = {
        // Whether it is shown by the policies 0 to 4.
        {"Error", "01111"},
        {"Warning", "00111"},
        {"Info", "00011"},
        {"Output", "00001"},
    };
    for (const auto& row : rows)
    {
        for (int policy = 0; policy <= 4; ++policy)
            QTest::addRow("%s by %d", row.first.constData(), policy)
                << row.first << policy << (row.second[policy] == '1');
    }
}

void tst_ConsoleWindow::WindowComesForwardByThePolicy()
{
    QFETCH(QByteArray, slot);
    QFETCH(int, policy);
    QFETCH(bool, isShown);
    Make(policy);
    QVERIFY(QMetaObject::invokeMethod(mWindow.get(), slot, Q_ARG(QString, "text")));
    QVERIFY(Pane()->toPlainText().contains("text"));
    QCOMPARE(mWindow->isVisible(), isShown);
    // Nothing ever hides it.
    mWindow->show();
    QVERIFY(QMetaObject::invokeMethod(mWindow.get(), slot, Q_ARG(QString, "text")));
    QVERIFY(mWindow->isVisible());
}

void tst_ConsoleWindow::PolicyIsReadFromTheComboAndNotFromTheSettings()
{
    Make(0);
    Settings::consoleShowOnType = 4;
    mWindow->Error("x");
    QVERIFY(mWindow->isHidden());
    Combo()->setCurrentIndex(4);
    Settings::consoleShowOnType = 0;
    mWindow->Output("x");
    QVERIFY(mWindow->isVisible());
    mWindow->close();
    // A row's data count, not its place.
    Combo()->setItemData(0, 1);
    Combo()->setCurrentIndex(0);
    mWindow->Warning("x");
    QVERIFY(mWindow->isHidden());
    mWindow->Error("x");
    QVERIFY(mWindow->isVisible());
}

void tst_ConsoleWindow::ShownWindowIsRaisedAndNotShownAgain()
{
    Make(1);
    mWindow->show();
    QWidget other;
    other.show();
    other.raise();
    other.activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), &other);
    EventCount shows(mWindow.get(), {QEvent::Show, QEvent::ShowToParent});
    mWindow->Error("x");
    QTRY_COMPARE(QApplication::activeWindow(), mWindow.get());
    QCOMPARE(shows.count, 0);
    other.activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), &other);
    mWindow->Warning("x");
    QCoreApplication::processEvents();
    QCOMPARE(QApplication::activeWindow(), &other);
}

void tst_ConsoleWindow::LoggerIsHeardWhileHidden()
{
    Logger* const logger = Logger::GetInstance();
    logger->Output("o\n");
    logger->Info("i");
    logger->Warning("w");
    logger->Error("e");
    QVERIFY(mWindow->isHidden());
    QCOMPARE(Pane()->toPlainText(), QStringLiteral("o\ni\n[WARNING] w\n[ERROR] e\n"));
}

void tst_ConsoleWindow::ClearEmptiesThePane()
{
    mWindow->Info("x");
    Input()->setPlainText("script");
    mWindow->findChild<QPushButton*>("clearButton")->click();
    QCOMPARE(Pane()->toPlainText(), QString());
    QCOMPARE(Input()->toPlainText(), QStringLiteral("script"));
    mWindow->Info("y");
    QCOMPARE(Pane()->toPlainText(), QStringLiteral("y\n"));
}

void tst_ConsoleWindow::CloseHidesAndKeepsTextAndGeometry()
{
    Settings::consoleWindowGeometry = QByteArray("no geometry");
    mWindow->show();
    mWindow->setGeometry(60, 70, 420, 330);
    mWindow->Info("x");
    mWindow->findChild<QPushButton*>("closeButton")->click();
    QVERIFY(mWindow->isHidden());
    QCOMPARE(Settings::consoleWindowGeometry, mWindow->saveGeometry());
    QVERIFY(Settings::consoleWindowGeometry != QByteArray("no geometry"));
    mWindow->setGeometry(0, 0, 310, 200);
    mWindow->show();
    QCOMPARE(mWindow->geometry(), QRect(60, 70, 420, 330));
    QCOMPARE(Pane()->toPlainText(), QStringLiteral("x\n"));
    const QByteArray kept = Settings::consoleWindowGeometry;
    mWindow->close();

    // Another window takes the place over, at every show.
    Make(0);
    Settings::consoleWindowGeometry = kept;
    for (int i = 0; i < 2; ++i)
    {
        mWindow->show();
        QCOMPARE(mWindow->geometry(), QRect(60, 70, 420, 330));
        mWindow->hide();
        mWindow->setGeometry(5, 5, 350, 250);
    }
}

void tst_ConsoleWindow::TagsAreColoured()
{
    QVERIFY(Pane()->document()->findChild<ConsoleHighlighter*>());
    QCoreApplication::processEvents();
    mWindow->Error("x");
    mWindow->Info("y");
    const QVector<QTextLayout::FormatRange> ranges = Pane()->document()->firstBlock().layout()->formats();
    QCOMPARE(ranges.size(), 1);
    QCOMPARE(ranges.first().start, 0);
    QCOMPARE(ranges.first().length, 7);
    QCOMPARE(ranges.first().format.foreground().color(), QColor(Qt::red));
    QVERIFY(Pane()->document()->findBlockByNumber(1).layout()->formats().isEmpty());
}

static const TestRegistration<tst_ConsoleWindow> ConsoleWindowRegistration;

#include "tst_ConsoleWindow.moc"
