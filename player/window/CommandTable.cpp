// SPDX-License-Identifier: MIT
#include "window/CommandTable.h"

#include <QAction>
#include <QMenu>
#include <QWidget>

namespace
{

constexpr QLatin1Char SeparatorMark('|');

QString CommandText(const Command& command)
{
    return command.text.startsWith(SeparatorMark) ? command.text.mid(1) : command.text;
}

} // namespace

CommandTable::CommandTable(std::vector<Command> commands, QWidget* window)
    : QObject(window), mCommands(std::move(commands))
{
    QList<KeySequence*> sequences;
    for (const Command& command : mCommands)
    {
        auto* const action = new QAction(CommandText(command), window);
        action->setObjectName(command.name);
        action->setCheckable(static_cast<bool>(command.isOn));
        // Menus would otherwise take a command's text for its role on some platforms.
        action->setMenuRole(QAction::NoRole);
        connect(action, &QAction::triggered, this,
                [this, run = command.run]
                {
                    run();
                    UpdateSwitches();
                    Q_EMIT CommandRun();
                });
        window->addAction(action);
        mActions.insert(command.name, action);
        QString displayText = CommandText(command);
        displayText.remove(QLatin1Char('&'));
        sequences << new KeySequence{sequences.size(),
                                     command.defaultKeys,
                                     command.defaultKeys,
                                     command.name,
                                     displayText,
                                     nullptr,
                                     false};
    }
    mKeys = std::make_unique<KeyBindings>(sequences);
    mKeys->ReadUserKeyBindings();
    ApplyKeys();
    UpdateSwitches();
}

CommandTable::~CommandTable() = default;

bool CommandTable::Run(const QString& name)
{
    QAction* const action = Action(name);
    if (action)
        action->trigger();
    return action != nullptr;
}

QAction* CommandTable::Action(const QString& name) const
{
    return mActions.value(name);
}

void CommandTable::FillMenu(const QString& menuName, QMenu* menu) const
{
    for (const Command& command : mCommands)
    {
        if (command.menu != menuName)
            continue;
        if (command.text.startsWith(SeparatorMark))
            menu->addSeparator();
        menu->addAction(Action(command.name));
    }
}

KeyBindings* CommandTable::Keys() const
{
    return mKeys.get();
}

void CommandTable::ApplyKeys()
{
    for (const KeySequence* sequence : mKeys->GetKeySequences())
        Action(sequence->name)->setShortcuts(sequence->currentSequences);
    Q_EMIT KeysChanged();
}

void CommandTable::UpdateSwitches()
{
    for (const Command& command : mCommands)
    {
        if (command.isOn)
            Action(command.name)->setChecked(command.isOn());
    }
}
