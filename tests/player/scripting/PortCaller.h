// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QTcpSocket>

class CommandPort;

/// A program at the other end of a command port.
class PortCaller
{
public:
    /// Connects to @p port.
    explicit PortCaller(quint16 port);

    void Send(const QByteArray& bytes);
    /// Sends @p bytes and gives the answer that comes, as "ok: text" or "error: text"; "closed" if the
    /// connection is closed without one, "nothing" if none comes in time.
    QByteArray Ask(const QByteArray& bytes, int milliseconds = 10000);
    /// Waits until the connection is closed, and gives what came before; "open" if it stays open.
    QByteArray WaitForEnd(int milliseconds = 10000);
    bool IsOpen();

private:
    QTcpSocket mSocket;
    QByteArray mReceived;
};
