// SPDX-License-Identifier: MIT
#include "host/Source.h"
#include "host/Timeline.h"
#include "support/TestRegistry.h"

#include <QtTest>

#include <cstring>
#include <type_traits>

// Identity and state are not virtual and stand with these types.
static_assert(std::is_same_v<decltype(&ProjectObject::GetID), const QUuid& (ProjectObject::*)() const>);
static_assert(std::is_same_v<decltype(&ProjectObject::GetParentID), QUuid (ProjectObject::*)() const>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsExpanded), bool (ProjectObject::*)() const>);
static_assert(std::is_same_v<decltype(&ProjectObject::SetExpanded), void (ProjectObject::*)(bool)>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsSelected), bool (ProjectObject::*)() const>);
static_assert(std::is_same_v<decltype(&ProjectObject::SetSelected), void (ProjectObject::*)(bool)>);

using Children = QList<std::shared_ptr<ProjectObject>>;
static_assert(std::is_same_v<decltype(&ProjectObject::GetName), const QString& (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::GetType), int (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::GetChildren), Children (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsMissing), bool (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsProtected), bool (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsFolderBin), bool (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsSourceBin), bool (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsTimelineBin), bool (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsSourceTimeline), bool (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::IsDefault), bool (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::GetViewerIndex), int (ProjectObject::*)()>);
static_assert(
    std::is_same_v<decltype(&ProjectObject::GetSource), std::weak_ptr<Source> (ProjectObject::*)()>);
static_assert(
    std::is_same_v<decltype(&ProjectObject::GetElementInfos), QList<ElementInfo> (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::GetStartTime), int64_t (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::GetEndTime), int64_t (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::GetBookmarks), Bookmarks* (ProjectObject::*)()>);
static_assert(std::is_same_v<decltype(&ProjectObject::TimeToFrame), int (ProjectObject::*)(int64_t)>);
static_assert(std::is_same_v<decltype(&ProjectObject::FrameToTime), int64_t (ProjectObject::*)(int)>);

static_assert(std::is_polymorphic_v<ProjectObject> && std::has_virtual_destructor_v<ProjectObject>);
static_assert(std::is_base_of_v<ProjectObject, Timeline>);
static_assert(!std::is_copy_constructible_v<ProjectObject>, "an object is an identity");
static_assert(std::is_same_v<decltype(&Source::GetID), const QUuid& (Source::*)() const>);
static_assert(std::is_same_v<decltype(&Source::GetPath), const QString& (Source::*)() const>);

namespace
{

/// A clip of 25 frames a second, as a host would write one.
class Clip : public Timeline
{
public:
    using Timeline::Timeline;

    const QString& GetName() override { return mName; }
    std::weak_ptr<Source> GetSource() override { return mSource; }
    int64_t GetStartTime() override { return 1000000; }
    int64_t GetEndTime() override { return 2000000; }
    int TimeToFrame(int64_t time) override { return static_cast<int>((time - GetStartTime()) / 40000) + 1; }
    int64_t FrameToTime(int frame) override { return GetStartTime() + int64_t(frame - 1) * 40000; }

private:
    QString mName = QStringLiteral("clip");
    std::shared_ptr<Source> mSource = std::make_shared<Source>(QUuid::createUuid(), QStringLiteral("/a.mov"));
};

/// Tells of its end.
class Mortal : public ProjectObject
{
public:
    explicit Mortal(bool* dead) : mDead(dead) {}
    ~Mortal() override { *mDead = true; }

private:
    bool* mDead;
};

#ifdef __x86_64__
/// The slot of a virtual operation in the class's table, as the Itanium C++ ABI writes it into a pointer to
/// member.
template<typename Operation>
std::ptrdiff_t SlotOf(Operation operation)
{
    static_assert(sizeof(operation) == 2 * sizeof(std::ptrdiff_t));
    std::ptrdiff_t words[2];
    std::memcpy(words, &operation, sizeof(words));
    // An odd first word marks a virtual operation; the rest of it is the offset in bytes.
    return words[0] % 2 == 1 ? (words[0] - 1) / std::ptrdiff_t(sizeof(void*)) : -1;
}
#endif

} // namespace

class tst_ProjectObjects : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void APlainObjectIsAnEmptyFolder();
    void IdentitiesAreKept();
    void StateIsKept();
    void VirtualOperationsStandInOrder();
    void ATimelineIsOfTypeOneAndHasBookmarks();
    void AHostOverridesWhatItHas();
    void TheBaseDeletesTheSubclass();
    void ATimelineIsFoundByACast();
    void ASourceKeepsItsIdentityAndPath();
};

void tst_ProjectObjects::APlainObjectIsAnEmptyFolder()
{
    const auto object = std::make_shared<ProjectObject>();
    QVERIFY(!object->GetID().isNull());
    QVERIFY(object->GetParentID().isNull());
    QVERIFY(!object->IsExpanded());
    QVERIFY(!object->IsSelected());
    QCOMPARE(object->GetName(), QString());
    QCOMPARE(object->GetType(), 0);
    QVERIFY(object->GetChildren().isEmpty());
    QVERIFY(!object->IsMissing());
    QVERIFY(!object->IsProtected());
    QVERIFY(!object->IsFolderBin());
    QVERIFY(!object->IsSourceBin());
    QVERIFY(!object->IsTimelineBin());
    QVERIFY(!object->IsSourceTimeline());
    QVERIFY(!object->IsDefault());
    QCOMPARE(object->GetViewerIndex(), -1);
    QVERIFY(object->GetSource().expired());
    QVERIFY(object->GetElementInfos().isEmpty());
    QCOMPARE(object->GetStartTime(), int64_t(0));
    QCOMPARE(object->GetEndTime(), int64_t(0));
    QVERIFY(!object->GetBookmarks());
    QCOMPARE(object->TimeToFrame(object->GetStartTime()), 1);
    QCOMPARE(object->FrameToTime(1), object->GetStartTime());
}

void tst_ProjectObjects::IdentitiesAreKept()
{
    const QUuid id = QUuid::createUuid();
    const QUuid parentID = QUuid::createUuid();
    ProjectObject object(id, parentID);
    QCOMPARE(object.GetID(), id);
    QCOMPARE(object.GetParentID(), parentID);
    // The identity is handed out by reference, the parent's by value.
    QCOMPARE(&object.GetID(), &object.GetID());
    object.SetParentID(id);
    QCOMPARE(object.GetParentID(), id);
    QVERIFY(ProjectObject().GetID() != ProjectObject().GetID());
    QVERIFY(ProjectObject(QUuid()).GetID().isNull());
}

void tst_ProjectObjects::StateIsKept()
{
    ProjectObject object;
    object.SetExpanded(true);
    QVERIFY(object.IsExpanded());
    QVERIFY(!object.IsSelected());
    object.SetSelected(true);
    object.SetExpanded(false);
    QVERIFY(!object.IsExpanded());
    QVERIFY(object.IsSelected());
    object.SetSelected(false);
    QVERIFY(!object.IsSelected());
}

void tst_ProjectObjects::VirtualOperationsStandInOrder()
{
#ifdef __x86_64__
    const std::ptrdiff_t virtualSlots[] = {
        SlotOf(&ProjectObject::GetName),          SlotOf(&ProjectObject::GetType),
        SlotOf(&ProjectObject::GetChildren),      SlotOf(&ProjectObject::IsMissing),
        SlotOf(&ProjectObject::IsProtected),      SlotOf(&ProjectObject::IsFolderBin),
        SlotOf(&ProjectObject::IsSourceBin),      SlotOf(&ProjectObject::IsTimelineBin),
        SlotOf(&ProjectObject::IsSourceTimeline), SlotOf(&ProjectObject::IsDefault),
        SlotOf(&ProjectObject::GetViewerIndex),   SlotOf(&ProjectObject::GetSource),
        SlotOf(&ProjectObject::GetElementInfos),  SlotOf(&ProjectObject::GetStartTime),
        SlotOf(&ProjectObject::GetEndTime),       SlotOf(&ProjectObject::GetBookmarks),
        SlotOf(&ProjectObject::TimeToFrame),      SlotOf(&ProjectObject::FrameToTime),
    };
    std::ptrdiff_t last = -1;
    for (const std::ptrdiff_t slot : virtualSlots)
    {
        QVERIFY2(slot > last, qPrintable(QStringLiteral("slot %1 follows slot %2").arg(slot).arg(last)));
        last = slot;
    }
    QCOMPARE(SlotOf(&ProjectObject::IsExpanded), std::ptrdiff_t(-1));
#else
    QSKIP("pointers to members are read on x86-64 alone");
#endif
}

void tst_ProjectObjects::ATimelineIsOfTypeOneAndHasBookmarks()
{
    Timeline first;
    Timeline second;
    QCOMPARE(first.GetType(), 1);
    QVERIFY(first.GetBookmarks());
    QVERIFY(first.GetBookmarks() != second.GetBookmarks());
    first.GetBookmarks()->AddTimeBookmark(TimeBookmark(5));
    QCOMPARE(first.GetBookmarks()->GetTimeBookmarks().size(), 1);
    QVERIFY(second.GetBookmarks()->GetTimeBookmarks().isEmpty());
}

void tst_ProjectObjects::AHostOverridesWhatItHas()
{
    const QUuid id = QUuid::createUuid();
    const std::shared_ptr<ProjectObject> object = std::make_shared<Clip>(id, QUuid());
    QCOMPARE(object->GetID(), id);
    QCOMPARE(object->GetName(), QStringLiteral("clip"));
    QCOMPARE(object->GetSource().lock()->GetPath(), QStringLiteral("/a.mov"));
    QCOMPARE(object->FrameToTime(1), object->GetStartTime());
    QCOMPARE(object->TimeToFrame(object->GetStartTime()), 1);
    QCOMPARE(object->TimeToFrame(object->FrameToTime(25)), 25);
    // What it left alone is still plain.
    QVERIFY(!object->IsSourceTimeline());
    QCOMPARE(object->GetViewerIndex(), -1);
}

void tst_ProjectObjects::TheBaseDeletesTheSubclass()
{
    bool dead = false;
    {
        const std::unique_ptr<ProjectObject> object = std::make_unique<Mortal>(&dead);
        QVERIFY(!dead);
    }
    QVERIFY(dead);
}

void tst_ProjectObjects::ATimelineIsFoundByACast()
{
    const std::shared_ptr<ProjectObject> clip = std::make_shared<Clip>();
    const std::shared_ptr<ProjectObject> folder = std::make_shared<ProjectObject>();
    QVERIFY(std::dynamic_pointer_cast<Timeline>(clip));
    QVERIFY(!std::dynamic_pointer_cast<Timeline>(folder));
}

void tst_ProjectObjects::ASourceKeepsItsIdentityAndPath()
{
    const QUuid id = QUuid::createUuid();
    const Source source(id, QStringLiteral("/plates/a.0001.exr"));
    QCOMPARE(source.GetID(), id);
    QCOMPARE(source.GetPath(), QStringLiteral("/plates/a.0001.exr"));
}

static const TestRegistration<tst_ProjectObjects> ProjectObjectsRegistration;

#include "tst_ProjectObjects.moc"
