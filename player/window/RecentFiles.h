// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class QMenu;

/// The files that the user opened of late, newest first, kept from one start to the next, and their menu.
class RecentFiles : public QObject
{
    Q_OBJECT

public:
    /// The list is kept in the player's state as @p key. It is as long as the setting @p limit says, which is
    /// read anew at each use; at 0 nothing is shown and nothing kept. @p menu shows it and is owned by the
    /// caller.
    RecentFiles(const QString& key, const int* limit, QMenu* menu, QObject* parent);

    QStringList Paths() const;
    /// Puts @p path at the head.
    void Add(const QString& path);

public Q_SLOTS:
    /// Brings the menu in line with the list and its limit.
    void Update();

Q_SIGNALS:
    /// The user picked @p path.
    void OpenRequested(const QString& path);

private:
    QString mKey;
    const int* mLimit;
    QMenu* mMenu;
};
