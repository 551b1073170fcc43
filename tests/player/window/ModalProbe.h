// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QDialog>
#include <QTimer>

#include <functional>

/// What tests do with the dialogs that a call opens.
namespace ModalProbe
{

/// Runs @p call, and @p act with each modal dialog that it opens, once, by @p act's own type; a dialog that
/// @p act leaves open is rejected. Returns how many there were.
template<typename Dialog>
int WithDialog(const std::function<void()>& call, const std::function<void(Dialog*)>& act)
{
    int count = 0;
    QWidget* last = nullptr;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout,
                     [&]
                     {
                         QWidget* const modal = QApplication::activeModalWidget();
                         if (!modal || modal == last)
                             return;
                         last = modal;
                         if (auto* const dialog = qobject_cast<Dialog*>(modal))
                         {
                             ++count;
                             act(dialog);
                         }
                         if (modal->isVisible())
                             modal->close();
                     });
    timer.start(10);
    call();
    return count;
}

} // namespace ModalProbe
