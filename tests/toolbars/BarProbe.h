// SPDX-License-Identifier: MIT
#pragma once

#include "kit/FlatButton.h"

#include <QImage>
#include <QSignalSpy>
#include <QStringList>
#include <QWidget>

#include <memory>
#include <vector>

/// A window for a bar, which counts the context menus that the bar leaves to it.
class BarHost : public QWidget
{
public:
    /// Shows @p bar at @p place of a window that takes it over.
    BarHost(QWidget* bar, const QRect& place);

    int contextMenus = 0;

protected:
    void contextMenuEvent(QContextMenuEvent*) override { ++contextMenus; }
};

/// Records every signal that the class of an object declares, each under its name.
class SignalLog
{
public:
    explicit SignalLog(QObject* object);

    /// The names of the signals since the last call, with their arguments: "VolumeChanged(75)".
    QStringList Take();

private:
    std::vector<std::pair<QString, std::unique_ptr<QSignalSpy>>> mSpies;
};

namespace BarProbe
{

/// The button of @p bar, or of a pop-up of it, called @p name.
FlatButton* Button(const QWidget* bar, const char* name);
/// Clicks the middle of @p widget with the mouse.
void Click(QWidget* widget, Qt::MouseButton button = Qt::LeftButton);
/// The icon ":/icons/@p name.png", mirrored if told, @p side pixels wide and high.
QImage Icon(const char* name, int side, bool isMirrored = false);
/// How the picture on @p button differs from @p expected; empty if it doesn't.
QByteArray PictureDiffers(const FlatButton* button, const QImage& expected);

} // namespace BarProbe
