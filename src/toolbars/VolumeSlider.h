// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

/// A slider in the shape of a wedge that rises to the right, filled up to its value, with the value as a
/// text.
class VolumeSlider : public QWidget
{
    Q_OBJECT

public:
    explicit VolumeSlider(QWidget* parent = nullptr);

    /// Makes @p maximum, raised to 1 if below it, the upper bound; a value above it comes down to it, which
    /// is signalled.
    void SetMaximum(int maximum);
    /// Moves the slider to @p value, clamped to the bounds.
    void SetValue(int value);
    int GetValue() const;

Q_SIGNALS:
    /// The value has changed. @p volume is what was asked for, before clamping: meant so, it may lie outside
    /// the bounds.
    void VolumeChanged(int volume);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void PickAt(int x);

    int mValue = 100;
    int mMinimum = 0;
    int mMaximum = 100;
};
