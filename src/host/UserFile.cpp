// SPDX-License-Identifier: MIT
#include "host/UserFile.h"

#include "host/Logger.h"
#include "host/Settings.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace UserFile
{

QString DefaultPath(const QString& fileName)
{
    return QStringLiteral("%1/%2/%3")
        .arg(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
             QString::fromLatin1(Settings::APPLICATION_TITLE), fileName);
}

QString SetAside(const QString& path, const QString& reason)
{
    QString backup = path + QLatin1String(".bak");
    for (int number = 2; QFile::exists(backup); ++number)
        backup = QStringLiteral("%1.bak%2").arg(path).arg(number);
    if (!QFileInfo(path).isDir() && (QFile::rename(path, backup) || QFile::copy(path, backup)))
    {
        Logger::GetInstance()->Error(
            QStringLiteral("%1 is left out: %2. It is kept as %3.").arg(path, reason, backup));
        return backup;
    }
    Logger::GetInstance()->Error(
        QStringLiteral("%1 is left out: %2. No backup of it could be made.").arg(path, reason));
    return {};
}

} // namespace UserFile
