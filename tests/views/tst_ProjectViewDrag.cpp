// SPDX-License-Identifier: MIT
#include "kit/UiGlobals.h"
#include "support/TestRegistry.h"
#include "views/FakeProject.h"
#include "views/ProjectView.h"
#include "views/ProjectViewTreeWidget.h"

#include <QDataStream>
#include <QDrag>
#include <QMimeData>
#include <QtTest>

using namespace FakeProject;

/// What a drag of the project tree carries.
class tst_ProjectViewDrag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void FlagsTellWhatIsDragged_data();
    void FlagsTellWhatIsDragged();
    void IDsComeInTreeOrder();
    void ALockedOutObjectEndsThePayload();
    void ADeadObjectEndsThePayload();
    void NothingSelectedIsNoDrag();
};

namespace
{

/// A tree whose drags tests begin themselves.
class DraggableTree : public ProjectViewTreeWidget
{
public:
    /// Begins a drag and gives what it carries; null if it made none. The drag ends at once where there is no
    /// window system to carry it.
    const QMimeData* Drag()
    {
        startDrag(Qt::CopyAction | Qt::MoveAction);
        const auto* const drag = findChild<QDrag*>();
        return drag ? drag->mimeData() : nullptr;
    }

    void AddSelected(const std::shared_ptr<ProjectObject>& object)
    {
        auto* const row = new QTreeWidgetItem(this);
        row->setData(0, Qt::UserRole, object->GetID());
        row->setData(0, Qt::UserRole + 1, QVariant::fromValue(std::weak_ptr<ProjectObject>(object)));
        row->setSelected(true);
    }
};

QList<QUuid> IDsOf(const QMimeData* data)
{
    QByteArray bytes = data->data(QStringLiteral("merovane/proj-obj-uuid"));
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    QList<QUuid> ids;
    stream >> ids;
    return ids;
}

QByteArray FlagsOf(const QMimeData* data)
{
    return data->data(QStringLiteral("merovane/allowed-drop-types"));
}

} // namespace

void tst_ProjectViewDrag::FlagsTellWhatIsDragged_data()
{
    QTest::addColumn<QString>("kinds");
    QTest::addColumn<QByteArray>("flags");
    const auto row = [](const char* name, const char* kinds, const char* flags)
    { QTest::newRow(name) << QString::fromLatin1(kinds) << QByteArray::fromHex(flags); };
    // f folder, s source timeline, t other timeline, e element, p protected folder, F S T special folders, o
    // an object of an unknown type, E an element that says it is a source timeline.
    row("folder", "f", "0101000000");
    row("folders", "fff", "0101000000");
    row("source timeline", "s", "0100010100");
    row("source timelines", "ss", "0100010100");
    row("timeline", "t", "0100000001");
    row("timelines", "tt", "0100000001");
    row("folder and timeline", "ft", "0100000000");
    row("timeline and folder", "tf", "0100000000");
    row("folder and source timeline", "sf", "0100000000");
    row("both kinds of timelines", "st", "0100000000");
    row("all kinds", "tsf", "0100000000");
    row("protected folder", "p", "0000000000");
    row("folder for folders", "F", "0000000000");
    row("folder for sources", "S", "0000000000");
    row("folder for timelines", "T", "0000000000");
    row("locked out among others", "ffp", "0000000000");
    row("locked out before others", "pff", "0000000000");
    // Of other types the rules ask no more than this.
    row("element", "e", "0000000001");
    row("unknown", "o", "0000000001");
    row("element with timeline", "et", "0000000001");
    row("element that stands for a source", "E", "0000010100");
}

void tst_ProjectViewDrag::FlagsTellWhatIsDragged()
{
    QFETCH(QString, kinds);
    QFETCH(QByteArray, flags);
    const auto root = AddFolder(nullptr, QStringLiteral("root"));
    DraggableTree tree;
    for (const QChar kind : kinds)
    {
        const QString name(kind);
        if (name == QLatin1String("s"))
        {
            AddSource(root, name);
        }
        else if (name == QLatin1String("t"))
        {
            AddTimeline(root, name);
        }
        else if (name == QLatin1String("e") || name == QLatin1String("E") || name == QLatin1String("o"))
        {
            AddObject(root, name, name == QLatin1String("o") ? 7 : 2)->isSourceTimeline =
                name == QLatin1String("E");
        }
        else
        {
            const auto folder = AddFolder(root, name);
            folder->isProtected = name == QLatin1String("p");
            folder->isFolderBin = name == QLatin1String("F");
            folder->isSourceBin = name == QLatin1String("S");
            folder->isTimelineBin = name == QLatin1String("T");
        }
        tree.AddSelected(root->children.last());
    }
    const QMimeData* const data = tree.Drag();
    QVERIFY(data);
    QCOMPARE(FlagsOf(data), flags);
    QCOMPARE(FlagsOf(data)[2], FlagsOf(data)[3]);
    QCOMPARE(data->formats().size(), 2);
}

void tst_ProjectViewDrag::IDsComeInTreeOrder()
{
    const auto root = AddFolder(nullptr, QStringLiteral("root"));
    DraggableTree tree;
    for (int index = 0; index < 4; ++index)
        tree.AddSelected(AddTimeline(root, QString::number(index)));
    tree.clearSelection();
    for (const int index : {3, 0, 2})
        tree.topLevelItem(index)->setSelected(true);
    const QMimeData* const data = tree.Drag();
    QCOMPARE(IDsOf(data), QList<QUuid>({root->children[0]->GetID(), root->children[2]->GetID(),
                                        root->children[3]->GetID()}));
    QCOMPARE(data->data(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE).size(), 4 + 3 * 16);
}

void tst_ProjectViewDrag::ALockedOutObjectEndsThePayload()
{
    const auto root = AddFolder(nullptr, QStringLiteral("root"));
    DraggableTree tree;
    for (int index = 0; index < 4; ++index)
    {
        AddFolder(root, QString::number(index))->isProtected = index == 2;
        tree.AddSelected(root->children.last());
    }
    QCOMPARE(IDsOf(tree.Drag()), QList<QUuid>({root->children[0]->GetID(), root->children[1]->GetID(),
                                               root->children[2]->GetID()}));
}

void tst_ProjectViewDrag::ADeadObjectEndsThePayload()
{
    const auto root = AddFolder(nullptr, QStringLiteral("root"));
    DraggableTree tree;
    QList<QUuid> ids;
    for (int index = 0; index < 3; ++index)
    {
        tree.AddSelected(AddTimeline(root, QString::number(index)));
        ids << root->children.last()->GetID();
    }
    root->children.removeAt(1);
    const QMimeData* const data = tree.Drag();
    QCOMPARE(IDsOf(data), ids.mid(0, 2));
    QCOMPARE(FlagsOf(data), QByteArray(5, '\0'));
}

void tst_ProjectViewDrag::NothingSelectedIsNoDrag()
{
    const auto root = AddFolder(nullptr, QStringLiteral("root"));
    DraggableTree tree;
    tree.AddSelected(AddTimeline(root, QStringLiteral("cut")));
    tree.clearSelection();
    QVERIFY(!tree.Drag());
}

static const TestRegistration<tst_ProjectViewDrag> ProjectViewDragRegistration;

#include "tst_ProjectViewDrag.moc"
