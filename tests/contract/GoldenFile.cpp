// SPDX-License-Identifier: MIT
#include "GoldenFile.h"

#include "SourceTree.h"

#include <QDir>
#include <QFile>

QString GoldenFolder()
{
    return RepositoryRoot() + QStringLiteral("/tests/contract/golden");
}

bool IsUpdatingGoldenFiles()
{
    return !qEnvironmentVariableIsEmpty("TORVALEN_UPDATE_GOLDEN");
}

QString GoldenDifference(const QString& name, const QString& text)
{
    QFile file(GoldenFolder() + QLatin1Char('/') + name);
    if (IsUpdatingGoldenFiles())
    {
        QDir().mkpath(GoldenFolder());
        const QByteArray bytes = text.toUtf8();
        if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size())
            return {};
        return QStringLiteral("%1 can't be written").arg(file.fileName());
    }
    const QString remedy = QStringLiteral(
        "\nIf the interface is meant to change, run tests/contract/update-golden and commit the "
        "difference.");
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("there is no golden file %1.%2").arg(file.fileName(), remedy);
    const QStringList expected = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    const QStringList actual = text.split(QLatin1Char('\n'));
    for (int line = 0; line < qMax(expected.size(), actual.size()); ++line)
    {
        if (actual.value(line) != expected.value(line) || line >= actual.size() || line >= expected.size())
            return QStringLiteral("%1, line %2: is \"%3\", was \"%4\".%5")
                .arg(name)
                .arg(line + 1)
                .arg(actual.value(line, QStringLiteral("(nothing)")),
                     expected.value(line, QStringLiteral("(nothing)")), remedy);
    }
    return {};
}
