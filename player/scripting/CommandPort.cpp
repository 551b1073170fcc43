// SPDX-License-Identifier: MIT
#include "scripting/CommandPort.h"

#include "scripting/CommandPortCaller.h"
#include "scripting/ScriptEngine.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>

CommandPort::CommandPort(ScriptHost* host, ScriptEngine* engine, QObject* parent)
    : QObject(parent), mHost(host), mEngine(engine), mServer(new QTcpServer(this))
{
    connect(mServer, SIGNAL(newConnection()), this, SLOT(OnNewConnection()));
    connect(engine, SIGNAL(Finished(int, const ScriptResult&)), this,
            SLOT(OnScriptFinished(int, const ScriptResult&)));
}

CommandPort::~CommandPort()
{
    mServer->close();
    for (CommandPortCaller* const caller : std::vector<CommandPortCaller*>(mCallers))
        caller->Drop();
}

bool CommandPort::Listen(quint16 port, const QString& folder, QString* error)
{
    if (!mServer->listen(QHostAddress::LocalHost, port))
    {
        *error = tr("The command port %1 can't be opened: %2").arg(port).arg(mServer->errorString());
        return false;
    }
    // Only now: the token of another player that has the port stays.
    if (mToken.Create(folder, mServer->serverPort(), error))
        return true;
    mServer->close();
    *error = tr("The command port %1 can't be opened: %2").arg(port).arg(*error);
    return false;
}

quint16 CommandPort::Port() const
{
    return mServer->serverPort();
}

int CommandPort::CallerCount() const
{
    return static_cast<int>(mCallers.size());
}

void CommandPort::OnNewConnection()
{
    while (QTcpSocket* const socket = mServer->nextPendingConnection())
    {
        MakeRoom();
        mCallers.push_back(new CommandPortCaller(this, socket));
    }
}

void CommandPort::MakeRoom()
{
    const auto isStranger = [](const CommandPortCaller* caller) { return !caller->HasToken(); };
    while (std::count_if(mCallers.begin(), mCallers.end(), isStranger) >= MaximumStrangers)
        (*std::find_if(mCallers.begin(), mCallers.end(), isStranger))->Drop();
}

bool CommandPort::HasRoomForCaller() const
{
    return std::count_if(mCallers.begin(), mCallers.end(),
                         [](const CommandPortCaller* caller) { return caller->HasToken(); }) < MaximumCallers;
}

void CommandPort::OnScriptFinished(int number, const ScriptResult& result)
{
    for (CommandPortCaller* const caller : std::vector<CommandPortCaller*>(mCallers))
    {
        if (caller->Script() == number)
            caller->AnswerScript(result);
    }
}

void CommandPort::Forget(CommandPortCaller* caller)
{
    mCallers.erase(std::remove(mCallers.begin(), mCallers.end(), caller), mCallers.end());
}
