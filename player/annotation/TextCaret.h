// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <QWidget>

/// The blinking line where the next letter of a text goes. It lets the mouse through.
class TextCaret : public QWidget
{
    Q_OBJECT

public:
    explicit TextCaret(QWidget* parent);

    /// Stands at @p place of the parent in @p color, and begins to blink anew.
    void Stand(const QRect& place, const QColor& color);
    /// Goes until it is told to stand somewhere.
    void Leave();

protected:
    void paintEvent(QPaintEvent* event) override;

private Q_SLOTS:
    void Blink();

private:
    QTimer mTimer;
    QColor mColor;
};
