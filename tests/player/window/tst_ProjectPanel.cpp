// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "host/Source.h"
#include "media/NumberedMedia.h"
#include "project/FolderObject.h"
#include "project/ProjectImport.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "views/ProjectView.h"
#include "window/PanelBench.h"
#include "window/ProjectPanelBinding.h"

#include <QDataStream>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <QtTest>

/// The project view in the player: each of its requests as a step of the project, and what it shows.
class tst_ProjectPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void ShowsTheProjectAndItsSteps();
    void NewFoldersAndTimelinesAreNamedAtOnce();
    void NamesAreTypedAndRefused();
    void TypingOutlivesOtherChanges();
    void RemovesByButtonAndKey();
    void TheDefaultIsToggled();
    void ADropOfSeveralIsOneStep();
    void SiblingsMoveDownTogether();
    void AFolderDoesNotGoIntoItself();
    void FilesAndFoldersOfMediaAreImported();
    void ImportsByDialog();
    void SourcesAreReplacedAndRefreshed();
    void ACancelledImportLeavesNothing();
    void TimelinesAreShownInViewers();
    void DropsOnTheViewer();
    void TheViewStaysWhereItIs();
    void ThousandsOfObjects();

private:
    QTreeWidget* Tree() const { return mPanel->View()->findChild<QTreeWidget*>(); }
    QTreeWidgetItem* Row(const QString& name) const
    {
        return Tree()->findItems(name, Qt::MatchExactly | Qt::MatchRecursive).value(0);
    }
    QUuid IDOf(const QString& name) const
    {
        return Row(name) ? Row(name)->data(0, Qt::UserRole).toUuid() : QUuid();
    }
    QStringList ChildrenOf(const QString& name) const;
    void Select(const QStringList& names);
    void Click(const char* button)
    {
        PanelBench::Click(mPanel->View()->findChild<QLabel*>(QLatin1String(button)));
    }
    /// Drops the selection of the tree, or files, at @p place of the tree.
    void Drop(const QMimeData* data, const QPoint& place);
    std::unique_ptr<QMimeData> DragOf(const QList<QUuid>& ids, const QByteArray& flags) const;
    void TypeName(const QString& name);
    int Steps() const { return mBench->project.UndoStack()->index(); }

    std::unique_ptr<PanelBench> mBench;
    std::unique_ptr<ViewerWidget> mViewer;
    std::unique_ptr<ProjectPanelBinding> mPanel;
    QList<QPair<QString, int>> mShown;
};

namespace
{

const QStringList Codec{QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-pix_fmt"),
                        QStringLiteral("yuv420p")};

QString Movie()
{
    return NumberedMedia::Movie(QStringLiteral("project_panel.mp4"), 24, QStringLiteral("24"), Codec,
                                QSize(320, 180));
}

} // namespace

void tst_ProjectPanel::init()
{
    Settings::RestoreDefaults();
    Settings::hardwareAcceleratedPlayback = false;
    Settings::emptyProject = true;
    mBench = std::make_unique<PanelBench>();
    mBench->project.New();
    mViewer = std::make_unique<ViewerWidget>();
    mPanel = std::make_unique<ProjectPanelBinding>(&mBench->project, mViewer.get(), &mBench->area, nullptr);
    mShown.clear();
    connect(mPanel.get(), &ProjectPanelBinding::ShowRequested, this,
            [this](const std::shared_ptr<ProjectTimeline>& timeline, int viewer)
            {
                mShown << qMakePair(timeline ? timeline->GetName() : QString(), viewer);
                const auto former = mBench->playback.TimelineOf(viewer);
                mBench->playback.SetTimeline(viewer, timeline);
                if (timeline)
                    mBench->project.NoteViewer(timeline->GetID(), viewer);
                else if (former)
                    mBench->project.NoteViewer(former->GetID(), -1);
            });
    QCoreApplication::processEvents();
}

void tst_ProjectPanel::cleanup()
{
    mPanel.reset();
    mViewer.reset();
    mBench.reset();
}

QStringList tst_ProjectPanel::ChildrenOf(const QString& name) const
{
    QStringList names;
    const QTreeWidgetItem* const row = Row(name);
    for (int index = 0; row && index < row->childCount(); ++index)
        names << row->child(index)->text(0);
    return names;
}

void tst_ProjectPanel::Select(const QStringList& names)
{
    Tree()->clearSelection();
    for (const QString& name : names)
        Row(name)->setSelected(true);
}

void tst_ProjectPanel::Drop(const QMimeData* data, const QPoint& place)
{
    QWidget* const viewport = Tree()->viewport();
    QDragEnterEvent enter(place, Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QDragMoveEvent move(place, Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    QDropEvent drop(place, Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);
    QCoreApplication::processEvents();
}

std::unique_ptr<QMimeData> tst_ProjectPanel::DragOf(const QList<QUuid>& ids, const QByteArray& flags) const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << ids;
    auto data = std::make_unique<QMimeData>();
    data->setData(QStringLiteral("merovane/proj-obj-uuid"), bytes);
    data->setData(QStringLiteral("merovane/allowed-drop-types"), flags);
    return data;
}

void tst_ProjectPanel::TypeName(const QString& name)
{
    auto* const editor = Tree()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClicks(editor, name);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!Tree()->findChild<QLineEdit*>());
}

void tst_ProjectPanel::ShowsTheProjectAndItsSteps()
{
    QCOMPARE(mBench->area.Panel(QStringLiteral("project")), mPanel->View());
    mBench->AddTimeline({QStringLiteral("a.mov")});
    QVERIFY(Row(QStringLiteral("a.mov")));
    const QString timeline = QStringLiteral("New Timeline");
    QVERIFY(Row(timeline));
    QVERIFY(mBench->project.Rename(IDOf(timeline), QStringLiteral("cut")));
    QVERIFY(Row(QStringLiteral("cut")));
    mBench->Undo();
    QVERIFY(Row(timeline));
    while (mBench->project.UndoStack()->canUndo())
        mBench->Undo();
    QVERIFY(!Row(QStringLiteral("a.mov")) && !Row(timeline));
    while (mBench->project.UndoStack()->canRedo())
        mBench->Redo();
    QVERIFY(Row(QStringLiteral("a.mov")) && Row(QStringLiteral("cut")));
    mBench->project.New();
    QVERIFY(!Row(QStringLiteral("a.mov")));
    // Changes that are no steps show once events run.
    const auto source = mBench->AddSource(QStringLiteral("b.mov"));
    mBench->project.NoteViewer(source->GetID(), 1);
    QTRY_COMPARE(Row(QStringLiteral("b.mov"))->text(1), QStringLiteral("B"));
}

void tst_ProjectPanel::NewFoldersAndTimelinesAreNamedAtOnce()
{
    Click("newFolderButton");
    TypeName(QStringLiteral("shots"));
    QVERIFY(Row(QStringLiteral("shots")));
    QCOMPARE(mPanel->View()->GetSelectedItems(), QList<QUuid>({IDOf(QStringLiteral("shots"))}));
    // Into the folder that is selected.
    Click("newTimelineButton");
    TypeName(QStringLiteral("cut"));
    QCOMPARE(ChildrenOf(QStringLiteral("shots")), QStringList(QStringLiteral("cut")));
    QVERIFY(Row(QStringLiteral("shots"))->isExpanded());
    Click("newFolderButton");
    TypeName(QStringLiteral("inner"));
    QCOMPARE(ChildrenOf(QStringLiteral("shots")),
             (QStringList{QStringLiteral("cut"), QStringLiteral("inner")}));
    while (mBench->project.UndoStack()->canUndo())
        mBench->Undo();
    QVERIFY(!Row(QStringLiteral("shots")));
}

void tst_ProjectPanel::NamesAreTypedAndRefused()
{
    mBench->AddTimeline({QStringLiteral("a.mov")});
    Select({QStringLiteral("New Timeline")});
    Tree()->setFocus();
    QTest::keyClick(Tree(), Qt::Key_F2);
    TypeName(QStringLiteral("cut"));
    QVERIFY(Row(QStringLiteral("cut")));
    QCOMPARE(mBench->project.FindTimeline(IDOf(QStringLiteral("cut")))->GetName(), QStringLiteral("cut"));
    Tree()->setFocus();
    const int steps = Steps();
    QTest::keyClick(Tree(), Qt::Key_F2);
    auto* const editor = Tree()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->clear();
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!Tree()->findChild<QLineEdit*>());
    QVERIFY(Row(QStringLiteral("cut")));
    QCOMPARE(Steps(), steps);
}

void tst_ProjectPanel::TypingOutlivesOtherChanges()
{
    mBench->AddTimeline({QStringLiteral("a.mov")});
    Select({QStringLiteral("New Timeline")});
    Tree()->setFocus();
    QTest::keyClick(Tree(), Qt::Key_F2);
    auto* const editor = Tree()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("half"));
    mBench->project.NoteViewer(IDOf(QStringLiteral("a.mov")), 0);
    QTest::qWait(50);
    QCOMPARE(Tree()->findChild<QLineEdit*>(), editor);
    QCOMPARE(editor->text(), QStringLiteral("half"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(Row(QStringLiteral("a.mov"))->text(1), QStringLiteral("A"));
    QVERIFY(Row(QStringLiteral("half")));
}

void tst_ProjectPanel::RemovesByButtonAndKey()
{
    mBench->AddTimeline({QStringLiteral("a.mov"), QStringLiteral("b.mov")});
    mBench->project.AddFolder(QUuid(), -1, QStringLiteral("folder"));
    const int steps = Steps();
    Click("deleteButton");
    QCOMPARE(Steps(), steps);
    Select({QStringLiteral("b.mov"), QStringLiteral("folder")});
    Click("deleteButton");
    QVERIFY(!Row(QStringLiteral("b.mov")) && !Row(QStringLiteral("folder")));
    QCOMPARE(Steps(), steps + 1);
    Select({QStringLiteral("a.mov")});
    Tree()->setFocus();
    QTest::keyClick(Tree(), Qt::Key_Delete);
    QVERIFY(!Row(QStringLiteral("a.mov")));
    mBench->Undo();
    mBench->Undo();
    QVERIFY(Row(QStringLiteral("a.mov")) && Row(QStringLiteral("b.mov")) && Row(QStringLiteral("folder")));
}

void tst_ProjectPanel::TheDefaultIsToggled()
{
    mBench->AddTimeline({QStringLiteral("a.mov")});
    Select({QStringLiteral("New Timeline")});
    mPanel->View()->OnMakeDefaultTimeline();
    QCOMPARE(Row(QStringLiteral("New Timeline"))->text(2), QStringLiteral("*"));
    mPanel->View()->OnMakeDefaultTimeline();
    QCOMPARE(Row(QStringLiteral("New Timeline"))->text(2), QString());
    mBench->Undo();
    QCOMPARE(Row(QStringLiteral("New Timeline"))->text(2), QStringLiteral("*"));
}

void tst_ProjectPanel::ADropOfSeveralIsOneStep()
{
    const QUuid folder = mBench->project.AddFolder(QUuid(), -1, QStringLiteral("target"));
    QList<QUuid> ids;
    for (int index = 0; index < 3; ++index)
        ids << mBench->project.AddTimeline(QUuid(), -1, QStringLiteral("cut %1").arg(index));
    for (const auto& object : mBench->project.Root()->GetChildren())
        object->SetExpanded(true);
    mPanel->View()->Update();
    Select({QStringLiteral("cut 2"), QStringLiteral("cut 0"), QStringLiteral("cut 1")});
    const int steps = Steps();
    Drop(DragOf(ids, QByteArray("\1\0\0\0\1", 5)).get(),
         Tree()->visualItemRect(Row(QStringLiteral("target"))).center());
    QCOMPARE(ChildrenOf(QStringLiteral("target")),
             (QStringList{QStringLiteral("cut 0"), QStringLiteral("cut 1"), QStringLiteral("cut 2")}));
    QCOMPARE(Steps(), steps + 1);
    QCOMPARE(mPanel->View()->GetSelectedItems().size(), 3);
    mBench->Undo();
    QCOMPARE(ChildrenOf(QStringLiteral("target")), QStringList());
    QVERIFY(!folder.isNull());
}

void tst_ProjectPanel::SiblingsMoveDownTogether()
{
    QList<QUuid> ids;
    for (int index = 0; index < 5; ++index)
        ids << mBench->project.AddTimeline(QUuid(), -1, QStringLiteral("cut %1").arg(index));
    for (const auto& object : mBench->project.Root()->GetChildren())
        object->SetExpanded(true);
    mPanel->View()->Update();
    Select({QStringLiteral("cut 0"), QStringLiteral("cut 1")});
    const QRect rect = Tree()->visualItemRect(Row(QStringLiteral("cut 3")));
    Drop(DragOf(ids.mid(0, 2), QByteArray("\1\0\0\0\1", 5)).get(), rect.topLeft() + QPoint(10, 2));
    QStringList names;
    const QTreeWidgetItem* const bin = Row(QStringLiteral("cut 0"))->parent();
    for (int index = 0; index < bin->childCount(); ++index)
        names << bin->child(index)->text(0).right(1);
    QCOMPARE(names.join(QString()), QStringLiteral("20134"));
}

void tst_ProjectPanel::AFolderDoesNotGoIntoItself()
{
    const QUuid outer = mBench->project.AddFolder(QUuid(), -1, QStringLiteral("outer"));
    mBench->project.AddFolder(outer, -1, QStringLiteral("inner"));
    for (const auto& object : {mBench->project.Root()->GetChildren()[0], mBench->project.Find(outer)})
        object->SetExpanded(true);
    mPanel->View()->Update();
    QSignalSpy refused(&mBench->project, SIGNAL(Refused(QString)));
    Select({QStringLiteral("outer")});
    const int steps = Steps();
    Drop(DragOf({outer}, QByteArray("\1\1\0\0\0", 5)).get(),
         Tree()->visualItemRect(Row(QStringLiteral("inner"))).center());
    QCOMPARE(refused.size(), 1);
    QCOMPARE(Steps(), steps);
    QCOMPARE(ChildrenOf(QStringLiteral("outer")), QStringList(QStringLiteral("inner")));
}

void tst_ProjectPanel::FilesAndFoldersOfMediaAreImported()
{
    QVERIFY(!Movie().isEmpty());
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("reel/day")));
    QVERIFY(QFile::copy(Movie(), folder.filePath(QStringLiteral("reel/b.mp4"))));
    QVERIFY(QFile::copy(Movie(), folder.filePath(QStringLiteral("reel/day/c.mp4"))));
    QVERIFY(QFile::copy(Movie(), folder.filePath(QStringLiteral("a.mp4"))));
    mBench->project.AddFolder(QUuid(), -1, QStringLiteral("target"));
    for (const auto& object : mBench->project.Root()->GetChildren())
        object->SetExpanded(true);
    mPanel->View()->Update();
    const int steps = Steps();
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(folder.filePath(QStringLiteral("reel"))),
                   QUrl::fromLocalFile(folder.filePath(QStringLiteral("a.mp4")))});
    Drop(&files, Tree()->visualItemRect(Row(QStringLiteral("target"))).center());
    QTRY_VERIFY(Row(QStringLiteral("c.mp4")) || Row(QStringLiteral("c")));
    QCOMPARE(Steps(), steps + 1);
    QCOMPARE(ChildrenOf(QStringLiteral("target")).size(), 2);
    QVERIFY(Row(QStringLiteral("reel")));
    mBench->Undo();
    QVERIFY(!Row(QStringLiteral("reel")));
}

void tst_ProjectPanel::ImportsByDialog()
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QTimer::singleShot(50, this,
                       []
                       {
                           auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
                           if (!dialog)
                               return;
                           dialog->setDirectory(QFileInfo(Movie()).absolutePath());
                           dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(Movie());
                           QMetaObject::invokeMethod(dialog, "accept");
                       });
    Click("importFileButton");
    QTRY_COMPARE(mBench->project.Timelines(true).size(), 1);
    QTRY_VERIFY(Row(mBench->project.Timelines(true).first()->GetName()));
}

void tst_ProjectPanel::SourcesAreReplacedAndRefreshed()
{
    const auto source = mBench->AddSource(QStringLiteral("a.mov"));
    QCoreApplication::processEvents();
    QSignalSpy changed(&mBench->project, SIGNAL(SourceChanged(QUuid)));
    QVERIFY(QMetaObject::invokeMethod(mPanel->View(), "ReplaceSourceRequested",
                                      Q_ARG(QUuid, source->GetSource().lock()->GetID()),
                                      Q_ARG(QString, Movie()), Q_ARG(QString, QString())));
    QTRY_VERIFY(changed.size() > 0);
    QCOMPARE(source->Info().frameCount, 24);
    QTRY_COMPARE(
        Tree()->findItems(source->GetName(), Qt::MatchExactly | Qt::MatchRecursive).value(0)->toolTip(0),
        source->Info().path);
    changed.clear();
    Select({source->GetName()});
    mPanel->View()->OnRefreshSource();
    QTRY_VERIFY(changed.size() > 0);
}

void tst_ProjectPanel::ACancelledImportLeavesNothing()
{
    ProjectImport* started = nullptr;
    connect(mPanel.get(), &ProjectPanelBinding::ImportStarted, this,
            [&started](ProjectImport* import) { started = import; });
    QTemporaryDir folder;
    for (int index = 0; index < 20; ++index)
        QVERIFY(QFile::copy(Movie(), folder.filePath(QStringLiteral("%1.mp4").arg(index))));
    const int steps = Steps();
    Q_EMIT mPanel->View()->InsertSourcesInFolderRequested({folder.path()}, QUuid(), {});
    QVERIFY(started);
    started->Cancel();
    QTRY_VERIFY(!mBench->project.IsReading());
    QCOMPARE(Steps(), steps);
    QCOMPARE(mBench->project.Timelines(true).size(), 0);
}

void tst_ProjectPanel::TimelinesAreShownInViewers()
{
    const auto source = mBench->AddSource(QStringLiteral("a.mov"));
    for (const auto& object : mBench->project.Root()->GetChildren())
        object->SetExpanded(true);
    mPanel->View()->Update();
    QTreeWidgetItem* const row = Row(QStringLiteral("a.mov"));
    const QPoint center = Tree()->visualItemRect(row).center();
    InputEvents::Press(Tree()->viewport(), center);
    InputEvents::Release(Tree()->viewport(), center);
    QTest::mouseDClick(Tree()->viewport(), Qt::LeftButton, Qt::NoModifier, center);
    QCOMPARE(mShown.last(), qMakePair(QStringLiteral("a.mov"), 0));
    QTRY_COMPARE(Row(QStringLiteral("a.mov"))->text(1), QStringLiteral("A"));
    QCOMPARE(mBench->playback.TimelineOf(0), std::shared_ptr<ProjectTimeline>(source));
    // Asked out again by the menu.
    Select({QStringLiteral("a.mov")});
    mPanel->View()->findChild<QAction*>(QStringLiteral("openInViewerAAction"))->trigger();
    QCOMPARE(mShown.last(), qMakePair(QString(), 0));
    QTRY_COMPARE(Row(QStringLiteral("a.mov"))->text(1), QString());
}

void tst_ProjectPanel::DropsOnTheViewer()
{
    const auto source = mBench->AddSource(QStringLiteral("a.mov"));
    const auto drop = [this](const QMimeData& data)
    {
        QDropEvent event(QPoint(10, 10), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        static_cast<QObject*>(mViewer.get())->event(&event);
    };
    drop(*DragOf({source->GetID()}, QByteArray("\1\0\1\1\0", 5)));
    QCOMPARE(mShown.last(), qMakePair(QStringLiteral("a.mov"), 0));
    mShown.clear();
    // An id of another player, and none.
    drop(*DragOf({QUuid::createUuid()}, QByteArray("\1\0\1\1\0", 5)));
    drop(*DragOf({}, QByteArray("\1\0\1\1\0", 5)));
    QVERIFY(mShown.isEmpty());
    // Files are the window's to open.
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(Movie())});
    drop(files);
    QVERIFY(mShown.isEmpty());
    QVERIFY(!mBench->project.IsReading());
}

void tst_ProjectPanel::TheViewStaysWhereItIs()
{
    for (int index = 0; index < 200; ++index)
        mBench->AddSource(QStringLiteral("%1.mov").arg(index));
    for (const auto& object : mBench->project.Root()->GetChildren())
        object->SetExpanded(true);
    mPanel->View()->Update();
    Tree()->scrollToItem(Row(QStringLiteral("150.mov")));
    const int place = Tree()->verticalScrollBar()->value();
    QVERIFY(place > 10);
    mBench->project.NoteViewer(IDOf(QStringLiteral("150.mov")), 0);
    QTRY_COMPARE(Row(QStringLiteral("150.mov"))->text(1), QStringLiteral("A"));
    QCOMPARE(Tree()->verticalScrollBar()->value(), place);
}

void tst_ProjectPanel::ThousandsOfObjects()
{
    for (int index = 0; index < 1000; ++index)
    {
        MediaInfo info;
        info.path = QStringLiteral("/media/%1.mov").arg(index);
        info.frameCount = 10;
        info.frameRate = FrameRate{24, 1};
        mBench->project.AddSource(info);
    }
    for (const auto& object : mBench->project.Root()->GetChildren())
        object->SetExpanded(true);
    mPanel->View()->Update();
    Tree()->selectAll();
    QElapsedTimer timer;
    timer.start();
    mBench->project.Remove(mPanel->View()->GetSelectedItems());
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(mBench->project.Timelines(true).size(), 0);
    mBench->Undo();
    QCOMPARE(mBench->project.Timelines(true).size(), 1000);
    QVERIFY(Row(QStringLiteral("999.mov")));
}

static const TestRegistration<tst_ProjectPanel> ProjectPanelRegistration;

#include "tst_ProjectPanel.moc"
