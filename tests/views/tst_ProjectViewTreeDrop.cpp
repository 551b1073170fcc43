// SPDX-License-Identifier: MIT
#include "kit/UiGlobals.h"
#include "support/PictureCompare.h"
#include "support/TestRegistry.h"
#include "views/DropModel.h"
#include "views/FakeProject.h"
#include "views/ProjectView.h"
#include "views/ProjectViewTreeWidget.h"

#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QSignalSpy>
#include <QUrl>
#include <QtTest>

using namespace FakeProject;

/// What may be dropped on which row, where it lands, and what shows it.
class tst_ProjectViewTreeDrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void RandomTreesFollowTheSecondStatement_data();
    void RandomTreesFollowTheSecondStatement();
    void ManyRandomDropsWereTaken();
    void TheMiddleOfARowTakes_data();
    void TheMiddleOfARowTakes();
    void NearItsEdgeAFolderNeedsItsNeighbour();
    void ADragNeedsItsParts();
    void AnyFileOrProjectObjectEnters();
    void RefusedMovesShowNothing();
    void FilesComeSortedWithEqualIndices();
    void ADropWithoutLocalFilesSendsNothing();
    void ObjectsMoveOneAfterTheOther();
    void AnIndexAtTheEndStays();
    void AChildMovesWithItsSelectedFolder();
    void TheMiddleOfATimelineIsItsOwnIndex();
    void DraggingDownPastASibling();
    void TopLevelFoldersHaveNoIndex();
    void DeadRowsAndParentsRefuse();
    void AHostMayRebuildDuringADrop();
    void TinyRowsEnd();
    void LeavingAndDroppingTakeTheMarkAway();

private:
    void Fill();
    QByteArray Flags(const DropModel::Drag& drag) const;
    std::unique_ptr<QMimeData> DataOf(const DropModel::Drag& drag) const;
    bool Move(const QMimeData* data, const QPoint& pos);
    bool Enter(const QMimeData* data);
    void Drop(const QMimeData* data, const QPoint& pos);
    void Expand();
    QRect RectOf(const QString& name) const;
    QPoint MiddleOf(const QString& name) const { return RectOf(name).center(); }

    std::unique_ptr<ProjectView> mView;
    QTreeWidget* mTree = nullptr;
    std::shared_ptr<FakeObject> mRoot;
    std::unique_ptr<QSignalSpy> mMoved;
    std::unique_ptr<QSignalSpy> mInserted;
    int mTaken = 0;
};

void tst_ProjectViewTreeDrop::init()
{
    mView = std::make_unique<ProjectView>();
    mView->resize(320, 700);
    mTree = mView->findChild<QTreeWidget*>(QStringLiteral("projectTree"));
    mRoot = AddFolder(nullptr, QStringLiteral("root"));
    mMoved = std::make_unique<QSignalSpy>(mView.get(), SIGNAL(ProjectObjectMoved(QUuid, QUuid, int)));
    mInserted = std::make_unique<QSignalSpy>(
        mView.get(), SIGNAL(InsertSourcesInFolderRequested(QList<QString>, QUuid, QList<int>)));
}

void tst_ProjectViewTreeDrop::cleanup()
{
    // The drag manager forgets the tree.
    QDragLeaveEvent leave;
    QApplication::sendEvent(mTree->viewport(), &leave);
    mView.reset();
    QVERIFY(QApplication::allWidgets().isEmpty());
}

void tst_ProjectViewTreeDrop::Fill()
{
    mView->SetRoot(mRoot);
    mView->Update();
    mView->show();
    QVERIFY(QTest::qWaitForWindowExposed(mView.get()));
}

void tst_ProjectViewTreeDrop::Expand()
{
    for (const auto& object : Below(mRoot))
        object->SetExpanded(true);
}

QRect tst_ProjectViewTreeDrop::RectOf(const QString& name) const
{
    return mTree->visualItemRect(RowOf(mTree, name));
}

QByteArray tst_ProjectViewTreeDrop::Flags(const DropModel::Drag& drag) const
{
    QByteArray flags;
    for (const bool flag : {drag.general, drag.folders, drag.sources, drag.sources, drag.timelines})
        flags.append(flag ? '\1' : '\0');
    return flags;
}

std::unique_ptr<QMimeData> tst_ProjectViewTreeDrop::DataOf(const DropModel::Drag& drag) const
{
    auto data = std::make_unique<QMimeData>();
    if (drag.areFiles)
    {
        data->setUrls({QUrl::fromLocalFile(QStringLiteral("/media/a.mov"))});
        return data;
    }
    // The ids don't matter: what moves is the selection.
    data->setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, QByteArray(4, '\0'));
    data->setData(UiGlobals::ALLOWED_DROP_TYPES, Flags(drag));
    return data;
}

bool tst_ProjectViewTreeDrop::Enter(const QMimeData* data)
{
    QDragEnterEvent event(QPoint(5, 5), Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(mTree->viewport(), &event);
    return event.isAccepted();
}

/// Whether the tree takes @p data at @p pos.
bool tst_ProjectViewTreeDrop::Move(const QMimeData* data, const QPoint& pos)
{
    // Moves are sent on only to where the drag has entered.
    if (!Enter(data))
        return false;
    QDragMoveEvent event(pos, Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    event.setDropAction(Qt::CopyAction);
    event.ignore();
    QApplication::sendEvent(mTree->viewport(), &event);
    Q_ASSERT(event.isAccepted() == (event.dropAction() == Qt::MoveAction));
    return event.isAccepted() && event.dropAction() == Qt::MoveAction;
}

void tst_ProjectViewTreeDrop::Drop(const QMimeData* data, const QPoint& pos)
{
    QDropEvent event(pos, Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(mTree->viewport(), &event);
}

void tst_ProjectViewTreeDrop::RandomTreesFollowTheSecondStatement_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 50; ++seed)
        QTest::addRow("%u", seed) << seed;
}

void tst_ProjectViewTreeDrop::RandomTreesFollowTheSecondStatement()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    mRoot = MakeRandom(random, random.bounded(8, 36), random.bounded(1, 5));
    // Some selections begin in the middle.
    Fill();
    const QList<QTreeWidgetItem*> rows = Rows(mTree);
    if (seed % 2 == 0)
    {
        mTree->clearSelection();
        for (int count = random.bounded(4); count > 0; --count)
            rows[random.bounded(rows.size())]->setSelected(true);
    }
    if (seed % 5 == 0)
    {
        for (QTreeWidgetItem* const row : rows)
            row->setSizeHint(0, QSize(0, random.bounded(12, 40)));
    }
    const DropModel model(mTree);
    const QImage bare = mTree->viewport()->grab().toImage();
    const QRect last = mTree->visualItemRect(rows.last());
    const int bottom = std::min(std::max(last.bottom(), 300) + 10, mTree->viewport()->height());
    QUuid parentID;
    int taken = 0;
    for (int round = 0; round < 100; ++round)
    {
        DropModel::Drag drag;
        drag.areFiles = random.bounded(4) == 0;
        drag.general = random.bounded(12) > 0;
        drag.folders = random.bounded(2) == 0;
        drag.sources = random.bounded(2) == 0;
        drag.timelines = random.bounded(2) == 0;
        const auto data = DataOf(drag);
        const QPoint pos(random.bounded(5, 300), random.bounded(0, bottom));
        const auto place = model.PlaceOf(drag, pos.y());
        const QByteArray where = QByteArray::number(round) + " at " + QByteArray::number(pos.y());
        QVERIFY2(Move(data.get(), pos) == place.has_value(), where);
        if (place && place->hasParent)
            parentID = place->parentID;
        if (round % 5 == 0)
        {
            QImage expected = bare;
            if (place)
            {
                QPainter painter(&expected);
                const QRect rect = place->markedRect;
                const int y = place->mark == DropModel::Place::LineUnder ? rect.bottom() + 1 : rect.top();
                if (place->mark == DropModel::Place::Frame)
                    painter.drawRect(rect);
                else
                    painter.drawLine(rect.left(), y, mTree->width(), y);
            }
            const QByteArray difference = PictureDifference(mTree->viewport()->grab().toImage(), expected);
            QVERIFY2(difference.isEmpty(), where + ": " + difference);
        }
        mMoved->clear();
        mInserted->clear();
        Drop(data.get(), pos);
        if (!place)
        {
            QVERIFY2(mMoved->isEmpty() && mInserted->isEmpty(), where);
            continue;
        }
        ++taken;
        if (drag.areFiles)
        {
            QCOMPARE(mInserted->size(), 1);
            QVERIFY2(mInserted->first()[1].toUuid() == parentID, where);
            QVERIFY2(mInserted->first()[2].value<QList<int>>() == QList<int>({place->index}), where);
            continue;
        }
        QVERIFY2(!mMoved->isEmpty(), where);
        for (int index = 0; index < mMoved->size(); ++index)
        {
            QVERIFY2(mMoved->at(index)[1].toUuid() == parentID, where);
            const int expected = place->index < 0 ? -1 : place->index + index;
            QVERIFY2(mMoved->at(index)[2].toInt() == expected, where);
        }
    }
    mTaken += taken;
    QVERIFY(PictureDifference(mTree->viewport()->grab().toImage(), bare).isEmpty());
}

void tst_ProjectViewTreeDrop::ManyRandomDropsWereTaken()
{
    QVERIFY2(mTaken > 1000, qPrintable(QString::number(mTaken)));
}

void tst_ProjectViewTreeDrop::TheMiddleOfARowTakes_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("taken");
    const auto row = [](const char* name, const char* taken)
    { QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(taken); };
    // Files, folders, source timelines, other timelines, a mixture.
    row("plain", "FfstM");
    row("folders", "-f---");
    row("sources", "F-s--");
    row("timelines", "---t-");
    row("top timeline", "-----");
    row("in folders", "FfstM");
    row("in sources", "F-s--");
    row("in timelines", "---t-");
    row("in plain", "-----");
}

void tst_ProjectViewTreeDrop::TheMiddleOfARowTakes()
{
    QFETCH(QString, row);
    QFETCH(QString, taken);
    for (const char* name : {"plain", "folders", "sources", "timelines"})
    {
        const auto folder = AddFolder(mRoot, QLatin1String(name));
        folder->isFolderBin = folder->name == QLatin1String("folders");
        folder->isSourceBin = folder->name == QLatin1String("sources");
        folder->isTimelineBin = folder->name == QLatin1String("timelines");
        // The nearest parent is of another kind, which doesn't matter.
        const auto inner = AddFolder(folder, QStringLiteral("inner"));
        inner->isSourceBin = !folder->isSourceBin;
        AddTimeline(inner, QStringLiteral("in ") + folder->name);
    }
    AddTimeline(mRoot, QStringLiteral("top timeline"));
    Expand();
    Fill();
    RowOf(mTree, QStringLiteral("top timeline"))->setSelected(true);
    DropModel::Drag drags[5];
    drags[0].areFiles = true;
    for (int kind = 1; kind < 5; ++kind)
        drags[kind].general = true;
    drags[1].folders = true;
    drags[2].sources = true;
    drags[3].timelines = true;
    const QString letters = QStringLiteral("FfstM");
    QString actual;
    for (int kind = 0; kind < 5; ++kind)
        actual += Move(DataOf(drags[kind]).get(), MiddleOf(row)) ? letters[kind] : QLatin1Char('-');
    QCOMPARE(actual, taken);
    // What is locked out in the drag is refused everywhere.
    DropModel::Drag locked;
    QVERIFY(!Move(DataOf(locked).get(), MiddleOf(row)));
    locked.folders = locked.sources = locked.timelines = true;
    QVERIFY(!Move(DataOf(locked).get(), MiddleOf(row)));
}

void tst_ProjectViewTreeDrop::NearItsEdgeAFolderNeedsItsNeighbour()
{
    AddFolder(mRoot, QStringLiteral("sources"))->isSourceBin = true;
    AddFolder(mRoot, QStringLiteral("plain"));
    AddTimeline(mRoot, QStringLiteral("cut"));
    Fill();
    RowOf(mTree, QStringLiteral("cut"))->setSelected(true);
    DropModel::Drag drag;
    drag.general = drag.timelines = true;
    const auto data = DataOf(drag);
    const QRect rect = RectOf(QStringLiteral("plain"));
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        QCOMPARE(Move(data.get(), QPoint(50, y)), y >= rect.top() + 3 && y <= rect.bottom() - 3);
    drag.timelines = false;
    drag.sources = true;
    const auto sources = DataOf(drag);
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        QCOMPARE(Move(sources.get(), QPoint(50, y)), y <= rect.bottom() - 3);
}

void tst_ProjectViewTreeDrop::ADragNeedsItsParts()
{
    AddFolder(mRoot, QStringLiteral("plain"));
    Fill();
    const QPoint pos = MiddleOf(QStringLiteral("plain"));
    QMimeData data;
    QVERIFY(!Move(&data, pos));
    data.setText(QStringLiteral("text"));
    QVERIFY(!Move(&data, pos));
    data.setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, QByteArray(1, '\0'));
    data.setData(UiGlobals::ALLOWED_DROP_TYPES, QByteArray(5, '\1'));
    // Without a selection there is nothing to move.
    QVERIFY(!Move(&data, pos));
    mTree->topLevelItem(0)->setSelected(true);
    // One byte is not nothing, though no list of ids.
    QVERIFY(Move(&data, pos));
    data.setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, QByteArray());
    QVERIFY(!Move(&data, pos));
    data.setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, QByteArray(4, '\0'));
    data.setData(UiGlobals::ALLOWED_DROP_TYPES, QByteArray(4, '\1'));
    QVERIFY(!Move(&data, pos));
    data.setData(UiGlobals::ALLOWED_DROP_TYPES, QByteArray(6, '\1'));
    QVERIFY(Move(&data, pos));
    data.setData(UiGlobals::ALLOWED_DROP_TYPES, QByteArray("\0\1\1\1\1", 5));
    QVERIFY(!Move(&data, pos));
    QVERIFY(!Move(&data, QPoint(50, 600)));
}

void tst_ProjectViewTreeDrop::AnyFileOrProjectObjectEnters()
{
    Fill();
    const auto enters = [this](const QMimeData& data)
    {
        QDragEnterEvent event(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.setDropAction(Qt::MoveAction);
        event.ignore();
        QApplication::sendEvent(mTree->viewport(), &event);
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    };
    QMimeData data;
    QVERIFY(!enters(data));
    data.setData(UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE, QByteArray(4, '\0'));
    QVERIFY(!enters(data));
    data.setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, QByteArray());
    QVERIFY(enters(data));
    data.clear();
    data.setUrls({QUrl(QStringLiteral("http://host/x"))});
    QVERIFY(enters(data));
}

void tst_ProjectViewTreeDrop::RefusedMovesShowNothing()
{
    AddFolder(mRoot, QStringLiteral("folders"))->isFolderBin = true;
    AddTimeline(std::static_pointer_cast<FakeObject>(mRoot->children[0]), QStringLiteral("cut"));
    Fill();
    const QImage bare = mTree->viewport()->grab().toImage();
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/media/a.mov"))});
    Enter(&files);
    QDragMoveEvent event(MiddleOf(QStringLiteral("folders")), Qt::CopyAction, &files, Qt::LeftButton,
                         Qt::NoModifier);
    QApplication::sendEvent(mTree->viewport(), &event);
    QCOMPARE(event.dropAction(), Qt::IgnoreAction);
    QVERIFY(PictureDifference(mTree->viewport()->grab().toImage(), bare).isEmpty());
}

void tst_ProjectViewTreeDrop::FilesComeSortedWithEqualIndices()
{
    const auto sources = AddFolder(mRoot, QStringLiteral("sources"));
    sources->isSourceBin = true;
    for (int index = 0; index < 3; ++index)
        AddSource(sources, QStringLiteral("source %1").arg(index));
    Expand();
    Fill();
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/m/b.mov")), QUrl(QStringLiteral("http://host/x")),
                   QUrl::fromLocalFile(QStringLiteral("/m/A.mov"))});
    const QPoint pos = MiddleOf(QStringLiteral("source 2"));
    QVERIFY(Move(&files, pos));
    Drop(&files, pos);
    QCOMPARE(mInserted->size(), 1);
    QCOMPARE(mInserted->first()[0].value<QList<QString>>(),
             QList<QString>({QStringLiteral("/m/A.mov"), QStringLiteral("/m/b.mov")}));
    QCOMPARE(mInserted->first()[1].toUuid(), sources->GetID());
    QCOMPARE(mInserted->first()[2].value<QList<int>>(), QList<int>({2, 2}));
    QVERIFY(mMoved->isEmpty());
}

void tst_ProjectViewTreeDrop::ADropWithoutLocalFilesSendsNothing()
{
    AddFolder(mRoot, QStringLiteral("plain"));
    Fill();
    QMimeData files;
    files.setUrls({QUrl(QStringLiteral("http://host/x"))});
    const QPoint pos = MiddleOf(QStringLiteral("plain"));
    QVERIFY(Move(&files, pos));
    Drop(&files, pos);
    QVERIFY(mInserted->isEmpty() && mMoved->isEmpty());
}

void tst_ProjectViewTreeDrop::ObjectsMoveOneAfterTheOther()
{
    const auto bin = AddFolder(mRoot, QStringLiteral("folders"));
    bin->isFolderBin = true;
    for (int index = 0; index < 3; ++index)
        AddTimeline(bin, QStringLiteral("here %1").arg(index));
    const auto shelf = AddFolder(mRoot, QStringLiteral("shelf"));
    QList<QUuid> ids;
    for (int index = 0; index < 3; ++index)
        ids << AddTimeline(shelf, QStringLiteral("there %1").arg(index))->GetID();
    Expand();
    Fill();
    // Selected in another order than that of the tree.
    for (const int index : {2, 0, 1})
        RowOf(mTree, QStringLiteral("there %1").arg(index))->setSelected(true);
    DropModel::Drag drag;
    drag.general = drag.timelines = true;
    const auto data = DataOf(drag);
    const QPoint pos = MiddleOf(QStringLiteral("here 2"));
    QVERIFY(Move(data.get(), pos));
    Drop(data.get(), pos);
    QCOMPARE(mMoved->size(), 3);
    for (int index = 0; index < 3; ++index)
        QCOMPARE(mMoved->at(index), QVariantList({ids[index], bin->GetID(), 2 + index}));
    // The place went on with them; without another move the next drop lands behind.
    Enter(data.get());
    Drop(data.get(), pos);
    QCOMPARE(mMoved->at(3)[2].toInt(), 5);
}

void tst_ProjectViewTreeDrop::AnIndexAtTheEndStays()
{
    const auto plain = AddFolder(mRoot, QStringLiteral("plain"));
    QList<QUuid> ids;
    for (int index = 0; index < 3; ++index)
        ids << AddTimeline(mRoot, QStringLiteral("cut %1").arg(index))->GetID();
    Fill();
    for (int index = 0; index < 3; ++index)
        RowOf(mTree, QStringLiteral("cut %1").arg(index))->setSelected(true);
    DropModel::Drag drag;
    drag.general = drag.timelines = true;
    const auto data = DataOf(drag);
    const QPoint pos = MiddleOf(QStringLiteral("plain"));
    QVERIFY(Move(data.get(), pos));
    Drop(data.get(), pos);
    QCOMPARE(mMoved->size(), 3);
    for (int index = 0; index < 3; ++index)
        QCOMPARE(mMoved->at(index), QVariantList({ids[index], plain->GetID(), -1}));
}

void tst_ProjectViewTreeDrop::AChildMovesWithItsSelectedFolder()
{
    const auto folder = AddFolder(mRoot, QStringLiteral("folder"));
    const auto inner = AddFolder(folder, QStringLiteral("inner"));
    AddTimeline(inner, QStringLiteral("grandchild"));
    const auto after = AddFolder(mRoot, QStringLiteral("after"));
    const auto lone = AddTimeline(after, QStringLiteral("lone"));
    const auto target = AddFolder(mRoot, QStringLiteral("target"));
    Expand();
    Fill();
    for (const char* name : {"grandchild", "lone", "folder"})
        RowOf(mTree, QLatin1String(name))->setSelected(true);
    DropModel::Drag drag;
    drag.general = true;
    const auto data = DataOf(drag);
    const QPoint pos = MiddleOf(QStringLiteral("target"));
    QVERIFY(Move(data.get(), pos));
    Drop(data.get(), pos);
    QCOMPARE(mMoved->size(), 2);
    QCOMPARE(mMoved->at(0), QVariantList({folder->GetID(), target->GetID(), -1}));
    QCOMPARE(mMoved->at(1), QVariantList({lone->GetID(), target->GetID(), -1}));
}

void tst_ProjectViewTreeDrop::TheMiddleOfATimelineIsItsOwnIndex()
{
    const auto bin = AddFolder(mRoot, QStringLiteral("timelines"));
    bin->isTimelineBin = true;
    for (int index = 0; index < 4; ++index)
        AddTimeline(bin, QStringLiteral("cut %1").arg(index));
    Expand();
    Fill();
    DropModel::Drag drag;
    drag.general = drag.timelines = true;
    const auto data = DataOf(drag);
    for (const int selected : {0, 2, 3})
    {
        mTree->clearSelection();
        RowOf(mTree, QStringLiteral("cut %1").arg(selected))->setSelected(true);
        // A row of odd height has its middle half of it, rounded down, from both edges.
        RowOf(mTree, QStringLiteral("cut 2"))->setSizeHint(0, QSize(0, 21));
        const QRect rect = RectOf(QStringLiteral("cut 2"));
        QCOMPARE(rect.height(), 21);
        const QPoint pos(60, rect.top() + 10);
        QVERIFY(Move(data.get(), pos));
        mMoved->clear();
        Drop(data.get(), pos);
        QCOMPARE(mMoved->first()[2].toInt(), 2);
    }
}

void tst_ProjectViewTreeDrop::DraggingDownPastASibling()
{
    const auto bin = AddFolder(mRoot, QStringLiteral("timelines"));
    bin->isTimelineBin = true;
    for (int index = 0; index < 4; ++index)
        AddTimeline(bin, QStringLiteral("cut %1").arg(index));
    Expand();
    Fill();
    RowOf(mTree, QStringLiteral("cut 0"))->setSelected(true);
    DropModel::Drag drag;
    drag.general = drag.timelines = true;
    const auto data = DataOf(drag);
    const QRect rect = RectOf(QStringLiteral("cut 2"));
    QVERIFY(Move(data.get(), QPoint(60, rect.top() + 2)));
    Drop(data.get(), QPoint(60, rect.top() + 2));
    QCOMPARE(mMoved->last()[2].toInt(), 1);
    QVERIFY(Move(data.get(), QPoint(60, rect.bottom() - 2)));
    Drop(data.get(), QPoint(60, rect.bottom() - 2));
    QCOMPARE(mMoved->last()[2].toInt(), 2);
}

void tst_ProjectViewTreeDrop::TopLevelFoldersHaveNoIndex()
{
    for (int index = 0; index < 4; ++index)
        AddFolder(mRoot, QStringLiteral("folder %1").arg(index));
    Fill();
    DropModel::Drag drag;
    drag.general = drag.folders = true;
    const auto data = DataOf(drag);
    const QRect rect = RectOf(QStringLiteral("folder 2"));
    for (const int selected : {0, 3})
    {
        mTree->clearSelection();
        RowOf(mTree, QStringLiteral("folder %1").arg(selected))->setSelected(true);
        QVERIFY(Move(data.get(), QPoint(60, rect.bottom())));
        Drop(data.get(), QPoint(60, rect.bottom()));
        QCOMPARE(mMoved->last()[1].toUuid(), mRoot->GetID());
        QCOMPARE(mMoved->last()[2].toInt(), -1);
    }
}

void tst_ProjectViewTreeDrop::DeadRowsAndParentsRefuse()
{
    auto top = AddFolder(mRoot, QStringLiteral("timelines"));
    top->isTimelineBin = true;
    auto inner = AddFolder(top, QStringLiteral("inner"));
    const auto cut = AddTimeline(inner, QStringLiteral("cut"));
    auto dead = AddFolder(mRoot, QStringLiteral("dead"));
    Expand();
    Fill();
    RowOf(mTree, QStringLiteral("cut"))->setSelected(true);
    DropModel::Drag drag;
    drag.general = drag.timelines = true;
    const auto data = DataOf(drag);
    const QPoint pos = MiddleOf(QStringLiteral("cut"));
    QVERIFY(Move(data.get(), pos));
    QVERIFY(Move(data.get(), MiddleOf(QStringLiteral("dead"))));
    mRoot->children.removeLast();
    dead.reset();
    QVERIFY(!Move(data.get(), MiddleOf(QStringLiteral("dead"))));
    // With a dead parent the drop is taken, for the place found before.
    QVERIFY(Move(data.get(), MiddleOf(QStringLiteral("timelines"))));
    top->children.clear();
    inner.reset();
    QVERIFY(Move(data.get(), pos));
    Drop(data.get(), pos);
    QCOMPARE(mMoved->last(), QVariantList({cut->GetID(), top->GetID(), -1}));
    mRoot->children.clear();
    top.reset();
    QVERIFY(!Move(data.get(), pos));
    mMoved->clear();
    Drop(data.get(), pos);
    QVERIFY(mMoved->isEmpty());
}

void tst_ProjectViewTreeDrop::AHostMayRebuildDuringADrop()
{
    const auto target = AddFolder(mRoot, QStringLiteral("target"));
    for (int index = 0; index < 5; ++index)
        AddTimeline(mRoot, QStringLiteral("cut %1").arg(index))->SetSelected(true);
    Fill();
    connect(mView.get(), &ProjectView::ProjectObjectMoved, mView.get(), [this] { mView->Update(); });
    DropModel::Drag drag;
    drag.general = drag.timelines = true;
    const auto data = DataOf(drag);
    const QPoint pos = MiddleOf(QStringLiteral("target"));
    QVERIFY(Move(data.get(), pos));
    Drop(data.get(), pos);
    QCOMPARE(mMoved->size(), 5);
}

void tst_ProjectViewTreeDrop::TinyRowsEnd()
{
    for (int index = 0; index < 60; ++index)
        AddFolder(mRoot, QString::number(index));
    Fill();
    QRandomGenerator random(3);
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/media/a.mov"))});
    for (int round = 0; round < 20; ++round)
    {
        for (QTreeWidgetItem* const row : Rows(mTree))
            row->setSizeHint(0, QSize(0, random.bounded(1, 9)));
        for (int y = 0; y < 300; ++y)
            Move(&files, QPoint(50, y));
    }
    QVERIFY(mInserted->isEmpty());
}

void tst_ProjectViewTreeDrop::LeavingAndDroppingTakeTheMarkAway()
{
    AddFolder(mRoot, QStringLiteral("plain"));
    Fill();
    const QImage bare = mTree->viewport()->grab().toImage();
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/media/a.mov"))});
    const QPoint pos = MiddleOf(QStringLiteral("plain"));
    const auto isMarked = [this, &bare]
    { return !PictureDifference(mTree->viewport()->grab().toImage(), bare).isEmpty(); };
    Enter(&files);
    QVERIFY(!isMarked());
    Move(&files, pos);
    QVERIFY(isMarked());
    QDragLeaveEvent leave;
    QApplication::sendEvent(mTree->viewport(), &leave);
    QVERIFY(!isMarked());
    Enter(&files);
    QVERIFY(isMarked());
    Drop(&files, pos);
    QVERIFY(!isMarked());
    // A refused drop ends the drag as well.
    Move(&files, pos);
    QVERIFY(isMarked());
    Drop(&files, QPoint(50, 600));
    QVERIFY(!isMarked());
}

static const TestRegistration<tst_ProjectViewTreeDrop> ProjectViewTreeDropRegistration;

#include "tst_ProjectViewTreeDrop.moc"
