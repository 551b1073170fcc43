// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"
#include "host/ConsoleShowOnType.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QWidget>

class ConsoleHighlighter;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTimer;

/// The window that shows all that is logged, and that comes forward by itself for the messages that the user
/// chose. It also holds a pane for script text, hidden at first, and asks the host to run it.
///
/// From its construction on it hears Logger, whether shown or not; closing only hides it. Messages of other
/// threads arrive through the event loop, in their order. What comes faster than it can be written waits for
/// free moments of the event loop, so that the window stays usable.
class TORVALENUI_EXPORT ConsoleWindow : public QWidget
{
    Q_OBJECT

public:
    /// Reads Settings::consoleShowOnType.
    explicit ConsoleWindow(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());

    /// Shows or hides the pane for script text and, when it is shown, gives it the focus.
    void SetInputVisible(bool visible);
    /// Whether the pane for script text is shown whenever the window is.
    bool IsInputVisible() const;

Q_SIGNALS:
    /// The user wants @p script run; it may be empty. The host answers with log traffic through Logger.
    void ScriptExecuted(QString script);

public Q_SLOTS:
    /// Appends @p text as it stands, without a line end.
    void Output(const QString& text);
    /// Appends @p text as a line.
    void Info(const QString& text);
    /// Appends @p text as a line behind "[WARNING] ".
    void Warning(const QString& text);
    /// Appends @p text as a line behind "[ERROR] ".
    void Error(const QString& text);

    /// Stores the policy of row @p index in Settings::consoleShowOnType at once.
    void OnShowOnTypeChanged(int index);

    /// Emits ScriptExecuted() with @p script, its paragraph separators (U+2029) made line ends.
    void ScriptExecute(QString script);
    /// Runs what is selected in the input pane, or all of its text if nothing is.
    void ScriptExecuteSelection();
    /// Runs the line of the input pane's cursor, without the blanks round it.
    void ScriptExecuteLine();
    /// Runs all of the input pane's text.
    void ScriptExecuteAll();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private Q_SLOTS:
    void WriteWaitingMessages();

private:
    /// A message that came too fast to be written at once.
    struct WaitingMessage
    {
        QString text;
        ConsoleShowOnType type;
    };

    void CreateWidgets();
    void CreateLayout();
    void CreateConnections();

    void AppendTextToOutput(const QString& text, bool newline, ConsoleShowOnType type);
    void ShowConsole(ConsoleShowOnType type);
    void WriteToOutput(const QString& text);
    bool MustWait();
    void WriteAllWaiting();
    void WriteWaitingBatch();

    static const char* const WindowTitle;

    QPlainTextEdit* mOutputPane = nullptr;
    QPlainTextEdit* mInputPane = nullptr;
    QLabel* mShowOnLabel = nullptr;
    QComboBox* mShowOnCombo = nullptr;
    QPushButton* mClearButton = nullptr;
    QPushButton* mCloseButton = nullptr;
    // Empty: nothing reads or writes it. It keeps its place among the members.
    QByteArray mSpareBytes;
    ConsoleHighlighter* mHighlighter = nullptr;

    QList<WaitingMessage> mWaitingMessages;
    QTimer* mWaitingTimer = nullptr;
    QElapsedTimer mTurn;
    bool mIsDelivering = false;
};
