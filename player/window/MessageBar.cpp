// SPDX-License-Identifier: MIT
#include "window/MessageBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace
{

const QColor MessageBackground(108, 44, 38);
const QColor MessageText(255, 238, 232);

} // namespace

MessageBar::MessageBar(QWidget* parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("messageBar"));
    setAutoFillBackground(true);
    QPalette colors = palette();
    colors.setColor(QPalette::Window, MessageBackground);
    colors.setColor(QPalette::WindowText, MessageText);
    setPalette(colors);

    mLabel = new QLabel(this);
    mLabel->setObjectName(QStringLiteral("messageLabel"));
    mLabel->setTextFormat(Qt::PlainText);
    mLabel->setWordWrap(true);
    mLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // So that a long path wraps the text instead of widening the window.
    mLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* const closeButton = new QPushButton(tr("Dismiss"), this);
    closeButton->setObjectName(QStringLiteral("messageCloseButton"));
    closeButton->setFocusPolicy(Qt::NoFocus);
    connect(closeButton, SIGNAL(clicked()), this, SLOT(Clear()));
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 4, 6, 4);
    layout->addWidget(mLabel, 1);
    layout->addWidget(closeButton);
    hide();
}

QString MessageBar::Message() const
{
    return mMessage;
}

void MessageBar::ShowMessage(const QString& text)
{
    if (text == mMessage)
        return;
    mMessage = text;
    ++mCount;
    mLabel->setText(mCount == 1 ? text
                                : tr("%1  (and %n before it, see the log)", nullptr, mCount - 1).arg(text));
    mLabel->setToolTip(text);
    show();
}

void MessageBar::Clear()
{
    mMessage.clear();
    mCount = 0;
    hide();
}
