// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

class QLabel;

/// A strip that tells the user what went wrong without stopping the work: the newest message, and how many
/// there were before it. Hidden while there is none.
class MessageBar : public QFrame
{
    Q_OBJECT

public:
    explicit MessageBar(QWidget* parent = nullptr);

    /// The text shown; empty if there is none.
    QString Message() const;

public Q_SLOTS:
    /// Shows @p text; the same text again changes nothing.
    void ShowMessage(const QString& text);
    /// Forgets every message.
    void Clear();

private:
    QLabel* mLabel;
    QString mMessage;
    int mCount = 0;
};
