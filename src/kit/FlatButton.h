// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QLabel>

/// A flat button that shows a picture and nothing else, made from a label.
///
/// It is 30 by 30 pixels at first. Its owner gives it a fixed size of its own before the picture, which is
/// fitted to the size of that moment.
class FlatButton : public QLabel
{
    Q_OBJECT

public:
    explicit FlatButton(QWidget* parent = nullptr);

    /// Shows @p image, scaled to the button's size less @p margin pixels in width and in height. A null image
    /// leaves the button empty; it goes on sending its signals.
    void SetImage(const QImage& image, int margin);
    /// Draws a border of @p width pixels in the colour that the background had at construction.
    void SetBorderWidth(int width);
    /// Sets the background at rest and the colour that is laid over the picture. An invalid @p background
    /// puts back the one at construction; an invalid @p imageColor leaves the picture its own colours.
    void SetColors(const QColor& background, const QColor& imageColor);
    /// Lets the background follow the mouse; it acts when the mouse next comes or goes.
    void SetHoverEnabled(bool enabled);

Q_SIGNALS:
    /// The left button was released over the button; it follows released().
    void clicked();
    /// The left button was pressed on the button.
    void pressed();
    /// The left button was released, wherever the mouse is.
    void released();

protected:
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void RefreshPicture(bool isPressed);
    void RebuildStyleSheet();

    QImage mImage;
    int mImageMargin = 0;
    QColor mBackgroundColor;
    QColor mImageColor;
    QColor mCurrentColor;
    QColor mDefaultColor;
    QColor mHoverColor = QColor(30, 30, 30, 255);
    QColor mPressedColor = QColor(190, 190, 190, 255);
    int mBorderWidth = 0;
    bool mHoverEnabled = false;
    bool mPressedFeedback = true;
};
