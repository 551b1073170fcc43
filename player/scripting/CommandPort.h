// SPDX-License-Identifier: MIT
#pragma once

#include "scripting/CommandPortToken.h"
#include "scripting/ScriptResult.h"

#include <QObject>

#include <memory>
#include <vector>

class CommandPortCaller;
class QTcpServer;
class ScriptEngine;
class ScriptHost;

/// The command port: programs of the same user on the same machine run commands and scripts through it.
///
/// It listens on the loopback address alone. A caller sends the user's token first; until it has, it learns
/// nothing and changes nothing, gets a short line's worth of memory and a few seconds, and is closed without
/// a word for whatever else it sends. docs/scripting.md tells the protocol.
class CommandPort : public QObject
{
    Q_OBJECT

public:
    /// Callers that have shown the token, at most; more are refused.
    static constexpr int MaximumCallers = 8;
    /// Callers that have not, at most: the one that waits longest gives way to a new one.
    static constexpr int MaximumStrangers = 8;
    /// How long a caller may take to show the token, in milliseconds.
    static constexpr int TokenTimeout = 5000;
    /// The longest answer, in bytes; a longer one is cut off.
    static constexpr int LongestAnswer = 4 << 20;

    CommandPort(ScriptHost* host, ScriptEngine* engine, QObject* parent = nullptr);
    ~CommandPort() override;

    /// Listens on @p port (0 takes any that is free), with the token's file in @p folder. Returns whether it
    /// does; @p error says why not.
    bool Listen(quint16 port, const QString& folder, QString* error);
    /// The port that it listens on; 0 while it doesn't.
    quint16 Port() const;
    /// Callers that are connected, those without the token included.
    int CallerCount() const;

private Q_SLOTS:
    void OnNewConnection();
    void OnScriptFinished(int number, const ScriptResult& result);

private:
    friend class CommandPortCaller;

    void Forget(CommandPortCaller* caller);
    void MakeRoom();
    bool HasRoomForCaller() const;

    ScriptHost* mHost;
    ScriptEngine* mEngine;
    QTcpServer* mServer;
    CommandPortToken mToken;
    /// In the order of their coming; children of the port.
    std::vector<CommandPortCaller*> mCallers;
};
