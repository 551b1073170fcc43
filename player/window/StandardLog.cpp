// SPDX-License-Identifier: MIT
#include "window/StandardLog.h"

#include "host/Logger.h"

#include <cstdio>

namespace
{

void WriteText(FILE* stream, const QByteArray& text)
{
    // One call for the whole text: the stream's lock keeps it in one piece.
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stream);
    std::fflush(stream);
}

void WriteLine(FILE* stream, const char* prefix, const QString& text)
{
    WriteText(stream, prefix + text.toUtf8() + (text.endsWith(QLatin1Char('\n')) ? "" : "\n"));
}

} // namespace

StandardLog::StandardLog()
{
    // Directly, so that a line is out before whatever comes next, a crash included.
    Logger* const logger = Logger::GetInstance();
    const auto direct = Qt::DirectConnection;
    connect(
        logger, &Logger::OutputLogged, this, [](const QString& text) { WriteText(stdout, text.toUtf8()); },
        direct);
    connect(
        logger, &Logger::InfoLogged, this, [](const QString& text) { WriteLine(stderr, "", text); }, direct);
    connect(
        logger, &Logger::WarningLogged, this,
        [](const QString& text) { WriteLine(stderr, "[WARNING] ", text); }, direct);
    connect(
        logger, &Logger::ErrorLogged, this, [](const QString& text) { WriteLine(stderr, "[ERROR] ", text); },
        direct);
}
