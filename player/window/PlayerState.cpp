// SPDX-License-Identifier: MIT
#include "window/PlayerState.h"

#include "host/Logger.h"
#include "host/Settings.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSettings>

namespace PlayerState
{

QString Path()
{
    return QFileInfo(Settings::UserConfigPath()).absolutePath() + QStringLiteral("/player.ini");
}

QVariant Value(const QString& key, const QVariant& fallback)
{
    return QSettings(Path(), QSettings::IniFormat).value(key, fallback);
}

void SetValue(const QString& key, const QVariant& value)
{
    QSettings file(Path(), QSettings::IniFormat);
    if (file.value(key) == value)
        return;
    file.setValue(key, value);
    file.sync();
    static QString reportedPath;
    if (file.status() != QSettings::AccessError || reportedPath == Path())
        return;
    reportedPath = Path();
    Logger::GetInstance()->Warning(
        QCoreApplication::translate("PlayerState",
                                    "%1 can't be written; the window's panels won't be kept as they are")
            .arg(reportedPath));
}

} // namespace PlayerState
