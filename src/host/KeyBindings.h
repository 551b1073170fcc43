// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenCommonExport.h"

#include <QKeySequence>
#include <QList>
#include <QString>

class QObject;

/// A command and its shortcuts. A command without a shortcut may hold one empty sequence in its place.
struct KeySequence
{
    /// Tells the command apart in its table.
    int identifier = 0;
    /// Factory shortcuts.
    QList<QKeySequence> defaultSequences;
    /// Shortcuts in force.
    QList<QKeySequence> currentSequences;
    /// Name in scripts and in the file of the user's bindings.
    QString name;
    /// What the user reads.
    QString displayText;
    /// The host's object behind the command, not owned; may be null.
    QObject* owner = nullptr;
    /// The user can neither see nor take over the binding.
    bool permanent = false;
};

/// The table of commands with their shortcuts.
///
/// The user's bindings live in a text file, one line a shortcut, "command = keys", with the keys in Qt's
/// portable form; "command =" leaves a command without any. Lines that begin with "#" are remarks.
class TORVALENCOMMON_EXPORT KeyBindings
{
public:
    /// Takes over the records of @p sequences, in their order and without null ones. Identifiers and names
    /// are unique; a name holds neither "=" nor a line break, doesn't begin with "#", and has no blank at its
    /// ends, or the command's shortcuts can't be kept.
    explicit KeyBindings(const QList<KeySequence*>& sequences);
    ~KeyBindings();

    KeyBindings(const KeyBindings&) = delete;
    KeyBindings& operator=(const KeyBindings&) = delete;

    /// The table, in order. The records stay the table's own.
    const QList<KeySequence*>& GetKeySequences();

    /// Takes the current shortcuts of each record of @p sequences into the record of the same identifier, in
    /// place; identifiers that the table doesn't know are left out, and so is what @p sequences doesn't name.
    /// The records of @p sequences stay the caller's.
    void UpdateUserSequences(const QList<KeySequence*>& sequences);

    /// Reads the user's file over the current shortcuts. A missing file changes nothing. If any line can't be
    /// read, the whole file is set aside as a backup, an error names the first such lines, and nothing
    /// changes. Lines of commands that the table doesn't know are kept for the next write. Returns whether
    /// the file was absent or wholly read.
    bool ReadUserKeyBindings();
    /// Writes the user's file, atomically: every command that is not permanent and whose shortcuts differ
    /// from the default ones. A name or a key that a line can't hold is reported as a warning and left out; a
    /// failure is logged as an error that names the file.
    void WriteUserKeyBindings();

    /// Path of the user's file; in the user's configuration directory unless SetUserKeyBindingsPath() said
    /// otherwise.
    QString UserKeyBindingsPath() const;
    /// Makes @p path the user's file; an empty path puts it back in the user's configuration directory.
    void SetUserKeyBindingsPath(const QString& path);

private:
    KeySequence* FindByName(const QString& name) const;

    QList<KeySequence*> mKeySequences;
    QStringList mUnknownLines;
    QString mPath;
};
