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

/// So many broken lines are named before the rest is only counted.
constexpr int MaximumNamedLines = 10;

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

/// Whether the file's lines can begin with @p name.
bool IsWritableName(const QString& name)
{
    return !name.isEmpty() && name.trimmed() == name && !name.startsWith(QLatin1Char('#')) &&
           !name.contains(QLatin1Char('=')) && !name.contains(QLatin1Char('\n'));
}

/// Whether @p keys can be told from its text: a key without a name of its own can't.
bool IsWritable(const QKeySequence& keys)
{
    QKeySequence read;
    return ParseKeys(keys.toString(QKeySequence::PortableText).trimmed(), &read) && read == keys;
}

} // namespace

KeyBindings::KeyBindings(const QList<KeySequence*>& sequences) : mKeySequences(sequences)
{
    mKeySequences.removeAll(nullptr);
}

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
        UserFile::SetAside(file.fileName(), file.errorString());
        return false;
    }
    const QByteArray content = file.readAll();
    // The size is told, since the text would else end at the first null byte.
    const QStringList lines = QString::fromUtf8(content.constData(), content.size()).split(QLatin1Char('\n'));
    file.close();

    QHash<KeySequence*, QList<QKeySequence>> read;
    QStringList unknownLines;
    QStringList brokenLines;
    int brokenCount = 0;
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
            if (++brokenCount <= MaximumNamedLines)
                brokenLines << QStringLiteral("line %1 (\"%2\")").arg(index + 1).arg(line.left(80));
            continue;
        }
        KeySequence* sequence = FindByName(name);
        if (!sequence)
            unknownLines << line;
        else if (!sequence->permanent)
            read[sequence] << (keysText.isEmpty() ? QKeySequence() : keys);
    }
    if (brokenCount > 0)
    {
        if (brokenCount > MaximumNamedLines)
            brokenLines << QStringLiteral("%1 more").arg(brokenCount - MaximumNamedLines);
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
    const QString path = UserKeyBindingsPath();
    QString text = QString::fromLatin1(KeyBindingsRemark);
    for (const KeySequence* sequence : qAsConst(mKeySequences))
    {
        const QList<QKeySequence> current = RealSequences(sequence->currentSequences);
        if (sequence->permanent || current == RealSequences(sequence->defaultSequences))
            continue;
        if (!IsWritableName(sequence->name))
        {
            Logger::GetInstance()->Warning(QStringLiteral("%1 can't hold the shortcuts of the command \"%2\"")
                                               .arg(path, sequence->name));
            continue;
        }
        for (const QKeySequence& keys : current)
        {
            const QString keysText = keys.toString(QKeySequence::PortableText);
            if (IsWritable(keys))
                text += QStringLiteral("%1 = %2\n").arg(sequence->name, keysText);
            else
                Logger::GetInstance()->Warning(QStringLiteral("%1 can't hold the shortcut \"%2\" of \"%3\"")
                                                   .arg(path, keysText, sequence->name));
        }
        if (current.isEmpty())
            text += QStringLiteral("%1 =\n").arg(sequence->name);
    }
    for (const QString& line : qAsConst(mUnknownLines))
        text += line + QLatin1Char('\n');

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
