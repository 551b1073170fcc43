// SPDX-License-Identifier: MIT
#include "project/MediaPaths.h"

#include "host/Settings.h"
#include "media/MediaReader.h"
#include "media/SequenceFiles.h"
#include "project/NaturalOrder.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace MediaPaths
{

namespace
{

/// More than any tree of media has; links among mounts could go round without end.
constexpr int MaximumDepth = 64;

QString PlainPath(const QString& path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

void LookThrough(const QString& path, const QStringList& folders, const std::atomic<bool>& cancelled,
                 std::vector<Found>& found)
{
    if (cancelled || folders.size() > MaximumDepth)
        return;
    const QDir folder(path);
    QStringList files = folder.entryList(MediaNamePatterns(), QDir::Files | QDir::Readable, QDir::NoSort);
    std::sort(files.begin(), files.end(), IsBeforeNaturally);
    QSet<QString> keys;
    for (const QString& name : files)
    {
        const QString file = folder.filePath(name);
        const QString key = Key(file);
        if (keys.contains(key))
            continue;
        keys.insert(key);
        found.push_back({file, folders});
    }
    QStringList subfolders =
        folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::NoSort);
    std::sort(subfolders.begin(), subfolders.end(), IsBeforeNaturally);
    for (const QString& name : subfolders)
        LookThrough(folder.filePath(name), folders + QStringList(name), cancelled, found);
}

} // namespace

QString Key(const QString& path)
{
    const QString plain = PlainPath(path);
    if (!IsPictureFileName(plain))
        return plain;
    // As the files of a sequence are named; a longer number names a file of its own.
    static const QRegularExpression number(QStringLiteral("(?<![0-9])[0-9]{1,9}(?=\\.[^./]*$)"));
    const QRegularExpressionMatch match = number.match(plain);
    return match.hasMatch()
               ? plain.left(match.capturedStart()) + QLatin1Char('\n') + plain.mid(match.capturedEnd())
               : plain;
}

bool Exists(const QString& path)
{
    return QFileInfo::exists(path) || (IsPictureFileName(path) && SequenceFiles::Of(path).IsSequence());
}

QString SourceRoot(const QString& root, const QString& projectFolder)
{
    const QString variable = QString::fromLatin1(Settings::PROJECT_DIRECTORY_VAR);
    QString filled = root.trimmed().isEmpty() ? variable : root.trimmed();
    if (filled.contains(variable))
    {
        if (projectFolder.isEmpty())
            return {};
        filled.replace(variable, projectFolder);
    }
    // A root that is relative itself can only be meant from the project.
    if (QDir::isRelativePath(filled))
    {
        if (projectFolder.isEmpty())
            return {};
        filled = projectFolder + QLatin1Char('/') + filled;
    }
    return QDir::cleanPath(filled);
}

QString Relative(const QString& path, const QString& root)
{
    if (root.isEmpty() || path.isEmpty())
        return {};
    const QString plain = PlainPath(path);
    const QString prefix = root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/');
    return plain.startsWith(prefix) ? plain.mid(prefix.size()) : QString();
}

std::vector<Found> InFolder(const QString& folder, const std::atomic<bool>& cancelled)
{
    std::vector<Found> found;
    LookThrough(PlainPath(folder), {QFileInfo(PlainPath(folder)).fileName()}, cancelled, found);
    return found;
}

} // namespace MediaPaths
