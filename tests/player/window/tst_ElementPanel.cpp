// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/NumberedMedia.h"
#include "project/ProjectImport.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "views/TimelineListView.h"
#include "window/PanelBench.h"

#include <QApplication>
#include <QDataStream>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QUrl>
#include <QtTest>

/// The element list in the player: each of its requests as a step of the project, and what it shows.
class tst_ElementPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mBench.reset(); }

    void ShowsTheTimelineThatLeads();
    void MovesByButtonsAndBack();
    void MovesSeveralToTheEnds();
    void SortsBothWays();
    void RemovesByButtonAndByKey();
    void SourceTimelinesAreInserted();
    void FilesAreImportedInTheirOrder();
    void FilesForNoTimelineGoToTheProject();
    void DoubleClickGoesToTheElement();
    void HighlightFollowsThePlayhead();
    void HighlightCanBeOff();
    void SelectionOutlivesOtherSteps();
    void NewNamesShow();
    void OneRefreshForAStep();
    void ThousandsOfElements();

private:
    QWidget* Button(const char* name) const
    {
        return mBench->elements.List()->findChild<QLabel*>(QLatin1String(name));
    }
    void Drop(QMimeData* data, int row, bool below = false);
    QColor Color(int row, Qt::ItemDataRole role) const
    {
        return mBench->Rows()->topLevelItem(row)->data(0, role).value<QColor>();
    }

    std::unique_ptr<PanelBench> mBench;
};

namespace
{

QByteArray Payload(const QList<QUuid>& ids)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << ids;
    return bytes;
}

} // namespace

void tst_ElementPanel::init()
{
    Settings::RestoreDefaults();
    mBench = std::make_unique<PanelBench>();
}

void tst_ElementPanel::Drop(QMimeData* data, int row, bool below)
{
    QWidget* const viewport = mBench->Rows()->viewport();
    QPoint place(20, 200);
    if (row >= 0)
    {
        const QRect rect = mBench->Rows()->visualItemRect(mBench->Rows()->topLevelItem(row));
        place = below ? rect.bottomLeft() - QPoint(-20, 2) : rect.topLeft() + QPoint(20, 2);
    }
    QDragEnterEvent enter(place, Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QDropEvent drop(place, Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);
}

void tst_ElementPanel::ShowsTheTimelineThatLeads()
{
    QCOMPARE(mBench->area.Panel("details"), mBench->elements.List());
    QCOMPARE(mBench->Names(), QStringList());
    const auto first = mBench->AddTimeline({"a.mov", "b.mov"});
    const auto second = mBench->AddTimeline({"c.mov"});
    QCOMPARE(mBench->Names(), QStringList());
    mBench->Lead(first);
    QCOMPARE(mBench->Names(), (QStringList{"a.mov", "b.mov"}));
    mBench->playback.SetTimeline(1, second);
    QCOMPARE(mBench->Names(), (QStringList{"a.mov", "b.mov"}));
    mBench->playback.SetActiveViewer(1);
    QCOMPARE(mBench->Names(), QStringList{"c.mov"});
    // A source has no elements, and no timeline has none.
    mBench->Lead(mBench->AddSource("d.mov"));
    mBench->playback.SetActiveViewer(0);
    QCOMPARE(mBench->Names(), QStringList());
    mBench->Lead(nullptr);
    mBench->playback.SetTimeline(1, nullptr);
    QCOMPARE(mBench->Names(), QStringList());
    // Requests without a timeline do nothing.
    const int steps = mBench->project.UndoStack()->count();
    for (const char* button : {"moveUpButton", "sortAscendingButton", "removeButton"})
        PanelBench::Click(Button(button));
    QCOMPARE(mBench->project.UndoStack()->count(), steps);
}

void tst_ElementPanel::MovesByButtonsAndBack()
{
    mBench->Lead(mBench->AddTimeline({"a", "b", "c", "d"}));
    mBench->Select({2});
    const int steps = mBench->project.UndoStack()->count();
    PanelBench::Click(Button("moveUpButton"));
    QCOMPARE(mBench->Names(), (QStringList{"a", "c", "b", "d"}));
    QCOMPARE(mBench->SelectedRows(), QList<int>{1});
    PanelBench::Click(Button("moveUpButton"));
    QCOMPARE(mBench->Names(), (QStringList{"c", "a", "b", "d"}));
    PanelBench::Click(Button("moveUpButton"));
    QCOMPARE(mBench->Names(), (QStringList{"c", "a", "b", "d"}));
    QCOMPARE(mBench->project.UndoStack()->count(), steps + 2);
    mBench->Undo();
    mBench->Undo();
    QCOMPARE(mBench->Names(), (QStringList{"a", "b", "c", "d"}));
    QCOMPARE(mBench->SelectedRows(), QList<int>{2});
    mBench->Redo();
    QCOMPARE(mBench->Names(), (QStringList{"a", "c", "b", "d"}));
}

void tst_ElementPanel::MovesSeveralToTheEnds()
{
    mBench->Lead(mBench->AddTimeline({"a", "b", "c", "d", "e"}));
    mBench->Select({1, 3});
    const auto ids = [&](const QList<int>& rows)
    {
        QList<QUuid> list;
        for (const int row : rows)
            list << mBench->Rows()->topLevelItem(row)->data(0, Qt::UserRole).toUuid();
        return list;
    };
    QMimeData dragged;
    dragged.setData("merovane/element-uuid", Payload(ids({1, 3})));
    Drop(&dragged, 0);
    QCOMPARE(mBench->Names(), (QStringList{"b", "d", "a", "c", "e"}));
    QCOMPARE(mBench->SelectedRows(), (QList<int>{0, 1}));
    Drop(&dragged, -1);
    QCOMPARE(mBench->Names(), (QStringList{"a", "c", "e", "b", "d"}));
    QCOMPARE(mBench->SelectedRows(), (QList<int>{3, 4}));
    PanelBench::Click(Button("moveUpButton"));
    QCOMPARE(mBench->Names(), (QStringList{"a", "c", "b", "d", "e"}));
    PanelBench::Click(Button("moveDownButton"));
    QCOMPARE(mBench->Names(), (QStringList{"a", "c", "e", "b", "d"}));
    for (int step = 0; step < 4; ++step)
        mBench->Undo();
    QCOMPARE(mBench->Names(), (QStringList{"a", "b", "c", "d", "e"}));
}

void tst_ElementPanel::SortsBothWays()
{
    mBench->Lead(mBench->AddTimeline({"shot 10", "Shot 2", "a"}));
    PanelBench::Click(Button("sortAscendingButton"));
    QCOMPARE(mBench->Names(), (QStringList{"a", "Shot 2", "shot 10"}));
    PanelBench::Click(Button("sortDescendingButton"));
    QCOMPARE(mBench->Names(), (QStringList{"shot 10", "Shot 2", "a"}));
    mBench->Undo();
    mBench->Undo();
    QCOMPARE(mBench->Names(), (QStringList{"shot 10", "Shot 2", "a"}));
}

void tst_ElementPanel::RemovesByButtonAndByKey()
{
    const auto timeline = mBench->AddTimeline({"a", "b", "c", "d"});
    mBench->Lead(timeline);
    mBench->Select({0, 2});
    PanelBench::Click(Button("removeButton"));
    QCOMPARE(mBench->Names(), (QStringList{"b", "d"}));
    QCOMPARE(timeline->FrameCount(), 48);
    mBench->Select({1});
    QTest::keyClick(mBench->Rows(), Qt::Key_Delete);
    QCOMPARE(mBench->Names(), QStringList{"b"});
    // With nothing selected there is no step.
    const int steps = mBench->project.UndoStack()->count();
    QTest::keyClick(mBench->Rows(), Qt::Key_Delete);
    QCOMPARE(mBench->project.UndoStack()->count(), steps);
    mBench->Undo();
    mBench->Undo();
    QCOMPARE(mBench->Names(), (QStringList{"a", "b", "c", "d"}));
}

void tst_ElementPanel::SourceTimelinesAreInserted()
{
    const auto timeline = mBench->AddTimeline({"a", "b"});
    mBench->Lead(timeline);
    QMimeData dragged;
    dragged.setData("merovane/proj-obj-uuid",
                    Payload({mBench->AddSource("x")->GetID(), mBench->AddSource("y")->GetID(),
                             QUuid::createUuid(), timeline->GetID()}));
    dragged.setData("merovane/allowed-drop-types", QByteArray("\1\0\1\1\0", 5));
    Drop(&dragged, 1);
    QCOMPARE(mBench->Names(), (QStringList{"a", "x", "y", "b"}));
    QCOMPARE(mBench->SelectedRows(), (QList<int>{1, 2}));
    Drop(&dragged, -1);
    QCOMPARE(mBench->Names(), (QStringList{"a", "x", "y", "b", "x", "y"}));
    mBench->Undo();
    mBench->Undo();
    QCOMPARE(mBench->Names(), (QStringList{"a", "b"}));
}

void tst_ElementPanel::FilesAreImportedInTheirOrder()
{
    const QStringList encoder = {"-c:v", "libx264", "-pix_fmt", "yuv420p"};
    const QString first = NumberedMedia::Movie("panel_a.mp4", 12, "24", encoder);
    const QString second = NumberedMedia::Movie("Panel_b.mp4", 24, "24", encoder);
    QVERIFY(!first.isEmpty() && !second.isEmpty());
    mBench->Lead(mBench->AddTimeline({"one", "two"}));
    ProjectImport* import = nullptr;
    connect(&mBench->elements, &ElementPanelBinding::ImportStarted, this,
            [&](ProjectImport* started) { import = started; });
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(second), QUrl::fromLocalFile(first)});
    const int steps = mBench->project.UndoStack()->count();
    Drop(&dragged, 1);
    QVERIFY(import);
    QTRY_COMPARE(mBench->Names().size(), 4);
    QStringList paths = {first, second};
    paths.sort(Qt::CaseInsensitive);
    QStringList names = {"one"};
    for (const QString& path : paths)
        names << mBench->project.FindSourceByPath(path)->GetName();
    names << "two";
    QCOMPARE(mBench->Names(), names);
    QTRY_COMPARE(mBench->SelectedRows(), (QList<int>{1, 2}));
    QCOMPARE(mBench->project.UndoStack()->count(), steps + 1);
    mBench->Undo();
    QCOMPARE(mBench->Names(), (QStringList{"one", "two"}));
}

void tst_ElementPanel::FilesForNoTimelineGoToTheProject()
{
    const QString path =
        NumberedMedia::Movie("panel_a.mp4", 12, "24", {"-c:v", "libx264", "-pix_fmt", "yuv420p"});
    mBench->Lead(mBench->AddSource("one"));
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(path)});
    Drop(&dragged, -1);
    QTRY_VERIFY(mBench->project.FindSourceByPath(path));
    QCOMPARE(mBench->Names(), QStringList());
}

void tst_ElementPanel::DoubleClickGoesToTheElement()
{
    mBench->Lead(mBench->AddTimeline({"a", "b", "c"}));
    mBench->Select({2});
    QTest::mouseDClick(mBench->Rows()->viewport(), Qt::LeftButton, Qt::NoModifier,
                       mBench->Rows()->visualItemRect(mBench->Rows()->topLevelItem(2)).center());
    QCOMPARE(mBench->playback.CurrentFrame(), 49);
}

void tst_ElementPanel::HighlightFollowsThePlayhead()
{
    const auto timeline = mBench->AddTimeline({"a", "b", "c"});
    mBench->Lead(timeline);
    const auto highlighted = [&]
    {
        QList<int> rows;
        for (int row = 0; row < mBench->Rows()->topLevelItemCount(); ++row)
        {
            if (Color(row, Qt::BackgroundRole) == mBench->Rows()->palette().color(QPalette::AlternateBase))
                rows << row;
        }
        return rows;
    };
    QCOMPARE(highlighted(), QList<int>{0});
    for (const auto& [frame, row] : {std::pair(24, 0), std::pair(25, 1), std::pair(72, 2), std::pair(1, 0)})
    {
        mBench->playback.SeekFrame(frame);
        QCOMPARE(highlighted(), QList<int>{row});
    }
    // Steps that move the element under the playhead are followed too.
    mBench->Select({0});
    PanelBench::Click(Button("moveDownButton"));
    QCOMPARE(highlighted(), QList<int>{0});
    QCOMPARE(mBench->Names(), (QStringList{"b", "a", "c"}));
    // A missing one stays red.
    mBench->project.NoteMissing(mBench->project.FindSourceByPath("/media/c")->GetID());
    QCOMPARE(Color(2, Qt::ForegroundRole), QColor(Qt::red));
    mBench->playback.SeekFrame(30);
    QCOMPARE(highlighted(), QList<int>{1});
    QCOMPARE(Color(2, Qt::ForegroundRole), QColor(Qt::red));
    QVERIFY(Color(0, Qt::ForegroundRole) != QColor(Qt::red));
}

void tst_ElementPanel::HighlightCanBeOff()
{
    mBench->Lead(mBench->AddTimeline({"a", "b"}));
    Settings::highlightActiveElementInDetailsView = false;
    mBench->elements.UpdateHighlight();
    for (int row = 0; row < 2; ++row)
        QCOMPARE(Color(row, Qt::BackgroundRole), mBench->Rows()->palette().color(QPalette::Base));
}

void tst_ElementPanel::SelectionOutlivesOtherSteps()
{
    const auto timeline = mBench->AddTimeline({"a", "b", "c"});
    mBench->Lead(timeline);
    mBench->Select({0, 2});
    mBench->project.SortElements(timeline->GetID(), false);
    QCOMPARE(mBench->SelectedRows(), (QList<int>{0, 2}));
    mBench->project.RemoveElements(timeline->GetID(), {timeline->GetElements().front()->GetID()});
    QCOMPARE(mBench->Names(), (QStringList{"b", "a"}));
    QCOMPARE(mBench->SelectedRows(), QList<int>{1});
}

void tst_ElementPanel::NewNamesShow()
{
    const auto timeline = mBench->AddTimeline({"a", "b"});
    mBench->Lead(timeline);
    mBench->project.Rename(timeline->GetElements()[1]->GetID(), "the end");
    QCOMPARE(mBench->Names(), (QStringList{"a", "the end"}));
    mBench->project.Rename(mBench->project.FindSourceByPath("/media/a")->GetID(), "the beginning");
    QCOMPARE(mBench->Names(), (QStringList{"the beginning", "the end"}));
    mBench->Undo();
    mBench->Undo();
    QCOMPARE(mBench->Names(), (QStringList{"a", "b"}));
}

void tst_ElementPanel::OneRefreshForAStep()
{
    const auto timeline = mBench->AddTimeline({"a", "b", "c"});
    mBench->Lead(timeline);
    QSignalSpy rows(mBench->Rows()->model(), SIGNAL(modelReset()));
    mBench->project.SortElements(timeline->GetID(), false);
    QCOMPARE(rows.size(), 1);
    const auto other = mBench->AddTimeline({"d"});
    rows.clear();
    mBench->project.SetRange(other->GetID(), 3, 4);
    QCOMPARE(rows.size(), 0);
}

void tst_ElementPanel::ThousandsOfElements()
{
    const auto timeline = mBench->AddTimeline({"a"});
    const QUuid source = mBench->project.FindSourceByPath("/media/a")->GetID();
    QList<QUuid> sources;
    for (int index = 0; index < 5000; ++index)
        sources << source;
    mBench->Lead(timeline);
    mBench->project.InsertElements(timeline->GetID(), sources);
    QCOMPARE(mBench->Names().size(), 5001);
    mBench->Select({3});
    QElapsedTimer timer;
    timer.start();
    PanelBench::Click(Button("moveUpButton"));
    qInfo("a move among 5001 elements: %lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < 10000);
    timer.start();
    for (int seek = 0; seek < 20; ++seek)
        mBench->playback.SeekFrame(1 + seek * 24 * 200);
    qInfo("20 seeks to other elements: %lld ms", timer.elapsed());
    QVERIFY(timer.elapsed() < 10000);
}

static const TestRegistration<tst_ElementPanel> ElementPanelRegistration;

#include "tst_ElementPanel.moc"
