// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDialog>
#include <QMessageBox>
#include <QString>
#include <QTimer>

#include <functional>

/// Answers the modal dialogs that a call opens, and keeps what they showed.
namespace DialogAnswer
{

struct FileDialog
{
    int count = 0;
    QWidget* parent = nullptr;
    QString caption;
    /// Directory that it started in, with the file selected, if any.
    QString start;
    QStringList filters;
    QFileDialog::FileMode mode = QFileDialog::AnyFile;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
    QFileDialog::Options options;
};

/// Runs @p call, and picks @p answer in the file dialog that it opens; an empty answer cancels it.
FileDialog ToFileDialog(const std::function<void()>& call, const QString& answer);

struct MessageBox
{
    int count = 0;
    QWidget* parent = nullptr;
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

/// Runs @p call, and presses @p button of the message box that it opens.
MessageBox ToMessageBox(const std::function<void()>& call, QMessageBox::StandardButton button);

} // namespace DialogAnswer
