// SPDX-License-Identifier: MIT
#include "annotation/TextCaret.h"

#include <QApplication>
#include <QPainter>

TextCaret::TextCaret(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("textCaret"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    connect(&mTimer, SIGNAL(timeout()), this, SLOT(Blink()));
}

void TextCaret::Stand(const QRect& place, const QColor& color)
{
    mColor = color;
    mColor.setAlpha(255);
    setGeometry(place);
    show();
    raise();
    update();
    // Where the user has turned blinking off it stays.
    if (const int flashTime = QApplication::cursorFlashTime(); flashTime > 0)
        mTimer.start(flashTime / 2);
}

void TextCaret::Leave()
{
    mTimer.stop();
    hide();
}

void TextCaret::Blink()
{
    setVisible(!isVisible());
}

void TextCaret::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), mColor);
}
