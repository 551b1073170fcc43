// SPDX-License-Identifier: MIT
#include "scripting/CommandPortCaller.h"

#include "scripting/CommandPort.h"
#include "scripting/ScriptEngine.h"
#include "scripting/ScriptHost.h"
#include "window/CommandTable.h"

#include <QPointer>
#include <QTcpSocket>

namespace
{

/// What the system may hold for a caller beyond what the reader does, in bytes.
constexpr qint64 SocketBuffer = 1 << 16;
constexpr qint64 BytesOfATurn = 1 << 14;

QByteArray CommandLines(ScriptHost* host)
{
    QByteArray lines;
    for (const KeySequence* sequence : host->Commands()->Keys()->GetKeySequences())
        lines += sequence->name.toUtf8() + '\t' + sequence->displayText.toUtf8() + '\n';
    return lines;
}

} // namespace

CommandPortCaller::CommandPortCaller(CommandPort* port, QTcpSocket* socket)
    : QObject(port), mPort(port), mSocket(socket)
{
    socket->setParent(this);
    socket->setReadBufferSize(SocketBuffer);
    connect(socket, SIGNAL(readyRead()), this, SLOT(Read()));
    // An answer that was taken makes room for the next request.
    connect(socket, SIGNAL(bytesWritten(qint64)), this, SLOT(Read()), Qt::QueuedConnection);
    connect(socket, SIGNAL(disconnected()), this, SLOT(OnDisconnected()));
    mTimer.setSingleShot(true);
    connect(&mTimer, &QTimer::timeout, this, &CommandPortCaller::Drop);
    mTimer.start(CommandPort::TokenTimeout);
}

bool CommandPortCaller::IsWaiting() const
{
    return mHandling || mScript != 0 || mSocket->bytesToWrite() > 0;
}

void CommandPortCaller::Read()
{
    while (!mDropped && !IsWaiting())
    {
        if (!mRequests.empty())
        {
            const CommandPortReader::Request request = std::move(mRequests.front());
            mRequests.pop_front();
            // A command may run an event loop of its own, in which more comes in or the caller goes.
            const QPointer<CommandPortCaller> self(this);
            mHandling = true;
            Handle(request);
            if (!self)
                return;
            mHandling = false;
            continue;
        }
        if (!mReader.Problem().isEmpty())
        {
            if (mHasToken)
                Answer(false, mReader.Problem());
            Drop();
            return;
        }
        const QByteArray bytes = mSocket->read(BytesOfATurn);
        if (bytes.isEmpty())
            return;
        mReader.Feed(bytes, &mRequests);
    }
}

void CommandPortCaller::Handle(const CommandPortReader::Request& request)
{
    using Kind = CommandPortReader::Kind;
    if (request.kind != Kind::Token && !mHasToken)
        return Drop();
    switch (request.kind)
    {
    case Kind::Token:
        return CheckToken(request.argument);
    case Kind::List:
        return Answer(true, CommandLines(mPort->mHost));
    case Kind::Run:
    {
        const QPointer<CommandPortCaller> self(this);
        const bool ran = mPort->mHost->Commands()->Run(QString::fromUtf8(request.argument));
        if (!self || mDropped)
            return;
        return Answer(ran, ran ? QByteArray() : "there is no command \"" + request.argument + '"');
    }
    case Kind::Stop:
        mPort->mEngine->Stop();
        return Answer(true, {});
    case Kind::Eval:
    case Kind::Script:
        mScript = mPort->mEngine->Run(QString::fromUtf8(request.argument), QStringLiteral("<port>"), true);
        return;
    }
}

void CommandPortCaller::CheckToken(const QByteArray& token)
{
    if (!mPort->mToken.Matches(token))
        return Drop();
    const bool hasRoom = mPort->HasRoomForCaller();
    mHasToken = true;
    mTimer.stop();
    Answer(hasRoom, hasRoom ? QByteArray() : "there are too many callers");
    if (!hasRoom)
        Drop();
}

void CommandPortCaller::AnswerScript(const ScriptResult& result)
{
    mScript = 0;
    QString text = result.output;
    if (!text.isEmpty() && !text.endsWith(QLatin1Char('\n')))
        text += QLatin1Char('\n');
    text += result.error.isEmpty() ? result.value : result.error;
    Answer(result.outcome == ScriptResult::Outcome::Finished, text.toUtf8());
    QMetaObject::invokeMethod(this, "Read", Qt::QueuedConnection);
}

void CommandPortCaller::Answer(bool good, QByteArray text)
{
    text.truncate(CommandPort::LongestAnswer);
    mSocket->write((good ? "ok " : "error ") + QByteArray::number(text.size()) + '\n' + text);
}

void CommandPortCaller::Drop()
{
    if (mDropped)
        return;
    mDropped = true;
    mTimer.stop();
    if (!mHasToken)
        mSocket->abort();
    else
        mSocket->disconnectFromHost();
    // disconnected() has come already, unless the rest of an answer is still on its way.
    if (mSocket->state() == QAbstractSocket::UnconnectedState)
        OnDisconnected();
}

void CommandPortCaller::OnDisconnected()
{
    mDropped = true;
    mPort->Forget(this);
    deleteLater();
}
