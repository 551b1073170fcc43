// SPDX-License-Identifier: MIT
#include "scripting/ScriptRun.h"

#include "host/Logger.h"
#include "scripting/ScriptEngine.h"

#include <QElapsedTimer>
#include <QtTest>

ScriptLog::ScriptLog()
{
    Logger* const logger = Logger::GetInstance();
    connect(logger, &Logger::OutputLogged, this, [this](const QString& text) { mOutput += text; });
    connect(logger, &Logger::InfoLogged, this, [this](const QString& text) { Add("info: ", text); });
    connect(logger, &Logger::WarningLogged, this, [this](const QString& text) { Add("warning: ", text); });
    connect(logger, &Logger::ErrorLogged, this, [this](const QString& text) { Add("error: ", text); });
}

namespace
{

QStringList OutputLines(QString output)
{
    if (output.endsWith(QLatin1Char('\n')))
        output.chop(1);
    else if (output.isEmpty())
        return {};
    QStringList lines = output.split(QLatin1Char('\n'));
    for (QString& line : lines)
        line.prepend(QLatin1String("out: "));
    return lines;
}

} // namespace

void ScriptLog::Add(const char* level, const QString& text)
{
    mMessages << OutputLines(mOutput);
    mOutput.clear();
    mMessages << QLatin1String(level) + text;
}

QStringList ScriptLog::Lines() const
{
    return mMessages + OutputLines(mOutput);
}

QStringList ScriptLog::Lines(const QString& level) const
{
    QStringList lines;
    for (const QString& line : Lines())
    {
        if (line.startsWith(level + QLatin1String(": ")))
            lines << line.mid(level.size() + 2);
    }
    return lines;
}

void ScriptLog::Clear()
{
    mMessages.clear();
    mOutput.clear();
}

ScriptResult ScriptRun::Run(ScriptEngine* engine, const QString& text, int milliseconds)
{
    return WaitFor(engine, engine->Run(text), milliseconds);
}

ScriptResult ScriptRun::WaitFor(ScriptEngine* engine, int number, int milliseconds)
{
    ScriptResult found;
    found.exitCode = -1;
    bool ended = false;
    const auto connection = QObject::connect(engine, &ScriptEngine::Finished, engine,
                                             [&](int which, const ScriptResult& result)
                                             {
                                                 if (which != number)
                                                     return;
                                                 ended = true;
                                                 found = result;
                                             });
    // Waited for by its events: a pause between looks would hide what they cost.
    QElapsedTimer clock;
    clock.start();
    while (!ended && clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
    QObject::disconnect(connection);
    return found;
}
