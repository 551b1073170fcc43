// SPDX-License-Identifier: MIT
#include "support/ModalScript.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QPushButton>

namespace
{

QString KindOf(QMessageBox::Icon icon)
{
    switch (icon)
    {
    case QMessageBox::Critical:
        return QStringLiteral("critical");
    case QMessageBox::Warning:
        return QStringLiteral("warning");
    case QMessageBox::Question:
        return QStringLiteral("question");
    case QMessageBox::Information:
        return QStringLiteral("information");
    case QMessageBox::NoIcon:
        break;
    }
    return QStringLiteral("plain");
}

QString NamesOf(QMessageBox::StandardButtons buttons)
{
    QStringList names;
    if (buttons & QMessageBox::Ok)
        names << QStringLiteral("OK");
    if (buttons & QMessageBox::Yes)
        names << QStringLiteral("Yes");
    if (buttons & QMessageBox::No)
        names << QStringLiteral("No");
    if (buttons & ~(QMessageBox::Ok | QMessageBox::Yes | QMessageBox::No))
        names << QStringLiteral("others");
    return names.join(QLatin1Char(','));
}

} // namespace

ModalScript::ModalScript(QWidget* parent) : mParent(parent)
{
    connect(&mTimer, &QTimer::timeout, this, &ModalScript::Look);
    mTimer.start(5);
}

void ModalScript::Answer(QMessageBox::StandardButton button)
{
    mAnswers.push_back(button);
}

void ModalScript::Browse(std::function<void(QFileDialog*)> act)
{
    mBrowses.push_back(std::move(act));
}

void ModalScript::Drive(std::function<void(QDialog*)> act)
{
    mDrives.push_back(std::move(act));
}

void ModalScript::Leave(QWidget* window)
{
    mLeft = window;
}

QStringList ModalScript::Take()
{
    QStringList seen;
    seen.swap(mSeen);
    return seen;
}

void ModalScript::Look()
{
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    // The dialog under test may be modal itself.
    if (!dialog || dialog == mParent || dialog == mLeft || !dialog->isVisible())
        return;
    if (auto* const box = qobject_cast<QMessageBox*>(dialog); box && !mAnswers.empty())
    {
        const QMessageBox::StandardButton answer = mAnswers.front();
        mAnswers.erase(mAnswers.begin());
        mSeen << Describe(box);
        if (answer == QMessageBox::NoButton)
            box->reject();
        else
            box->button(answer)->click();
        return;
    }
    if (auto* const browser = qobject_cast<QFileDialog*>(dialog); browser && !mBrowses.empty())
    {
        const std::function<void(QFileDialog*)> act = mBrowses.front();
        mBrowses.erase(mBrowses.begin());
        mSeen
            << QStringLiteral("file|%1|%2").arg(browser->windowTitle(), browser->directory().absolutePath());
        act(browser);
        return;
    }
    if (!qobject_cast<QMessageBox*>(dialog) && !qobject_cast<QFileDialog*>(dialog) && !mDrives.empty())
    {
        const std::function<void(QDialog*)> act = mDrives.front();
        mDrives.erase(mDrives.begin());
        mSeen << QStringLiteral("dialog|") + dialog->windowTitle();
        act(dialog);
        return;
    }
    mSeen << QStringLiteral("unexpected|") + dialog->windowTitle();
    dialog->reject();
}

QString ModalScript::Describe(const QMessageBox* box) const
{
    const QString text =
        QStringLiteral("%1|%2|%3|%4")
            .arg(KindOf(box->icon()), box->windowTitle(), box->text(), NamesOf(box->standardButtons()));
    return !mParent || box->parentWidget() == mParent ? text : text + QStringLiteral("|of another parent");
}
