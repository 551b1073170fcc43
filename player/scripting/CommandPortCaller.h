// SPDX-License-Identifier: MIT
#pragma once

#include "scripting/CommandPortReader.h"
#include "scripting/ScriptResult.h"

#include <QObject>
#include <QTimer>

#include <deque>

class CommandPort;
class QTcpSocket;

/// One caller of the command port. It answers one request after the other, and reads no further while an
/// answer is being made or waits to be taken.
class CommandPortCaller : public QObject
{
    Q_OBJECT

public:
    /// Takes @p socket over; @p port is the parent and outlives it.
    CommandPortCaller(CommandPort* port, QTcpSocket* socket);

    bool HasToken() const { return mHasToken; }
    /// The number of the script whose end is to be answered; 0 for none.
    int Script() const { return mScript; }
    void AnswerScript(const ScriptResult& result);
    /// Closes the connection without a word.
    void Drop();

private Q_SLOTS:
    void Read();
    void OnDisconnected();

private:
    void Handle(const CommandPortReader::Request& request);
    void CheckToken(const QByteArray& token);
    void Answer(bool good, QByteArray text);
    bool IsWaiting() const;

    CommandPort* mPort;
    QTcpSocket* mSocket;
    CommandPortReader mReader;
    std::deque<CommandPortReader::Request> mRequests;
    QTimer mTimer;
    bool mHasToken = false;
    bool mHandling = false;
    bool mDropped = false;
    int mScript = 0;
};
