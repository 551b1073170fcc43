// SPDX-License-Identifier: MIT
#include "host/AnnotationToolType.h"
#include "host/Bookmarks.h"
#include "host/ConsoleShowOnType.h"
#include "host/DrawData.h"
#include "host/ElementInfo.h"
#include "host/ExportPreset.h"
#include "host/ExportProfile.h"
#include "host/ExportQuality.h"
#include "host/FrameData.h"
#include "host/LoopType.h"
#include "host/ProjectObject.h"
#include "host/SnapshotNumbering.h"
#include "host/SnapshotType.h"
#include "host/Timeline.h"
#include "host/TimelineDisplayType.h"
#include "host/ViewerLayout.h"
#include "host/ViewerType.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QtTest>

#include <cstddef>
#include <type_traits>

// Enumerations are plain and their values are stored and sent as integers.
static_assert(Pencil == 0 && Eraser == 1 && Text == 2 && Arrow == 3 && Oval == 4 && Eyedropper == 5 &&
              Rectangle == 6);
static_assert(std::is_same_v<decltype(Pencil), AnnotationToolType>);
static_assert(DrawPencil == 0 && DrawEraser == 1 && DrawText == 2 && DrawLine == 3 && DrawOval == 4 &&
              DrawArrow == 5 && DrawNone == 6 && DrawRectangle == 7);
static_assert(std::is_same_v<decltype(DrawPencil), DrawType>);
static_assert(std::is_same_v<std::underlying_type_t<DrawType>, uint32_t>);
static_assert(Software == 0 && OpenGL == 1);
static_assert(std::is_same_v<decltype(Software), ViewerType>);
static_assert(Single == 0 && Horizontal == 1 && Vertical == 2);
static_assert(std::is_same_v<decltype(Single), ViewerLayout>);
static_assert(FrameNumbersGlobal == 0 && Seconds == 1 && TimeCode == 2 && FrameNumbersRange == 3);
static_assert(std::is_same_v<decltype(Seconds), TimelineDisplayType>);
static_assert(NoLoop == 0 && Loop == 1 && PingPong == 2);
static_assert(std::is_same_v<decltype(NoLoop), LoopType>);
static_assert(ExportProfileHigh == 0 && ExportProfileMain == 1 && ExportProfileBaseline == 2);
static_assert(std::is_same_v<decltype(ExportProfileHigh), ExportProfile>);
static_assert(ExportQualityVeryHigh == 0 && ExportQualityHigh == 1 && ExportQualityMedium == 2 &&
              ExportQualityLow == 3);
static_assert(std::is_same_v<decltype(ExportQualityHigh), ExportQuality>);
static_assert(ExportPresetVerySlow == 0 && ExportPresetSlower == 1 && ExportPresetSlow == 2 &&
              ExportPresetMedium == 3 && ExportPresetFast == 4 && ExportPresetFaster == 5 &&
              ExportPresetVeryFast == 6 && ExportPresetSuperFast == 7 && ExportPresetUltraFast == 8);
static_assert(std::is_same_v<decltype(ExportPresetFast), ExportPreset>);
static_assert(SnapshotSingleFrame == 0 && SnapshotAllFrames == 1 && SnapshotAllFramesInRange == 2 &&
              SnapshotBookmarks == 3 && SnapshotBookmarksInRange == 4);
static_assert(std::is_same_v<decltype(SnapshotBookmarks), SnapshotType>);
static_assert(SnapshotNumberingSequence == 0 && SnapshotNumberingFrame == 1);
static_assert(std::is_same_v<decltype(SnapshotNumberingFrame), SnapshotNumbering>);
static_assert(ConsoleShowOnDisabled == 0 && ConsoleShowOnErrors == 1 && ConsoleShowOnWarnings == 2 &&
              ConsoleShowOnInfo == 3 && ConsoleShowOnAnyOutput == 4);
static_assert(std::is_same_v<decltype(ConsoleShowOnInfo), ConsoleShowOnType>);

// The records' fields, their types and their order.
static_assert(std::is_same_v<decltype(DrawData::points), QList<QPointF>>);
static_assert(std::is_same_v<decltype(DrawData::width), float>);
static_assert(std::is_same_v<decltype(DrawData::color), QColor>);
static_assert(std::is_same_v<decltype(DrawData::type), DrawType>);
static_assert(std::is_same_v<decltype(DrawData::text), QString>);
static_assert(std::is_same_v<decltype(FrameData::drawData), QList<DrawData>>);
static_assert(std::is_same_v<decltype(FrameData::firstIndex), int>);
static_assert(std::is_same_v<decltype(FrameData::lastIndex), int>);
static_assert(std::is_same_v<decltype(TimeBookmark::time), int64_t>);
static_assert(std::is_same_v<decltype(TimeBookmark::drawings), QList<DrawData>>);
static_assert(std::is_same_v<decltype(RangeBookmark::startTime), int64_t>);
static_assert(std::is_same_v<decltype(RangeBookmark::endTime), int64_t>);
static_assert(std::is_same_v<decltype(ElementInfo::startFrame), int>);
static_assert(std::is_same_v<decltype(ElementInfo::frameCount), int>);
static_assert(std::is_same_v<decltype(&Bookmarks::GetTimeBookmarks),
                             const QList<TimeBookmark>& (Bookmarks::*)() const>);
static_assert(std::is_same_v<decltype(&Bookmarks::GetRangeBookmarks),
                             const QList<RangeBookmark>& (Bookmarks::*)() const>);
static_assert(std::is_copy_constructible_v<DrawData> && std::is_copy_assignable_v<DrawData>);
static_assert(std::is_copy_constructible_v<TimeBookmark> && std::is_copy_assignable_v<TimeBookmark>);
static_assert(std::is_copy_constructible_v<RangeBookmark> && std::is_copy_assignable_v<RangeBookmark>);
static_assert(std::is_copy_constructible_v<ElementInfo> && std::is_copy_assignable_v<ElementInfo>);

// One field of 8 bytes stands between the points and the width.
static_assert(offsetof(DrawData, points) == 0);
static_assert(offsetof(DrawData, width) == sizeof(QList<QPointF>) + 8);
static_assert(offsetof(DrawData, color) > offsetof(DrawData, width));
static_assert(offsetof(DrawData, type) > offsetof(DrawData, color));
static_assert(offsetof(DrawData, text) > offsetof(DrawData, type));
// One field stands behind the time, one behind the drawings.
static_assert(offsetof(TimeBookmark, time) == 0);
static_assert(offsetof(TimeBookmark, drawings) > sizeof(int64_t));
static_assert(sizeof(TimeBookmark) > offsetof(TimeBookmark, drawings) + sizeof(QList<DrawData>));
static_assert(offsetof(RangeBookmark, startTime) == 0);
static_assert(offsetof(RangeBookmark, endTime) == sizeof(int64_t));
static_assert(sizeof(RangeBookmark) > offsetof(RangeBookmark, endTime) + sizeof(int64_t));
static_assert(offsetof(FrameData, drawData) == 0);
static_assert(offsetof(FrameData, firstIndex) < offsetof(FrameData, lastIndex));

namespace
{

/// Signals with the types that cross the library's boundary, and slots for them.
class Boundary : public QObject
{
    Q_OBJECT

public:
    int64_t time = 0;
    std::weak_ptr<ProjectObject> object;
    std::weak_ptr<Timeline> timeline;

Q_SIGNALS:
    void TimeChanged(int64_t time);
    void ObjectChanged(std::weak_ptr<ProjectObject> object);
    void TimelineChanged(std::weak_ptr<Timeline> timeline);

public Q_SLOTS:
    void OnTimeChanged(int64_t newTime) { time = newTime; }
    void OnObjectChanged(std::weak_ptr<ProjectObject> newObject) { object = newObject; }
    void OnTimelineChanged(std::weak_ptr<Timeline> newTimeline) { timeline = newTimeline; }
};

constexpr int64_t LongTime = (int64_t(1) << 40) + 7;

} // namespace

class tst_HostTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void MetaTypesHaveTheirNames_data();
    void MetaTypesHaveTheirNames();
    void SpiesRecordThem();
    void QueuedConnectionsCarryThem();
    void VariantsHoldWeakPointers();
    void RecordsAreEmptyAtFirst();
    void CopiesStandAlone();
};

void tst_HostTypes::MetaTypesHaveTheirNames_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"int64_t", "std::weak_ptr<ProjectObject>", "std::weak_ptr<Timeline>"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_HostTypes::MetaTypesHaveTheirNames()
{
    QFETCH(QByteArray, name);
    QVERIFY(QMetaType::type(name.constData()) != QMetaType::UnknownType);
}

void tst_HostTypes::SpiesRecordThem()
{
    Boundary boundary;
    const QSignalSpy times(&boundary, SIGNAL(TimeChanged(int64_t)));
    const QSignalSpy objects(&boundary, SIGNAL(ObjectChanged(std::weak_ptr<ProjectObject>)));
    const QSignalSpy timelines(&boundary, SIGNAL(TimelineChanged(std::weak_ptr<Timeline>)));
    const auto timeline = std::make_shared<Timeline>();
    Q_EMIT boundary.TimeChanged(LongTime);
    Q_EMIT boundary.ObjectChanged(timeline);
    Q_EMIT boundary.TimelineChanged(timeline);
    QCOMPARE(times.value(0).value(0).value<int64_t>(), LongTime);
    QCOMPARE(objects.value(0).value(0).value<std::weak_ptr<ProjectObject>>().lock().get(),
             static_cast<ProjectObject*>(timeline.get()));
    QCOMPARE(timelines.value(0).value(0).value<std::weak_ptr<Timeline>>().lock(), timeline);
}

void tst_HostTypes::QueuedConnectionsCarryThem()
{
    Boundary boundary;
    QVERIFY(connect(&boundary, SIGNAL(TimeChanged(int64_t)), &boundary, SLOT(OnTimeChanged(int64_t)),
                    Qt::QueuedConnection));
    QVERIFY(connect(&boundary, SIGNAL(ObjectChanged(std::weak_ptr<ProjectObject>)), &boundary,
                    SLOT(OnObjectChanged(std::weak_ptr<ProjectObject>)), Qt::QueuedConnection));
    QVERIFY(connect(&boundary, SIGNAL(TimelineChanged(std::weak_ptr<Timeline>)), &boundary,
                    SLOT(OnTimelineChanged(std::weak_ptr<Timeline>)), Qt::QueuedConnection));
    const auto timeline = std::make_shared<Timeline>();
    Q_EMIT boundary.TimeChanged(LongTime);
    Q_EMIT boundary.ObjectChanged(timeline);
    Q_EMIT boundary.TimelineChanged(timeline);
    QCOMPARE(boundary.time, int64_t(0));
    QCoreApplication::processEvents();
    QCOMPARE(boundary.time, LongTime);
    QCOMPARE(boundary.object.lock().get(), static_cast<ProjectObject*>(timeline.get()));
    QCOMPARE(boundary.timeline.lock(), timeline);
}

void tst_HostTypes::VariantsHoldWeakPointers()
{
    auto object = std::make_shared<ProjectObject>();
    const QVariant variant = QVariant::fromValue(std::weak_ptr<ProjectObject>(object));
    QCOMPARE(QByteArray(variant.typeName()), QByteArray("std::weak_ptr<ProjectObject>"));
    QCOMPARE(variant.value<std::weak_ptr<ProjectObject>>().lock(), object);
    object.reset();
    QVERIFY(variant.value<std::weak_ptr<ProjectObject>>().expired());
}

void tst_HostTypes::RecordsAreEmptyAtFirst()
{
    const FrameData frame;
    QVERIFY(frame.drawData.isEmpty());
    QCOMPARE(frame.firstIndex, 0);
    QVERIFY(frame.lastIndex < 0);
    const DrawData drawing;
    QCOMPARE(drawing.type, DrawNone);
    QVERIFY(drawing.points.isEmpty());
    QCOMPARE(drawing.width, 0.0f);
    QVERIFY(TimeBookmark().drawings.isEmpty());
    QCOMPARE(TimeBookmark().time, int64_t(0));
    QCOMPARE(TimeBookmark(LongTime).time, LongTime);
    QCOMPARE(RangeBookmark(1, LongTime).endTime, LongTime);
    QCOMPARE(ElementInfo().frameCount, 0);
}

void tst_HostTypes::CopiesStandAlone()
{
    DrawData drawing;
    drawing.points = {QPointF(0.1, 0.2)};
    drawing.width = 0.5f;
    drawing.color = Qt::red;
    drawing.type = DrawText;
    drawing.text = QStringLiteral("text");
    TimeBookmark bookmark(3);
    bookmark.drawings << drawing;
    const TimeBookmark copy = bookmark;
    bookmark.drawings[0].points << QPointF(1, 1);
    bookmark.time = 4;
    QCOMPARE(copy.time, int64_t(3));
    QCOMPARE(copy.drawings[0].points, QList<QPointF>{QPointF(0.1, 0.2)});
    QCOMPARE(copy.drawings[0].width, 0.5f);
    QCOMPARE(copy.drawings[0].color, QColor(Qt::red));
    QCOMPARE(copy.drawings[0].type, DrawText);
    QCOMPARE(copy.drawings[0].text, QStringLiteral("text"));
}

static const TestRegistration<tst_HostTypes> HostTypesRegistration;

#include "tst_HostTypes.moc"
