// SPDX-License-Identifier: MIT
#include "toolbars/VolumeSlider.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace
{

/// @p number without its fraction, kept within what an int holds; 0 for one that is no number.
int TruncatedVolume(float number)
{
    if (number != number)
        return 0;
    return static_cast<int>(std::clamp(static_cast<double>(number), -2147483648.0, 2147483647.0));
}

} // namespace

VolumeSlider::VolumeSlider(QWidget* parent) : QWidget(parent)
{
    setFixedSize(82, 24);
}

void VolumeSlider::SetMaximum(int maximum)
{
    mMaximum = std::max(maximum, 1);
    if (mValue > mMaximum)
    {
        mValue = std::max(mMaximum, mMinimum);
        Q_EMIT VolumeChanged(mMaximum);
    }
    update();
}

void VolumeSlider::SetValue(int value)
{
    const int former = mValue;
    mValue = std::clamp(value, mMinimum, mMaximum);
    if (mValue == former)
        return;
    update();
    Q_EMIT VolumeChanged(value);
}

int VolumeSlider::GetValue() const
{
    return mValue;
}

void VolumeSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        PickAt(event->x());
    else
        QWidget::mousePressEvent(event);
}

void VolumeSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::LeftButton)
        PickAt(event->x());
    else
        QWidget::mouseMoveEvent(event);
}

void VolumeSlider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    painter.setRenderHints(QPainter::Antialiasing | QPainter::HighQualityAntialiasing |
                           QPainter::TextAntialiasing);
    QT_WARNING_POP
    painter.setPen(QPen(QBrush(Qt::gray), 1.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillRect(rect(), palette().brush(QPalette::Window));

    const int w = width() - 1;
    const int h = height() - 1;
    const QPolygonF wedge({QPointF(0, h), QPointF(w, h), QPointF(w, 0)});
    const int level = TruncatedVolume(static_cast<float>(mValue) / static_cast<float>(mMaximum) *
                                      static_cast<float>(width()));
    painter.setClipRect(QRectF(0, 0, level, h));
    QPainterPath path;
    path.addPolygon(wedge);
    path.closeSubpath();
    painter.fillPath(path, QBrush(Qt::gray));
    painter.setClipRect(QRect(QPoint(0, 0), QPoint(w, h)));
    painter.drawPolygon(wedge, Qt::OddEvenFill);

    QFont font = painter.font();
    font.setFixedPitch(true);
    font.setPointSize(7);
    painter.setFont(font);
    painter.drawText(QRect(QPoint(5, 2), QPoint(30, 11)), Qt::AlignRight, QStringLiteral("%1%").arg(mValue));
}

void VolumeSlider::PickAt(int x)
{
    SetValue(
        TruncatedVolume(static_cast<float>(mMaximum) / static_cast<float>(width()) * static_cast<float>(x)));
}
