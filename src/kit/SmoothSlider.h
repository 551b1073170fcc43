// SPDX-License-Identifier: MIT
#pragma once

#include <QSlider>

/// A slider whose handle jumps to a click at once, without the page step of the standard slider.
///
/// It has no keyboard steps: Escape hides it, every other key goes on to the parent. Without a parent widget
/// it serves as a pop-up that a press outside closes.
class SmoothSlider : public QSlider
{
    Q_OBJECT

public:
    using QSlider::QSlider;

Q_SIGNALS:
    /// The user's press or drag has set another value; it follows `valueChanged`.
    void SliderPositionChanged();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    QRect HandleRect() const;
    /// The value under @p x, as a float: not yet held within the range.
    float ValueAt(int x) const;
    /// Takes @p position, a value as it stands on a slider that is not inverted, unless it leads outside the
    /// range or to the value already set.
    void Pick(float position);
};
