// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "host/TimelineDisplayType.h"
#include "support/TestRegistry.h"
#include "timelines/FakeTimeline.h"
#include "timelines/TimelineWidget.h"
#include "timelines/UiHelpers.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QtTest>

#include <memory>
#include <type_traits>

/// Signals of a host, one for each kind of slot.
class TimelineSignals : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void Nothing();
    void Bool(bool value);
    void Type(TimelineDisplayType type);
    void Time(int64_t time);
    void Times(int64_t first, int64_t second);
    void Rate(float rate);
    void Object(std::weak_ptr<ProjectObject> object);
    void Point(QPoint point);
};

class tst_UiHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Settings::RestoreDefaults(); }

    void ConcreteSlotsConnectByName_data();
    void ConcreteSlotsConnectByName();
    void SlotsThatAHostConnectsDoTheirWork();
    void ReadOutsCarryNoMetaData();
    void ParentOwnsTheTimeline();
    void HeightsAreFixed();
    void NobodyMakesAnInstance();
};

void tst_UiHelpers::ConcreteSlotsConnectByName_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("slot");
    const auto row = [](const char* signal, const char* slot)
    { QTest::newRow(slot + 1) << QByteArray(signal) << QByteArray(slot); };
    row(SIGNAL(Nothing()), SLOT(DeferredUpdate()));
    row(SIGNAL(Nothing()), SLOT(OnUpdateTimerFired()));
    row(SIGNAL(Bool(bool)), SLOT(OnPlaybackStateChanaged(bool)));
    row(SIGNAL(Nothing()), SLOT(UpdateElementInfos()));
    row(SIGNAL(Nothing()), SLOT(SetRangeStartToPosition()));
    row(SIGNAL(Nothing()), SLOT(SetRangeEndToPosition()));
    row(SIGNAL(Nothing()), SLOT(ResetRange()));
    row(SIGNAL(Nothing()), SLOT(SetDisplayType()));
    row(SIGNAL(Bool(bool)), SLOT(SetPositionAtTop(bool)));
    row(SIGNAL(Point(QPoint)), SLOT(ShowContextMenu(QPoint)));
    row(SIGNAL(Type(TimelineDisplayType)), SLOT(SetDisplayType(TimelineDisplayType)));
    row(SIGNAL(Bool(bool)), SLOT(ShowTimeBookmarks(bool)));
    row(SIGNAL(Bool(bool)), SLOT(ShowRangeBookmarks(bool)));
    row(SIGNAL(Bool(bool)), SLOT(ShowCache(bool)));
    row(SIGNAL(Nothing()), SLOT(ShowRangeBookmarksInMenu()));
    row(SIGNAL(Object(std::weak_ptr<ProjectObject>)), SLOT(SetTimeline(std::weak_ptr<ProjectObject>)));
    row(SIGNAL(Time(int64_t)), SLOT(SetPlaybackTime(int64_t)));
    row(SIGNAL(Times(int64_t, int64_t)), SLOT(SetPlaybackRange(int64_t, int64_t)));
    row(SIGNAL(Rate(float)), SLOT(SetDesiredFrameRate(float)));
    row(SIGNAL(Rate(float)), SLOT(SetActualFrameRate(float)));
    row(SIGNAL(Times(int64_t, int64_t)), SLOT(SetCachedRange(int64_t, int64_t)));
    row(SIGNAL(Rate(float)), SLOT(SetPlaybackSpeedMultiplier(float)));
    row(SIGNAL(Bool(bool)), SLOT(SetSteppedPlaybackEnabled(bool)));
}

void tst_UiHelpers::ConcreteSlotsConnectByName()
{
    QFETCH(QByteArray, signal);
    QFETCH(QByteArray, slot);
    TimelineSignals host;
    const std::unique_ptr<TimelineWidget> global(UiHelpers::CreateGlobalTimeline(nullptr));
    const std::unique_ptr<TimelineWidget> range(UiHelpers::CreateRangeTimeline(nullptr));
    QVERIFY(QObject::connect(&host, signal.constData(), global.get(), slot.constData()));
    QVERIFY(QObject::connect(&host, signal.constData(), range.get(), slot.constData()));
}

void tst_UiHelpers::SlotsThatAHostConnectsDoTheirWork()
{
    TimelineSignals host;
    const std::unique_ptr<TimelineWidget> global(UiHelpers::CreateGlobalTimeline(nullptr));
    connect(&host, SIGNAL(Object(std::weak_ptr<ProjectObject>)), global.get(),
            SLOT(SetTimeline(std::weak_ptr<ProjectObject>)), Qt::QueuedConnection);
    connect(&host, SIGNAL(Time(int64_t)), global.get(), SLOT(SetPlaybackTime(int64_t)), Qt::QueuedConnection);
    connect(&host, SIGNAL(Nothing()), global.get(), SLOT(ResetRange()));
    connect(&host, SIGNAL(Type(TimelineDisplayType)), global.get(),
            SLOT(SetDisplayType(TimelineDisplayType)));
    const auto timeline = std::make_shared<FakeTimeline>(QList<int>{48});
    Q_EMIT host.Object(timeline);
    Q_EMIT host.Time(1000000);
    QCoreApplication::processEvents();
    QCOMPARE(global->GetPlaybackFrame(), 25);
    QSignalSpy ranges(global.get(), SIGNAL(RangeChangeRequested(int64_t, int64_t)));
    Q_EMIT host.Nothing();
    QCOMPARE(ranges.size(), 1);
    QCOMPARE(ranges[0][1].value<int64_t>(), timeline->endTime);
    Q_EMIT host.Type(TimeCode);
    QCOMPARE(Settings::globalTimelineDisplayType, 2);
}

void tst_UiHelpers::ReadOutsCarryNoMetaData()
{
    const std::unique_ptr<TimelineWidget> global(UiHelpers::CreateGlobalTimeline(nullptr));
    QCOMPARE(global->metaObject()->className(), "GlobalTimelineWidget");
    for (const char* name :
         {"GetPlaybackFrame()", "GetRangeStartFrame()", "GetRangeEndFrame()", "GetPlaybackTimeAtOffset(int)",
          "GetRangeStartTime()", "GetRangeEndTime()", "GetActualFrameRate()"})
        QCOMPARE(global->metaObject()->indexOfMethod(name), -1);
}

void tst_UiHelpers::ParentOwnsTheTimeline()
{
    auto parent = std::make_unique<QWidget>();
    const QPointer<TimelineWidget> global = UiHelpers::CreateGlobalTimeline(parent.get());
    const QPointer<TimelineWidget> range = UiHelpers::CreateRangeTimeline(parent.get());
    QCOMPARE(global->parentWidget(), parent.get());
    QCOMPARE(range->metaObject()->className(), "RangeTimelineWidget");
    QVERIFY(range->inherits("GlobalTimelineWidget"));
    parent.reset();
    QVERIFY(global.isNull());
    QVERIFY(range.isNull());
}

void tst_UiHelpers::HeightsAreFixed()
{
    const std::unique_ptr<TimelineWidget> global(UiHelpers::CreateGlobalTimeline(nullptr));
    const std::unique_ptr<TimelineWidget> range(UiHelpers::CreateRangeTimeline(nullptr));
    QCOMPARE(global->minimumHeight(), 40);
    QCOMPARE(global->maximumHeight(), 40);
    QCOMPARE(range->minimumHeight(), 46);
    QCOMPARE(range->maximumHeight(), 46);
    QVERIFY(global->testAttribute(Qt::WA_MouseTracking));
    QVERIFY(range->testAttribute(Qt::WA_MouseTracking));
    QCOMPARE(global->contextMenuPolicy(), Qt::CustomContextMenu);
}

void tst_UiHelpers::NobodyMakesAnInstance()
{
    QVERIFY(!std::is_default_constructible_v<UiHelpers>);
}

static const TestRegistration<tst_UiHelpers> UiHelpersRegistration;

#include "tst_UiHelpers.moc"
