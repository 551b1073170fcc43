// SPDX-License-Identifier: MIT
#include "host/Logger.h"

Logger::Logger() = default;

Logger::~Logger() = default;

Logger* Logger::GetInstance()
{
    static Logger instance;
    return &instance;
}

void Logger::Output(const QString& text)
{
    Q_EMIT OutputLogged(text);
}

void Logger::Info(const QString& text)
{
    Q_EMIT InfoLogged(text);
}

void Logger::Warning(const QString& text)
{
    Q_EMIT WarningLogged(text);
}

void Logger::Error(const QString& text)
{
    Q_EMIT ErrorLogged(text);
}

void Logger::Error(const char* text)
{
    Q_EMIT ErrorLogged(QString::fromUtf8(text));
}
