// SPDX-License-Identifier: MIT
#include "views/FileManager.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStringList>
#include <QUrl>

namespace FileManager
{

void Show(const QString& path)
{
    if (path.isEmpty())
        return;
    const QFileInfo file(path);
    const bool isDirectory = file.isDir();
    QStringList arguments;
    if (!isDirectory)
        arguments << QStringLiteral("/select,");
    arguments << QDir::toNativeSeparators(path);
    // "explorer" is tried on every platform; where there is none, the start fails and the desktop opens it.
    if (QProcess::startDetached(QStringLiteral("explorer"), arguments))
        return;
    QDesktopServices::openUrl(QUrl::fromLocalFile(isDirectory ? path : file.path()));
}

} // namespace FileManager
