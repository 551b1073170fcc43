// SPDX-License-Identifier: MIT
#include "timelines/BasicTimelineWidget.h"

#include "kit/SmoothSlider.h"
#include "timelines/TimelineMapping.h"

#include <QHBoxLayout>
#include <QLabel>

namespace
{

constexpr int BasicLabelWidth = 40;

QLabel* MakeBasicLabel(const QString& name, const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setFixedWidth(BasicLabelWidth);
    return label;
}

} // namespace

BasicTimelineWidget::BasicTimelineWidget(QWidget* parent) : QWidget(parent)
{
    CreateWidgets();
    CreateLayout();
}

void BasicTimelineWidget::SetPlaybackTime(int64_t playbackTime)
{
    int percentage = 0;
    if (mDuration > 0)
        percentage = TimelineMapping::Truncated(
            static_cast<double>(static_cast<float>(playbackTime) / static_cast<float>(mDuration)) * 100.0);
    if (!mSlider->isSliderDown())
    {
        mEmitChanges = false;
        mSlider->setValue(percentage);
        mEmitChanges = true;
    }
    mTimeLabel->setText(TimelineMapping::SecondsText(playbackTime));
}

void BasicTimelineWidget::SetDuration(int64_t duration)
{
    mDuration = duration;
    mDurationLabel->setText(TimelineMapping::SecondsText(duration));
}

void BasicTimelineWidget::OnTimelineValueChanged()
{
    if (!mEmitChanges)
        return;
    // Unsigned, so that an absurd duration wraps.
    const uint64_t product = static_cast<uint64_t>(mSlider->value()) * static_cast<uint64_t>(mDuration);
    Q_EMIT PlaybackTimeChanged(static_cast<int64_t>(product) / 100);
}

void BasicTimelineWidget::CreateWidgets()
{
    mSlider = new SmoothSlider(Qt::Horizontal, this);
    mSlider->setObjectName(QStringLiteral("slider"));
    mSlider->setRange(0, 100);
    mSlider->setSingleStep(1);
    connect(mSlider, SIGNAL(valueChanged(int)), this, SLOT(OnTimelineValueChanged()));
    mTimeLabel = MakeBasicLabel(QStringLiteral("timeLabel"), QStringLiteral("0"), this);
    mDurationLabel = MakeBasicLabel(QStringLiteral("durationLabel"), QStringLiteral("0"), this);
    mFrameRateLabel = MakeBasicLabel(QStringLiteral("frameRateLabel"), QStringLiteral("0 fps"), this);
}

void BasicTimelineWidget::CreateLayout()
{
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(mSlider);
    layout->addWidget(mTimeLabel);
    layout->addWidget(mDurationLabel);
    layout->addWidget(mFrameRateLabel);
}
