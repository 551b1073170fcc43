// SPDX-License-Identifier: MIT
#pragma once

#include "timelines/TimelineWidget.h"

#include <QObject>
#include <QStringList>

/// A host that writes down what a timeline asks for and, if told so, does it.
class TimelineHost : public QObject
{
    Q_OBJECT

public:
    explicit TimelineHost(TimelineWidget* timeline, bool answersRequests = true)
        : answers(answersRequests), mTimeline(timeline)
    {
        connect(timeline, SIGNAL(ScrubStateChanged(bool)), this, SLOT(OnScrubStateChanged(bool)));
        connect(timeline, SIGNAL(TimeChangeRequested(int64_t, bool)), this,
                SLOT(OnTimeChangeRequested(int64_t, bool)));
        connect(timeline, SIGNAL(RangeChangeRequested(int64_t, int64_t)), this,
                SLOT(OnRangeChangeRequested(int64_t, int64_t)));
        connect(timeline, SIGNAL(PositionChangeRequested(bool)), this, SLOT(OnPositionChangeRequested(bool)));
    }

    static QString Scrub(bool enabled) { return QStringLiteral("scrub %1").arg(enabled); }
    static QString Time(int64_t time, bool audio)
    {
        return QStringLiteral("time %1 audio %2").arg(time).arg(audio);
    }
    static QString Range(int64_t start, int64_t end)
    {
        return QStringLiteral("range %1 to %2").arg(start).arg(end);
    }
    static QString Position(bool top) { return QStringLiteral("top %1").arg(top); }

    /// What was asked for since the last call.
    QStringList Take()
    {
        QStringList taken;
        taken.swap(mLog);
        return taken;
    }

    bool answers;

public Q_SLOTS:
    void OnScrubStateChanged(bool enabled) { mLog << Scrub(enabled); }
    void OnTimeChangeRequested(int64_t time, bool audioScrub)
    {
        mLog << Time(time, audioScrub);
        if (answers)
            mTimeline->SetPlaybackTime(time);
    }
    void OnRangeChangeRequested(int64_t rangeStartTime, int64_t rangeEndTime)
    {
        mLog << Range(rangeStartTime, rangeEndTime);
        if (answers)
            mTimeline->SetPlaybackRange(rangeStartTime, rangeEndTime);
    }
    void OnPositionChangeRequested(bool top) { mLog << Position(top); }

private:
    TimelineWidget* const mTimeline;
    QStringList mLog;
};
