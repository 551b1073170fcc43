// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "kit/UiGlobals.h"
#include "support/InputEvents.h"
#include "support/TestRegistry.h"
#include "viewers/ViewerWidget.h"
#include "views/FakeProject.h"
#include "views/ProjectView.h"

#include <QDrag>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QMimeData>
#include <QSignalSpy>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

using namespace FakeProject;

/// Drags of the project tree by the mouse, through the window system.
class tst_ProjectViewRealDrag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void ATimelineMovesToAFolder();
    void SelectedRowsMoveTogether();
    void ATimelineOpensInTheViewerUnderThePoint_data();
    void ATimelineOpensInTheViewerUnderThePoint();
    void TheViewerRefusesFoldersAndSeveral();
    void AProtectedFolderGoesNowhere();
    void EscapeEndsTheDrag();

private:
    /// Presses on the row @p name and drags to @p to of @p target; then releases, or presses Escape.
    void DragTo(const QString& name, QWidget* target, const QPoint& to, bool isCancelled = false);
    QPoint MiddleOf(const QString& name) const { return mTree->visualItemRect(RowOf(mTree, name)).center(); }

    std::unique_ptr<QWidget> mWindow;
    ProjectView* mView = nullptr;
    ViewerWidget* mViewer = nullptr;
    QTreeWidget* mTree = nullptr;
    std::shared_ptr<FakeObject> mRoot;
    std::unique_ptr<QSignalSpy> mMoved;
    QList<int> mDropped;
    QByteArray mDroppedIDs;
};

void tst_ProjectViewRealDrag::init()
{
    Settings::hardwareAcceleratedPlayback = false;
    mWindow = std::make_unique<QWidget>();
    mWindow->resize(900, 500);
    auto* const layout = new QHBoxLayout(mWindow.get());
    mView = new ProjectView(mWindow.get());
    mView->setFixedWidth(300);
    mViewer = new ViewerWidget(mWindow.get());
    layout->addWidget(mView);
    layout->addWidget(mViewer);
    mViewer->SetViewerLayout(Horizontal);
    mTree = mView->findChild<QTreeWidget*>();
    mMoved = std::make_unique<QSignalSpy>(mView, SIGNAL(ProjectObjectMoved(QUuid, QUuid, int)));
    mDropped.clear();
    mDroppedIDs.clear();
    connect(mViewer, &ViewerWidget::ViewerDropEvent, this,
            [this](const QDropEvent* event, int index)
            {
                mDropped << index;
                mDroppedIDs = event->mimeData()->data(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE);
            });

    mRoot = AddFolder(nullptr, QStringLiteral("root"));
    AddFolder(mRoot, QStringLiteral("folder"));
    AddFolder(mRoot, QStringLiteral("protected"))->isProtected = true;
    AddTimeline(mRoot, QStringLiteral("one"));
    AddTimeline(mRoot, QStringLiteral("two"));
    mView->SetRoot(mRoot);
    mView->Update();
    mWindow->show();
    mWindow->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(mWindow.get()));
}

void tst_ProjectViewRealDrag::cleanup()
{
    mWindow.reset();
}

void tst_ProjectViewRealDrag::DragTo(const QString& name, QWidget* target, const QPoint& to, bool isCancelled)
{
    const QPoint from = MiddleOf(name);
    // The drag runs an event loop of its own, in which these come.
    QTimer steps;
    int step = 0;
    connect(&steps, &QTimer::timeout, this,
            [&]
            {
                ++step;
                if (step <= 3)
                    InputEvents::Move(target, to + QPoint(step - 3, 0), Qt::LeftButton);
                else if (step == 4 && isCancelled)
                    QTest::keyClick(mWindow->windowHandle(), Qt::Key_Escape);
                else if (step == 4 || step == 5)
                    InputEvents::Release(target, to);
                else
                    QDrag::cancel();
            });
    InputEvents::Press(mTree->viewport(), from);
    steps.start(30);
    InputEvents::Move(mTree->viewport(), from + QPoint(4, 0), Qt::LeftButton);
    InputEvents::Move(mTree->viewport(), from + QPoint(QApplication::startDragDistance() + 8, 0),
                      Qt::LeftButton);
    QTRY_VERIFY(step >= 6);
}

void tst_ProjectViewRealDrag::ATimelineMovesToAFolder()
{
    DragTo(QStringLiteral("one"), mTree->viewport(), MiddleOf(QStringLiteral("folder")));
    QCOMPARE(mMoved->size(), 1);
    QCOMPARE(mMoved->first(), QVariantList({mRoot->children[2]->GetID(), mRoot->children[0]->GetID(), -1}));
    // No row moved by itself.
    QCOMPARE(mTree->topLevelItemCount(), 4);
    QVERIFY(mDropped.isEmpty());
}

void tst_ProjectViewRealDrag::SelectedRowsMoveTogether()
{
    RowOf(mTree, QStringLiteral("two"))->setSelected(true);
    RowOf(mTree, QStringLiteral("one"))->setSelected(true);
    DragTo(QStringLiteral("one"), mTree->viewport(), MiddleOf(QStringLiteral("folder")));
    QCOMPARE(mMoved->size(), 2);
    QCOMPARE(mMoved->at(0)[0].toUuid(), mRoot->children[2]->GetID());
    QCOMPARE(mMoved->at(1)[0].toUuid(), mRoot->children[3]->GetID());
}

void tst_ProjectViewRealDrag::ATimelineOpensInTheViewerUnderThePoint_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("A") << 0;
    QTest::newRow("B") << 1;
}

void tst_ProjectViewRealDrag::ATimelineOpensInTheViewerUnderThePoint()
{
    QFETCH(int, index);
    const QPoint to(mViewer->width() * (1 + 2 * index) / 4, mViewer->height() / 2);
    QCOMPARE(mViewer->GetViewerIndexFromGlobal(mViewer->mapToGlobal(to)), index);
    DragTo(QStringLiteral("two"), mViewer, to);
    QCOMPARE(mDropped, QList<int>({index}));
    QCOMPARE(mDroppedIDs, QByteArray::fromHex("00000001") + mRoot->children[3]->GetID().toRfc4122());
    QVERIFY(mMoved->isEmpty());
}

void tst_ProjectViewRealDrag::TheViewerRefusesFoldersAndSeveral()
{
    const QPoint to(mViewer->width() / 4, mViewer->height() / 2);
    DragTo(QStringLiteral("folder"), mViewer, to);
    QVERIFY(mDropped.isEmpty());
    mTree->clearSelection();
    RowOf(mTree, QStringLiteral("one"))->setSelected(true);
    RowOf(mTree, QStringLiteral("two"))->setSelected(true);
    DragTo(QStringLiteral("two"), mViewer, to);
    QVERIFY(mDropped.isEmpty());
}

void tst_ProjectViewRealDrag::AProtectedFolderGoesNowhere()
{
    DragTo(QStringLiteral("protected"), mTree->viewport(), MiddleOf(QStringLiteral("folder")));
    QVERIFY(mMoved->isEmpty());
}

void tst_ProjectViewRealDrag::EscapeEndsTheDrag()
{
    DragTo(QStringLiteral("one"), mTree->viewport(), MiddleOf(QStringLiteral("folder")), true);
    QVERIFY(mMoved->isEmpty());
}

static const TestRegistration<tst_ProjectViewRealDrag> ProjectViewRealDragRegistration;

#include "tst_ProjectViewRealDrag.moc"
