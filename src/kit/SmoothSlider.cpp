// SPDX-License-Identifier: MIT
#include "kit/SmoothSlider.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionSlider>

#include <cmath>

void SmoothSlider::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Escape)
    {
        event->ignore();
        return;
    }
    event->accept();
    hide();
}

void SmoothSlider::mousePressEvent(QMouseEvent* event)
{
    if (!underMouse())
    {
        event->accept();
        if (parentWidget() == nullptr)
            hide();
        return;
    }
    if (event->button() != Qt::LeftButton || HandleRect().contains(event->pos()))
    {
        QSlider::mousePressEvent(event);
        return;
    }
    // Half a per cent at each end makes both ends easy to hit.
    const int edge = static_cast<int>(width() * 0.005);
    const int x = event->x();
    if (x < edge)
        Pick(static_cast<float>(minimum()));
    else if (x > width() - edge)
        Pick(static_cast<float>(maximum()));
    else
        Pick(ValueAt(x));
}

void SmoothSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::NoButton)
        QSlider::mouseMoveEvent(event);
    else
        Pick(ValueAt(event->x()));
}

QRect SmoothSlider::HandleRect() const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
}

float SmoothSlider::ValueAt(int x) const
{
    const auto lowest = static_cast<float>(minimum());
    const float span = static_cast<float>(maximum()) - lowest;
    return std::round(lowest + span * static_cast<float>(x) / static_cast<float>(width()));
}

void SmoothSlider::Pick(float position)
{
    const double picked = invertedAppearance()
                              ? static_cast<double>(maximum()) - static_cast<double>(position)
                              : static_cast<double>(position);
    // Written so that a value that is no number is refused too.
    if (!(picked >= minimum() && picked <= maximum()))
        return;
    const int newValue = static_cast<int>(picked);
    if (newValue == value())
        return;
    setValue(newValue);
    Q_EMIT SliderPositionChanged();
}
