// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <vector>

class QDialog;
class QFileDialog;

/// Answers the modal windows that the code under test opens, in the order that was told, and records them.
///
/// A window that no answer is left for is closed and recorded as "unexpected".
class ModalScript : public QObject
{
    Q_OBJECT

public:
    /// @p parent is what each message box has to belong to; null for anything.
    explicit ModalScript(QWidget* parent);

    /// Presses @p button of the next message box; NoButton closes it by Escape.
    void Answer(QMessageBox::StandardButton button);
    /// Hands the next file dialog to @p act, which closes it.
    void Browse(std::function<void(QFileDialog*)> act);
    /// Hands the next other dialog to @p act, which closes it.
    void Drive(std::function<void(QDialog*)> act);
    /// Leaves @p window alone.
    void Leave(QWidget* window);
    /// What was opened since the last call: "critical|title|text|OK", "file|title|directory", "dialog|title".
    QStringList Take();

private:
    void Look();
    QString Describe(const QMessageBox* box) const;

    QWidget* mParent;
    QWidget* mLeft = nullptr;
    QTimer mTimer;
    std::vector<QMessageBox::StandardButton> mAnswers;
    std::vector<std::function<void(QFileDialog*)>> mBrowses;
    std::vector<std::function<void(QDialog*)>> mDrives;
    QStringList mSeen;
};
