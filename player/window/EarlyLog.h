// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QObject>
#include <QString>
#include <QVector>

/// Keeps what is logged until it is stopped or goes, for windows that are made meanwhile: what went wrong
/// before there was a window, such as a broken file of settings, is told to the user all the same.
class EarlyLog : public QObject
{
    Q_OBJECT

public:
    enum class Kind
    {
        Output,
        Info,
        Warning,
        Error
    };

    struct Message
    {
        Kind kind;
        QString text;
    };

    EarlyLog();
    ~EarlyLog() override;

    /// Keeps nothing of what is logged from now on. It may go only when no other thread logs any more.
    void Stop();

    /// What the outermost of these objects has heard, in order; empty if there is none.
    static QVector<Message> Messages();

private:
    void Hear(Kind kind, const QString& text);

    QMutex mMutex;
    bool mIsStopped = false;
    QVector<Message> mMessages;
    static EarlyLog* sOutermost;
};
