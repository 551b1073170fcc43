// SPDX-License-Identifier: MIT
#include "dialogs/settings/AboutDialog.h"
#include "dialogs/settings/PreferencesDialog.h"
#include "dialogs/settings/ProjectSettingsDialog.h"
#include "host/KeyBindings.h"
#include "host/Settings.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>

#include <cstdio>

/// A host of the settings dialogs: a window with a menu of four commands whose keys the preferences change.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Settings::ReadUserConfig();

    QMainWindow window;
    auto* const notes = new QPlainTextEdit(&window);
    notes->setPlainText(QStringLiteral("The notes of the project."));
    window.setCentralWidget(notes);
    QMenu* const menu = window.menuBar()->addMenu(QStringLiteral("&Settings"));

    QList<KeySequence*> sequences;
    QList<QAction*> actions;
    const auto add = [&](const char* name, const char* text, const char* keys)
    {
        auto* const sequence = new KeySequence;
        sequence->identifier = sequences.size();
        sequence->defaultSequences = {QKeySequence(QLatin1String(keys))};
        sequence->currentSequences = sequence->defaultSequences;
        sequence->name = QLatin1String(name);
        sequence->displayText = QLatin1String(text);
        sequences << sequence;
        actions << menu->addAction(QLatin1String(text));
        return actions.last();
    };
    QAction* const preferences = add("preferences", "Preferences", "Ctrl+,");
    QAction* const project = add("project", "Project Settings", "Ctrl+P");
    QAction* const about = add("about", "About", "F1");
    QAction* const quit = add("quit", "Quit", "Ctrl+Q");
    KeyBindings bindings(sequences);
    const auto applyKeys = [&]
    {
        for (const KeySequence* sequence : bindings.GetKeySequences())
            actions[sequence->identifier]->setShortcuts(sequence->currentSequences);
    };
    bindings.ReadUserKeyBindings();
    applyKeys();

    QObject::connect(preferences, &QAction::triggered, &window,
                     [&]
                     {
                         PreferencesDialog dialog(QDir::homePath(), &bindings, &window);
                         // Ghosting is written at once: a host with viewers hands its ghosts in anew here.
                         QObject::connect(&dialog, &PreferencesDialog::GhostingChanged,
                                          [] { std::puts("ghosting changed"); });
                         if (dialog.exec() != QDialog::Accepted)
                             return;
                         dialog.Apply();
                         applyKeys();
                     });
    QObject::connect(project, &QAction::triggered, &window,
                     [&]
                     {
                         ProjectSettingsDialog dialog(QDir::homePath(), QStringLiteral("Projects (*.json)"),
                                                      QDir::currentPath(), &window);
                         dialog.SetSourceRootDir(QLatin1String(Settings::PROJECT_DIRECTORY_VAR));
                         dialog.SetFrameRate(Settings::globalImageSequenceFrameRate);
                         dialog.SetNotes(notes->toPlainText());
                         if (dialog.exec() == QDialog::Accepted)
                             notes->setPlainText(dialog.GetNotes());
                     });
    QObject::connect(about, &QAction::triggered, &window, [&] { AboutDialog(&window).exec(); });
    QObject::connect(quit, &QAction::triggered, &window, &QMainWindow::close);
    window.show();
    return QApplication::exec();
}
