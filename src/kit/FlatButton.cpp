// SPDX-License-Identifier: MIT
#include "kit/FlatButton.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

FlatButton::FlatButton(QWidget* parent) : QLabel(parent)
{
    mDefaultColor = palette().color(backgroundRole());
    mBackgroundColor = mDefaultColor;
    mCurrentColor = mDefaultColor;
    setFixedSize(30, 30);
    setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
}

void FlatButton::SetImage(const QImage& image, int margin)
{
    mImage = image;
    mImageMargin = margin;
    RefreshPicture(false);
}

void FlatButton::SetBorderWidth(int width)
{
    mBorderWidth = width;
    RebuildStyleSheet();
}

void FlatButton::SetColors(const QColor& background, const QColor& imageColor)
{
    mBackgroundColor = background.isValid() ? background : mDefaultColor;
    mCurrentColor = mBackgroundColor;
    mImageColor = imageColor;
    RefreshPicture(false);
    RebuildStyleSheet();
}

void FlatButton::SetHoverEnabled(bool enabled)
{
    mHoverEnabled = enabled;
}

void FlatButton::enterEvent(QEvent*)
{
    if (!mHoverEnabled)
        return;
    mCurrentColor = mHoverColor;
    RebuildStyleSheet();
}

void FlatButton::leaveEvent(QEvent*)
{
    if (!mHoverEnabled)
        return;
    mCurrentColor = mBackgroundColor;
    RebuildStyleSheet();
}

// The label's own handlers would let the events of the other buttons through to the parent.
void FlatButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (mPressedFeedback)
        RefreshPicture(true);
    Q_EMIT pressed();
}

void FlatButton::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (mPressedFeedback)
        RefreshPicture(false);
    const QPointer<FlatButton> self(this);
    Q_EMIT released();
    if (self && rect().contains(event->pos()))
        Q_EMIT clicked();
}

void FlatButton::RefreshPicture(bool isPressed)
{
    QPixmap picture;
    if (!mImage.isNull())
        picture = QPixmap::fromImage(mImage.scaled(width() - mImageMargin, height() - mImageMargin,
                                                   Qt::KeepAspectRatio, Qt::SmoothTransformation));
    // A button with a colour of its own doesn't change on a press: that is meant.
    if (!picture.isNull() && (mImageColor.isValid() || isPressed))
    {
        QPainter painter(&picture);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(picture.rect(), mImageColor.isValid() ? mImageColor : mPressedColor);
    }
    setPixmap(picture);
}

void FlatButton::RebuildStyleSheet()
{
    setStyleSheet(QStringLiteral("QLabel { background-color : %1; border-radius: 4px; border-width: %2; "
                                 "border-color: %3; border-style: solid }")
                      .arg(mCurrentColor.name())
                      .arg(mBorderWidth)
                      .arg(mDefaultColor.name()));
}
