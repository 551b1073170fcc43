// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QObject>
#include <QString>
#include <QVector>

/// Keeps what is logged as long as it lives, for windows that are made meanwhile: what went wrong before
/// there was a window, such as a broken file of settings, is told to the user all the same.
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

    /// What the outermost of these objects has heard, in order; empty if there is none.
    static QVector<Message> Messages();

private:
    void Hear(Kind kind, const QString& text);

    mutable QMutex mMutex;
    QVector<Message> mMessages;
    static EarlyLog* sOutermost;
};
