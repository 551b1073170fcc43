// SPDX-License-Identifier: MIT
#include "DialogAnswer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>

namespace
{

constexpr int PollInterval = 10;
constexpr int LongestWait = 5000;

/// Runs @p call while @p answer is given to the modal dialog that it opens.
void RunWithAnswer(const std::function<void()>& call, const std::function<bool(QWidget*)>& answer)
{
    QTimer timer;
    int waited = 0;
    QObject::connect(&timer, &QTimer::timeout,
                     [&]
                     {
                         QWidget* const dialog = QApplication::activeModalWidget();
                         waited += PollInterval;
                         if (!dialog)
                             return;
                         // What isn't the dialog expected, or doesn't go, must not hang the test.
                         if (!answer(dialog) || waited > LongestWait)
                             dialog->close();
                     });
    timer.start(PollInterval);
    call();
}

} // namespace

DialogAnswer::FileDialog DialogAnswer::ToFileDialog(const std::function<void()>& call, const QString& answer)
{
    FileDialog seen;
    RunWithAnswer(call,
                  [&](QWidget* widget)
                  {
                      auto* const dialog = qobject_cast<QFileDialog*>(widget);
                      if (!dialog)
                          return false;
                      ++seen.count;
                      seen.parent = dialog->parentWidget();
                      seen.caption = dialog->windowTitle();
                      seen.start = dialog->directory().absolutePath();
                      auto* const edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
                      if (!edit->text().isEmpty() && !QDir::isAbsolutePath(edit->text()))
                          seen.start += QLatin1Char('/') + edit->text();
                      seen.filters = dialog->nameFilters();
                      seen.mode = dialog->fileMode();
                      seen.acceptMode = dialog->acceptMode();
                      seen.options = dialog->options();
                      if (answer.isEmpty())
                      {
                          dialog->reject();
                          return true;
                      }
                      edit->setText(answer);
                      QMetaObject::invokeMethod(dialog, "accept");
                      return true;
                  });
    return seen;
}

DialogAnswer::MessageBox DialogAnswer::ToMessageBox(const std::function<void()>& call,
                                                    QMessageBox::StandardButton button)
{
    MessageBox seen;
    RunWithAnswer(call,
                  [&](QWidget* widget)
                  {
                      auto* const box = qobject_cast<QMessageBox*>(widget);
                      if (!box || !box->button(button))
                          return false;
                      ++seen.count;
                      seen.parent = box->parentWidget();
                      seen.title = box->windowTitle();
                      seen.text = box->text();
                      seen.icon = box->icon();
                      seen.buttons = box->standardButtons();
                      seen.defaultButton = box->standardButton(box->defaultButton());
                      box->button(button)->click();
                      return true;
                  });
    return seen;
}
