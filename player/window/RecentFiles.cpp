// SPDX-License-Identifier: MIT
#include "window/RecentFiles.h"

#include "window/PlayerState.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>

#include <algorithm>

RecentFiles::RecentFiles(const QString& key, const int* limit, QMenu* menu, QObject* parent)
    : QObject(parent), mKey(key), mLimit(limit), mMenu(menu)
{
    // Another player may have opened something meanwhile.
    connect(menu, &QMenu::aboutToShow, this, &RecentFiles::Update);
    Update();
}

QStringList RecentFiles::Paths() const
{
    return PlayerState::Value(mKey).toStringList().mid(0, std::max(*mLimit, 0));
}

void RecentFiles::Add(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList paths = PlayerState::Value(mKey).toStringList();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    PlayerState::SetValue(mKey, QStringList(paths.mid(0, std::max(*mLimit, 0))));
    Update();
}

void RecentFiles::Update()
{
    mMenu->clear();
    const QStringList paths = Paths();
    for (const QString& path : paths)
    {
        QString name = QFileInfo(path).fileName();
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* const action = mMenu->addAction(name);
        action->setStatusTip(path);
        action->setToolTip(path);
        connect(action, &QAction::triggered, this, [this, path] { Q_EMIT OpenRequested(path); });
    }
    mMenu->setToolTipsVisible(true);
    mMenu->menuAction()->setVisible(*mLimit > 0);
    mMenu->setEnabled(!paths.isEmpty());
}
