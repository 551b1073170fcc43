// SPDX-License-Identifier: MIT
#include "SourceTree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

namespace
{

/// Folder of @p path below src, empty for src itself.
QString FolderOf(const QString& path)
{
    return path.section(QLatin1Char('/'), 1, -2);
}

/// The file of @p tree that @p source means by @p name: beside it, or below the include root of its product.
/// Empty for one that is not in the tree, such as a generated one.
QString Resolved(const SourceTree& tree, const QString& source, const QString& name)
{
    const QString beside = QDir::cleanPath(source.section(QLatin1Char('/'), 0, -2) + QLatin1Char('/') + name);
    for (const QString& candidate :
         {beside, QStringLiteral("src/") + name, QStringLiteral("player/") + name, name})
    {
        if (tree.contains(candidate))
            return candidate;
    }
    return {};
}

bool IsGenerated(const QString& name)
{
    return name.startsWith(QLatin1String("ui_")) || name.endsWith(QLatin1String(".moc"));
}

/// Why a source in @p folder of src may not include @p target, empty if it may.
QString WrongArrow(const QString& folder, const QString& target)
{
    if (!target.startsWith(QLatin1String("src/")))
        return QStringLiteral("it lies outside the library");
    const QString targetFolder = FolderOf(target);
    if (targetFolder == folder || targetFolder.isEmpty())
        return {};
    const QString host = QStringLiteral("host");
    const QString kit = QStringLiteral("kit");
    if (folder == host)
        return QStringLiteral("host includes no other folder");
    if (folder == kit)
        return targetFolder == host ? QString() : QStringLiteral("kit includes host alone");
    if (targetFolder == host || targetFolder == kit)
        return {};
    return QStringLiteral("%1 and %2 stand beside each other").arg(folder, targetFolder);
}

/// Why a source of the library may not include <@p name>, empty if it may.
QString WrongSystemHeader(const QString& name)
{
    static const QRegularExpression qt(QStringLiteral("^(Q[A-Za-z0-9_]*|Qt[A-Z][a-z]+/Q[A-Za-z0-9_]+)$"));
    static const QRegularExpression standard(QStringLiteral("^[a-z_]+$"));
    static const QRegularExpression otherModule(
        QStringLiteral("^Qt(?!(Core|Gui|Widgets)(/|$)|(Global|Math|Endian|Debug)$)[A-Z]"));
    if (otherModule.match(name).hasMatch())
        return QStringLiteral("it is of another Qt module");
    if (qt.match(name).hasMatch() || standard.match(name).hasMatch())
        return {};
    return QStringLiteral("it is neither Qt's nor the standard library's");
}

} // namespace

QString RepositoryRoot()
{
    return QStringLiteral(TORVALEN_SOURCE_DIR);
}

SourceTree ReadSources(const QString& folder)
{
    SourceTree tree;
    const QDir root(RepositoryRoot());
    QDirIterator files(root.filePath(folder), {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
    {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly))
            tree[root.relativeFilePath(file.fileName())] = file.readAll();
    }
    return tree;
}

QStringList WrongIncludes(const SourceTree& tree)
{
    static const QRegularExpression include(
        QStringLiteral("^[ \\t]*#[ \\t]*include[ \\t]*([<\"])([^>\"]+)[>\"]"),
        QRegularExpression::MultilineOption);
    QStringList wrong;
    for (auto source = tree.cbegin(); source != tree.cend(); ++source)
    {
        if (!source.key().startsWith(QLatin1String("src/")))
            continue;
        QRegularExpressionMatchIterator includes = include.globalMatch(QString::fromUtf8(source.value()));
        while (includes.hasNext())
        {
            const QRegularExpressionMatch match = includes.next();
            const QString name = match.captured(2);
            QString reason;
            if (match.captured(1) == QLatin1String("<"))
                reason = WrongSystemHeader(name);
            else if (const QString target = Resolved(tree, source.key(), name); !target.isEmpty())
                reason = WrongArrow(FolderOf(source.key()), target);
            else if (!IsGenerated(name))
                reason = QStringLiteral("it is no file of the library");
            if (!reason.isEmpty())
                wrong << QStringLiteral("%1 includes %2: %3").arg(source.key(), name, reason);
        }
    }
    return wrong;
}
