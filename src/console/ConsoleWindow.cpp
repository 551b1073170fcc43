// SPDX-License-Identifier: MIT
#include "console/ConsoleWindow.h"

#include "console/ConsoleHighlighter.h"
#include "host/Logger.h"
#include "host/Settings.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTextBlock>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

const char* const ConsoleWindow::WindowTitle = "Console";

namespace
{

constexpr int ConsoleMinimumWidth = 300;
constexpr int ConsoleMargin = 4;
constexpr QSize ConsoleButtonSize(60, 24);
/// One above the last row, and meant so: a stored 5 selects no row, and no message brings the window forward.
constexpr int LargestStoredRow = 5;
constexpr int RowOfOtherValues = 1;

/// How long messages of other threads are written as they arrive before further ones have to wait, and how
/// long those that wait are written in one turn of the event loop, in milliseconds.
constexpr qint64 LongestStart = 20;
constexpr qint64 LongestTurn = 8;
/// Pause that painting and input get between two turns, in milliseconds.
constexpr int PauseBetweenTurns = 4;
/// Characters that are written together.
constexpr int LargestBatch = 1 << 13;

QPlainTextEdit* MakePane(const char* objectName, const QFont& font, QWidget* parent)
{
    auto* const pane = new QPlainTextEdit(parent);
    pane->setObjectName(QLatin1String(objectName));
    pane->setWordWrapMode(QTextOption::NoWrap);
    pane->setFont(font);
    return pane;
}

} // namespace

ConsoleWindow::ConsoleWindow(QWidget* parent, Qt::WindowFlags flags) : QWidget(parent, flags)
{
    setWindowTitle(QLatin1String(WindowTitle));
    setMinimumWidth(ConsoleMinimumWidth);
    CreateWidgets();
    CreateLayout();
    CreateConnections();
    mHighlighter = new ConsoleHighlighter(mOutputPane->document());
}

void ConsoleWindow::CreateWidgets()
{
    QFont font(QStringLiteral("Consolas"));
    font.setStyleHint(QFont::Monospace, QFont::PreferDefault);

    mOutputPane = MakePane("outputPane", font, this);
    mOutputPane->setReadOnly(true);
    // Nobody can undo in it, and the steps would be kept for every message.
    mOutputPane->setUndoRedoEnabled(false);
    mInputPane = MakePane("inputPane", font, this);
    mInputPane->setVisible(false);

    mShowOnLabel = new QLabel(tr("Show on"), this);
    mShowOnLabel->setObjectName(QStringLiteral("showOnLabel"));
    mShowOnCombo = new QComboBox(this);
    mShowOnCombo->setObjectName(QStringLiteral("showOnCombo"));
    mShowOnCombo->addItem(tr("Disabled"), ConsoleShowOnDisabled);
    mShowOnCombo->addItem(tr("Errors Only"), ConsoleShowOnErrors);
    mShowOnCombo->addItem(tr("Errors and Warnings"), ConsoleShowOnWarnings);
    mShowOnCombo->addItem(tr("Errors, Warnings and Info"), ConsoleShowOnInfo);
    mShowOnCombo->addItem(tr("Any Output"), ConsoleShowOnAnyOutput);
    const int stored = Settings::consoleShowOnType;
    mShowOnCombo->setCurrentIndex(stored >= 0 && stored <= LargestStoredRow ? stored : RowOfOtherValues);

    mClearButton = new QPushButton(tr("Clear Display"), this);
    mClearButton->setObjectName(QStringLiteral("clearButton"));
    mClearButton->setMinimumSize(ConsoleButtonSize);
    mCloseButton = new QPushButton(tr("Close"), this);
    mCloseButton->setObjectName(QStringLiteral("closeButton"));
    mCloseButton->setMinimumSize(ConsoleButtonSize);
    mCloseButton->setAutoDefault(true);
    mCloseButton->setDefault(true);
    mCloseButton->setFocus(Qt::OtherFocusReason);

    mWaitingTimer = new QTimer(this);
    mWaitingTimer->setSingleShot(true);
}

void ConsoleWindow::CreateLayout()
{
    auto* const policyRow = new QHBoxLayout;
    policyRow->addStretch();
    policyRow->addWidget(mShowOnLabel);
    policyRow->addWidget(mShowOnCombo);

    auto* const splitter = new QSplitter(Qt::Vertical, this);
    splitter->setObjectName(QStringLiteral("splitter"));
    splitter->addWidget(mOutputPane);
    splitter->addWidget(mInputPane);

    auto* const buttonRow = new QHBoxLayout;
    buttonRow->addWidget(mClearButton);
    buttonRow->addStretch();
    buttonRow->addWidget(mCloseButton);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(ConsoleMargin, ConsoleMargin, ConsoleMargin, ConsoleMargin);
    layout->setSpacing(ConsoleMargin);
    layout->addLayout(policyRow);
    layout->addWidget(splitter);
    layout->addLayout(buttonRow);
}

void ConsoleWindow::CreateConnections()
{
    // What has arrived and waits is cleared too.
    connect(mClearButton, &QPushButton::clicked, this, [this] { WriteAllWaiting(); });
    connect(mClearButton, SIGNAL(clicked()), mOutputPane, SLOT(clear()));
    connect(mCloseButton, SIGNAL(clicked()), this, SLOT(close()));
    connect(mShowOnCombo, SIGNAL(currentIndexChanged(int)), this, SLOT(OnShowOnTypeChanged(int)));
    Logger* const logger = Logger::GetInstance();
    // What is logged on this thread is no message of another, whatever event it is logged in.
    const auto noteOwnThread = [this]
    {
        if (QThread::currentThread() == thread())
            mIsDelivering = false;
    };
    for (const auto signal :
         {&Logger::OutputLogged, &Logger::InfoLogged, &Logger::WarningLogged, &Logger::ErrorLogged})
        connect(logger, signal, this, noteOwnThread, Qt::DirectConnection);
    connect(logger, SIGNAL(OutputLogged(const QString&)), this, SLOT(Output(const QString&)));
    connect(logger, SIGNAL(InfoLogged(const QString&)), this, SLOT(Info(const QString&)));
    connect(logger, SIGNAL(WarningLogged(const QString&)), this, SLOT(Warning(const QString&)));
    connect(logger, SIGNAL(ErrorLogged(const QString&)), this, SLOT(Error(const QString&)));
    connect(mWaitingTimer, SIGNAL(timeout()), this, SLOT(WriteWaitingMessages()));
}

void ConsoleWindow::SetInputVisible(bool visible)
{
    mInputPane->setVisible(visible);
    if (visible)
        mInputPane->setFocus(Qt::OtherFocusReason);
}

bool ConsoleWindow::IsInputVisible() const
{
    return !mInputPane->isHidden();
}

void ConsoleWindow::Output(const QString& text)
{
    AppendTextToOutput(text, false, ConsoleShowOnAnyOutput);
}

void ConsoleWindow::Info(const QString& text)
{
    AppendTextToOutput(text, true, ConsoleShowOnInfo);
}

void ConsoleWindow::Warning(const QString& text)
{
    AppendTextToOutput(QStringLiteral("[WARNING] %1").arg(text), true, ConsoleShowOnWarnings);
}

void ConsoleWindow::Error(const QString& text)
{
    AppendTextToOutput(QStringLiteral("[ERROR] %1").arg(text), true, ConsoleShowOnErrors);
}

void ConsoleWindow::AppendTextToOutput(const QString& text, bool newline, ConsoleShowOnType type)
{
    const QString whole = newline ? text + QLatin1Char('\n') : text;
    if (MustWait())
    {
        mWaitingMessages << WaitingMessage{whole, type};
        return;
    }
    WriteAllWaiting();
    WriteToOutput(whole);
    ShowConsole(type);
}

void ConsoleWindow::WriteToOutput(const QString& text)
{
    mOutputPane->moveCursor(QTextCursor::End);
    mOutputPane->insertPlainText(text);
    mOutputPane->moveCursor(QTextCursor::End);
    mOutputPane->horizontalScrollBar()->setSliderPosition(0);
}

bool ConsoleWindow::MustWait()
{
    // A caller on this thread finds its text in the pane when the call returns.
    if (!std::exchange(mIsDelivering, false))
        return false;
    if (!mWaitingMessages.isEmpty())
        return true;
    if (mWaitingTimer->isActive())
        return mTurn.elapsed() >= LongestStart;
    mTurn.start();
    mWaitingTimer->start(0);
    return false;
}

void ConsoleWindow::WriteWaitingBatch()
{
    QString text;
    ConsoleShowOnType type = ConsoleShowOnAnyOutput;
    int count = 0;
    while (count < mWaitingMessages.size() && text.size() < LargestBatch)
    {
        // The pane takes both together for one end of a line.
        if (text.endsWith(QLatin1Char('\r')) && mWaitingMessages.at(count).text.startsWith(QLatin1Char('\n')))
            break;
        // The lowest rank brings the window forward wherever any of them does.
        type = qMin(type, mWaitingMessages.at(count).type);
        text += mWaitingMessages.at(count).text;
        ++count;
    }
    mWaitingMessages.erase(mWaitingMessages.begin(), mWaitingMessages.begin() + count);
    WriteToOutput(text);
    ShowConsole(type);
}

void ConsoleWindow::WriteAllWaiting()
{
    while (!mWaitingMessages.isEmpty())
        WriteWaitingBatch();
}

void ConsoleWindow::WriteWaitingMessages()
{
    mTurn.start();
    while (!mWaitingMessages.isEmpty() && mTurn.elapsed() < LongestTurn)
        WriteWaitingBatch();
    if (!mWaitingMessages.isEmpty())
        mWaitingTimer->start(PauseBetweenTurns);
}

void ConsoleWindow::ShowConsole(ConsoleShowOnType type)
{
    const int policy = mShowOnCombo->currentData().toInt();
    const bool isRanked = type >= ConsoleShowOnErrors && type <= ConsoleShowOnInfo;
    if (policy != ConsoleShowOnAnyOutput && (!isRanked || type > policy))
        return;
    if (isHidden())
    {
        show();
        return;
    }
    activateWindow();
    raise();
}

void ConsoleWindow::OnShowOnTypeChanged(int index)
{
    Settings::consoleShowOnType = mShowOnCombo->itemData(index).toInt();
}

void ConsoleWindow::ScriptExecute(QString script)
{
    script.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    Q_EMIT ScriptExecuted(script);
}

void ConsoleWindow::ScriptExecuteSelection()
{
    const QTextCursor cursor = mInputPane->textCursor();
    if (cursor.hasSelection())
        ScriptExecute(cursor.selectedText());
    else
        ScriptExecuteAll();
}

void ConsoleWindow::ScriptExecuteLine()
{
    QTextCursor cursor = mInputPane->textCursor();
    cursor.movePosition(QTextCursor::StartOfLine);
    cursor.movePosition(QTextCursor::EndOfLine, QTextCursor::KeepAnchor);
    ScriptExecute(cursor.selectedText().trimmed());
}

void ConsoleWindow::ScriptExecuteAll()
{
    ScriptExecute(mInputPane->toPlainText());
}

bool ConsoleWindow::event(QEvent* event)
{
    if (event->type() != QEvent::MetaCall)
        return QWidget::event(event);
    const QPointer<ConsoleWindow> guard(this);
    mIsDelivering = true;
    const bool isHandled = QWidget::event(event);
    // The call may have deleted the window.
    if (guard)
        mIsDelivering = false;
    return isHandled;
}

void ConsoleWindow::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if (!isReturn || !modifiers.testFlag(Qt::ControlModifier))
        return;
    if (modifiers.testFlag(Qt::ShiftModifier))
        ScriptExecuteAll();
    else if (modifiers.testFlag(Qt::AltModifier))
        ScriptExecuteLine();
    else
        ScriptExecuteSelection();
    event->accept();
}

void ConsoleWindow::closeEvent(QCloseEvent*)
{
    Settings::consoleWindowGeometry = saveGeometry();
}

void ConsoleWindow::showEvent(QShowEvent*)
{
    restoreGeometry(Settings::consoleWindowGeometry);
}
