// SPDX-License-Identifier: MIT
#pragma once

#include "host/KeyBindings.h"

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QMenu;
class QWidget;

/// A command of the player.
struct Command
{
    /// Name in scripts and in the file of key bindings, e.g. "playback.toggle".
    QString name;
    /// What the user reads in the menu.
    QString text;
    /// Menu that it stands in; empty for none. "|" before the text stands for a separator above it.
    QString menu;
    QList<QKeySequence> defaultKeys;
    std::function<void()> run;
    /// Whether the command is on; without it the command is no switch.
    std::function<bool()> isOn;
};

/// The one table of commands: menus, keys and scripts all reach the same entry.
class CommandTable : public QObject
{
    Q_OBJECT

public:
    /// Makes an action of each of @p commands on @p window, with the user's keys.
    CommandTable(std::vector<Command> commands, QWidget* window);
    ~CommandTable() override;

    /// Runs the command called @p name. Returns whether there is one.
    bool Run(const QString& name);
    /// The action of the command called @p name; null if there is none.
    QAction* Action(const QString& name) const;
    /// Puts the commands of @p menuName into @p menu, in the order of the table.
    void FillMenu(const QString& menuName, QMenu* menu) const;
    /// The table of keys; ApplyKeys() brings a change of it into force.
    KeyBindings* Keys() const;
    void ApplyKeys();

public Q_SLOTS:
    /// Brings the check marks in line with what the commands say.
    void UpdateSwitches();

Q_SIGNALS:
    /// A command has run.
    void CommandRun();
    /// The commands' keys may be others than before.
    void KeysChanged();

private:
    std::vector<Command> mCommands;
    QHash<QString, QAction*> mActions;
    std::unique_ptr<KeyBindings> mKeys;
};
