// SPDX-License-Identifier: MIT
#include "window/ConsoleBinding.h"

#include "console/ConsoleWindow.h"
#include "scripting/ScriptEngine.h"
#include "window/CommandTable.h"
#include "window/EarlyLog.h"

#include <QAction>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>

namespace
{

constexpr QSize ConsoleInitialSize(760, 420);
/// Room for what a window system puts round a window.
constexpr int WindowFrame = 8;
constexpr int TitleBar = 40;

} // namespace

ConsoleBinding::ConsoleBinding(QWidget* window, ScriptEngine* engine)
    : QObject(window), mConsole(new ConsoleWindow(window, Qt::Window))
{
    mConsole->setObjectName(QStringLiteral("console"));
    mConsole->resize(ConsoleInitialSize);
    // Until the user has put it elsewhere, away from the picture: it comes forward by itself.
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    mConsole->move(room.bottomRight() -
                   QPoint(mConsole->width() + WindowFrame, mConsole->height() + TitleBar));
    connect(mConsole, SIGNAL(ScriptExecuted(QString)), engine, SLOT(Execute(QString)));
    for (const EarlyLog::Message& message : EarlyLog::Messages())
    {
        switch (message.kind)
        {
        case EarlyLog::Kind::Output:
            mConsole->Output(message.text);
            break;
        case EarlyLog::Kind::Info:
            mConsole->Info(message.text);
            break;
        case EarlyLog::Kind::Warning:
            mConsole->Warning(message.text);
            break;
        case EarlyLog::Kind::Error:
            mConsole->Error(message.text);
            break;
        }
    }
}

ConsoleWindow* ConsoleBinding::Console() const
{
    return mConsole;
}

bool ConsoleBinding::IsShown() const
{
    return !mConsole->isHidden();
}

bool ConsoleBinding::IsInputShown() const
{
    return mConsole->IsInputVisible();
}

void ConsoleBinding::Close()
{
    // Closing a window that isn't shown would take its default place for the user's.
    if (IsShown())
        mConsole->close();
}

void ConsoleBinding::AddActions(const CommandTable* commands)
{
    for (const char* name :
         {"view.console", "view.scriptInput", "script.stop", "script.runFile", "file.quit"})
    {
        if (QAction* const action = commands->Action(QLatin1String(name)))
            mConsole->addAction(action);
    }
}

void ConsoleBinding::Toggle()
{
    if (IsShown())
    {
        Close();
        return;
    }
    mConsole->show();
    mConsole->raise();
    mConsole->activateWindow();
}

void ConsoleBinding::ToggleInput()
{
    mConsole->SetInputVisible(!IsInputShown());
    if (IsInputShown() && !IsShown())
        Toggle();
}

void AddConsoleCommands(std::vector<Command>& commands, ConsoleBinding* console)
{
    struct ConsoleRow
    {
        const char* name;
        const char* text;
        int key;
        std::function<void()> run;
        std::function<bool()> isOn;
    };
    const ConsoleRow rows[] = {
        {"view.console", QT_TRANSLATE_NOOP("ConsoleCommands", "|&Console"), Qt::Key_F12,
         [console] { console->Toggle(); }, [console] { return console->IsShown(); }},
        {"view.scriptInput", QT_TRANSLATE_NOOP("ConsoleCommands", "Script &Input in Console"),
         Qt::SHIFT + Qt::Key_F12, [console] { console->ToggleInput(); },
         [console] { return console->IsInputShown(); }}};
    for (const ConsoleRow& row : rows)
        commands.push_back({QLatin1String(row.name),
                            QCoreApplication::translate("ConsoleCommands", row.text),
                            QStringLiteral("view"),
                            {QKeySequence(row.key)},
                            row.run,
                            row.isOn});
}
