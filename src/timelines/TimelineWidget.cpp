// SPDX-License-Identifier: MIT
#include "timelines/TimelineWidget.h"

TimelineWidget::TimelineWidget(QWidget* parent) : QWidget(parent) {}

TimelineWidget::~TimelineWidget() = default;
