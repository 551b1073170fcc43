// SPDX-License-Identifier: MIT
#include "window/EarlyLog.h"

#include "host/Logger.h"

#include <QMutexLocker>

EarlyLog* EarlyLog::sOutermost = nullptr;

EarlyLog::EarlyLog()
{
    if (sOutermost)
        return;
    sOutermost = this;
    const Logger* const logger = Logger::GetInstance();
    const struct
    {
        void (Logger::*signal)(const QString&);
        Kind kind;
    } rows[] = {{&Logger::OutputLogged, Kind::Output},
                {&Logger::InfoLogged, Kind::Info},
                {&Logger::WarningLogged, Kind::Warning},
                {&Logger::ErrorLogged, Kind::Error}};
    // Directly: no event runs before there is a window.
    for (const auto& row : rows)
        connect(
            logger, row.signal, this, [this, kind = row.kind](const QString& text) { Hear(kind, text); },
            Qt::DirectConnection);
}

EarlyLog::~EarlyLog()
{
    if (sOutermost == this)
        sOutermost = nullptr;
}

void EarlyLog::Hear(Kind kind, const QString& text)
{
    const QMutexLocker lock(&mMutex);
    if (!mIsStopped)
        mMessages << Message{kind, text};
}

void EarlyLog::Stop()
{
    const QMutexLocker lock(&mMutex);
    mIsStopped = true;
}

QVector<EarlyLog::Message> EarlyLog::Messages()
{
    if (!sOutermost)
        return {};
    const QMutexLocker lock(&sOutermost->mMutex);
    return sOutermost->mMessages;
}
