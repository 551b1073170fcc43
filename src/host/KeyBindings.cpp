// SPDX-License-Identifier: MIT
#include "host/KeyBindings.h"

#include "host/Logger.h"
#include "host/UserFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QStringList>

#include <algorithm>

namespace
{

constexpr char KeyBindingsFileName[] = "keybindings.txt";

constexpr char KeyBindingsRemark[] =
    "# Key bindings: one line a shortcut, \"command = keys\"; \"command =\" has none.\n"
    "# Commands that are not listed keep their default shortcuts.\n";

/// The shortcuts of @p sequences without the placeholder of a command that has none.
QList<QKeySequence> RealSequences(const QList<QKeySequence>& sequences)
{
    QList<QKeySequence> real;
    std::copy_if(sequences.begin(), sequences.end(), std::back_inserter(real),
                 [](const QKeySequence& sequence) { return !sequence.isEmpty(); });
    return real;
}

/// Reads @p text in Qt's portable form. Returns whether it names keys.
bool ParseKeys(const QString& text, QKeySequence* keys)
{
    *keys = QKeySequence(text, QKeySequence::PortableText);
    if (keys->isEmpty())
        return false;
    for (int index = 0; index < keys->count(); ++index)
    {
        if (static_cast<uint>((*keys)[static_cast<uint>(index)]) == Qt::Key_unknown)
            return false;
    }
    return true;
}

} // namespace

KeyBindings::KeyBindings(const QList<KeySequence*>& sequences) : mKeySequences(sequences) {}

KeyBindings::~KeyBindings()
{
    qDeleteAll(mKeySequences);
}

const QList<KeySequence*>& KeyBindings::GetKeySequences()
{
    return mKeySequences;
}

KeySequence* KeyBindings::FindByName(const QString& name) const
{
    const auto found = std::find_if(mKeySequences.begin(), mKeySequences.end(),
                                    [&name](const KeySequence* sequence) { return sequence->name == name; });
    return found == mKeySequences.end() ? nullptr : *found;
}

void KeyBindings::UpdateUserSequences(const QList<KeySequence*>& sequences)
{
    QHash<int, const KeySequence*> byIdentifier;
    for (const KeySequence* sequence : sequences)
    {
        if (sequence)
            byIdentifier.insert(sequence->identifier, sequence);
    }
    for (KeySequence* sequence : qAsConst(mKeySequences))
    {
        if (const KeySequence* update = byIdentifier.value(sequence->identifier))
            sequence->currentSequences = update->currentSequences;
    }
}

bool KeyBindings::ReadUserKeyBindings()
{
    QFile file(UserKeyBindingsPath());
    if (!file.exists())
        return true;
    if (!file.open(QIODevice::ReadOnly))
    {
        Logger::GetInstance()->Error(QStringLiteral("The key bindings in %1 can't be read: %2")
                                         .arg(file.fileName(), file.errorString()));
        return false;
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    file.close();

    QHash<KeySequence*, QList<QKeySequence>> read;
    QStringList unknownLines;
    QStringList brokenLines;
    for (int index = 0; index < lines.size(); ++index)
    {
        const QString line = lines[index].trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        // The first "=" ends the name: the keys themselves may hold one.
        const int equals = line.indexOf(QLatin1Char('='));
        const QString name = line.left(equals).trimmed();
        const QString keysText = line.mid(equals + 1).trimmed();
        QKeySequence keys;
        if (equals < 1 || (!keysText.isEmpty() && !ParseKeys(keysText, &keys)))
        {
            brokenLines << QStringLiteral("line %1 (\"%2\")").arg(index + 1).arg(line.left(80));
            continue;
        }
        KeySequence* sequence = FindByName(name);
        if (!sequence)
            unknownLines << line;
        else if (!sequence->permanent)
            read[sequence] << (keysText.isEmpty() ? QKeySequence() : keys);
    }
    if (!brokenLines.isEmpty())
    {
        UserFile::SetAside(
            file.fileName(),
            QStringLiteral("there are no key bindings in %1").arg(brokenLines.join(QLatin1String(", "))));
        return false;
    }
    mUnknownLines = unknownLines;
    for (auto each = read.cbegin(); each != read.cend(); ++each)
    {
        const QList<QKeySequence> real = RealSequences(each.value());
        each.key()->currentSequences = real.isEmpty() ? QList<QKeySequence>{QKeySequence()} : real;
    }
    return true;
}

void KeyBindings::WriteUserKeyBindings()
{
    QString text = QString::fromLatin1(KeyBindingsRemark);
    for (const KeySequence* sequence : qAsConst(mKeySequences))
    {
        const QList<QKeySequence> current = RealSequences(sequence->currentSequences);
        if (sequence->permanent || current == RealSequences(sequence->defaultSequences))
            continue;
        for (const QKeySequence& keys : current)
            text +=
                QStringLiteral("%1 = %2\n").arg(sequence->name, keys.toString(QKeySequence::PortableText));
        if (current.isEmpty())
            text += QStringLiteral("%1 =\n").arg(sequence->name);
    }
    for (const QString& line : qAsConst(mUnknownLines))
        text += line + QLatin1Char('\n');

    const QString path = UserKeyBindingsPath();
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
        Logger::GetInstance()->Error(
            QStringLiteral("The key bindings could not be written to %1: %2").arg(path, file.errorString()));
}

QString KeyBindings::UserKeyBindingsPath() const
{
    return mPath.isEmpty() ? UserFile::DefaultPath(QLatin1String(KeyBindingsFileName)) : mPath;
}

void KeyBindings::SetUserKeyBindingsPath(const QString& path)
{
    mPath = path;
}
