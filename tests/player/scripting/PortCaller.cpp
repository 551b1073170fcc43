// SPDX-License-Identifier: MIT
#include "scripting/PortCaller.h"

#include <QHostAddress>
#include <QtTest>

PortCaller::PortCaller(quint16 port)
{
    mSocket.connectToHost(QHostAddress::LocalHost, port);
    if (!QTest::qWaitFor([this] { return mSocket.state() == QAbstractSocket::ConnectedState; }, 5000))
        qWarning("the port does not answer");
}

void PortCaller::Send(const QByteArray& bytes)
{
    mSocket.write(bytes);
}

QByteArray PortCaller::Ask(const QByteArray& bytes, int milliseconds)
{
    Send(bytes);
    QByteArray answer;
    const auto hasAnswer = [&]
    {
        mReceived += mSocket.readAll();
        const int end = mReceived.indexOf('\n');
        const QList<QByteArray> head = mReceived.left(end).split(' ');
        if (end >= 0 && head.size() == 2 && mReceived.size() >= end + 1 + head.at(1).toInt())
        {
            answer = head.at(0) + ": " + mReceived.mid(end + 1, head.at(1).toInt());
            mReceived.remove(0, end + 1 + head.at(1).toInt());
            return true;
        }
        if (mSocket.state() == QAbstractSocket::UnconnectedState)
            answer = "closed";
        return !answer.isEmpty();
    };
    return QTest::qWaitFor(hasAnswer, milliseconds) ? answer : QByteArray("nothing");
}

QByteArray PortCaller::WaitForEnd(int milliseconds)
{
    const bool closed = QTest::qWaitFor(
        [&]
        {
            mReceived += mSocket.readAll();
            return mSocket.state() == QAbstractSocket::UnconnectedState;
        },
        milliseconds);
    return closed ? mReceived : QByteArray("open");
}

bool PortCaller::IsOpen()
{
    QTest::qWait(20);
    return mSocket.state() == QAbstractSocket::ConnectedState;
}
