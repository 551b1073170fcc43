// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "project/ElementTimeline.h"
#include "project/MediaTimeline.h"
#include "project/Project.h"
#include "project/ProjectSamples.h"
#include "support/TestRegistry.h"

#include <QtTest>

using ProjectSamples::Written;

namespace
{

/// The tree said once more, plainly: what stands in what, in which order.
struct PlainTree
{
    struct Node
    {
        QUuid parent;
        int type = 0;
        bool ofSource = false;
        FolderKind kind = FolderKind::Plain;
        QList<QUuid> children;
    };

    QHash<QUuid, Node> nodes;
    QUuid root;

    static PlainTree Of(const Project& project)
    {
        PlainTree tree;
        tree.root = project.Root()->GetID();
        tree.Enter(project.Root(), QUuid());
        return tree;
    }

    void Enter(const std::shared_ptr<ProjectObject>& object, const QUuid& parent)
    {
        Node node;
        node.parent = parent;
        node.type = object->GetType();
        node.ofSource = object->IsSourceTimeline();
        if (const auto* const folder = dynamic_cast<const FolderObject*>(object.get()))
            node.kind = folder->Kind();
        if (node.type == 0)
        {
            for (const auto& child : object->GetChildren())
            {
                node.children.append(child->GetID());
                Enter(child, object->GetID());
            }
        }
        nodes.insert(object->GetID(), node);
    }

    bool Takes(const QUuid& folder, const QUuid& id) const
    {
        const Node& child = nodes[id];
        switch (nodes[folder].kind)
        {
        case FolderKind::Folders:
            return child.type == 0;
        case FolderKind::Sources:
            return child.type == 1 && child.ofSource;
        case FolderKind::Timelines:
            return child.type == 1 && !child.ofSource;
        case FolderKind::Plain:
            return true;
        default:
            return false;
        }
    }

    bool IsBelow(QUuid id, const QUuid& ancestor) const
    {
        for (; !id.isNull(); id = nodes[id].parent)
        {
            if (id == ancestor)
                return true;
        }
        return false;
    }

    void Move(const QUuid& id, const QUuid& folder, int index)
    {
        if (!nodes.contains(id) || !nodes.contains(folder) || nodes[folder].type != 0)
            return;
        if (nodes[id].kind != FolderKind::Plain || IsBelow(folder, id))
            return;
        QUuid target = folder;
        if (folder == root)
        {
            index = -1;
            for (const QUuid& bin : nodes[root].children)
            {
                if (Takes(bin, id))
                    target = bin;
            }
        }
        if (!Takes(target, id))
            return;
        nodes[nodes[id].parent].children.removeOne(id);
        QList<QUuid>& siblings = nodes[target].children;
        siblings.insert(index < 0 || index > siblings.size() ? siblings.size() : index, id);
        nodes[id].parent = target;
    }

    void Remove(const QUuid& id)
    {
        if (!nodes.contains(id) || nodes[id].kind != FolderKind::Plain)
            return;
        nodes[nodes[id].parent].children.removeOne(id);
        Forget(id);
    }

    void Forget(const QUuid& id)
    {
        const QList<QUuid> children = nodes[id].children;
        for (const QUuid& child : children)
            Forget(child);
        nodes.remove(id);
    }

    QStringList Lines(const QUuid& id, int depth = 0) const
    {
        QStringList lines{QString(depth, QLatin1Char(' ')) + id.toString()};
        for (const QUuid& child : nodes[id].children)
            lines += Lines(child, depth + 1);
        return lines;
    }
};

} // namespace

class tst_ProjectUndo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void RandomStepsAreTakenBackAndMadeAgain_data();
    void RandomStepsAreTakenBackAndMadeAgain();
    void MovesAndRemovalsAgreeWithThePlainTree_data();
    void MovesAndRemovalsAgreeWithThePlainTree();
    void EveryObjectIsFoundByItsId();
    void ALargeFolderIsRemovedQuickly();
};

void tst_ProjectUndo::RandomStepsAreTakenBackAndMadeAgain_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 12; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void tst_ProjectUndo::RandomStepsAreTakenBackAndMadeAgain()
{
    QFETCH(int, seed);
    QRandomGenerator random(static_cast<quint32>(seed));
    Project project;
    QUndoStack& stack = *project.UndoStack();
    // What the project was after as many steps; merged steps leave the last.
    QMap<int, QByteArray> states{{0, Written(project)}};
    for (int change = 0; change < 250; ++change)
    {
        ProjectSamples::ChangeAtRandom(project, random);
        states[stack.index()] = Written(project);
        if (random.bounded(10) == 0)
        {
            for (int back = random.bounded(1, 6); back > 0 && stack.canUndo(); --back)
            {
                stack.undo();
                QCOMPARE(Written(project), states[stack.index()]);
            }
        }
    }
    const QByteArray last = Written(project);
    const int count = stack.index();
    QVERIFY(count > 80);
    while (stack.canUndo())
    {
        stack.undo();
        QVERIFY2(Written(project) == states[stack.index()],
                 qPrintable(QStringLiteral("undo to %1: %2").arg(stack.index()).arg(stack.redoText())));
    }
    QCOMPARE(stack.index(), 0);
    while (stack.index() < count)
        stack.redo();
    QCOMPARE(Written(project), last);
}

void tst_ProjectUndo::MovesAndRemovalsAgreeWithThePlainTree_data()
{
    RandomStepsAreTakenBackAndMadeAgain_data();
}

void tst_ProjectUndo::MovesAndRemovalsAgreeWithThePlainTree()
{
    QFETCH(int, seed);
    QRandomGenerator random(static_cast<quint32>(seed));
    Project project;
    for (int index = 0; index < 60; ++index)
    {
        const auto folders = PlainTree::Of(project).nodes.keys();
        const QUuid folder = folders[random.bounded(folders.size())];
        if (index % 3 == 0)
            project.AddFolder(folder, random.bounded(-1, 4));
        else if (index % 3 == 1)
            project.AddTimeline(folder, random.bounded(-1, 4));
        else
            project.AddSource(ProjectSamples::Medium(QString::number(index)), folder, random.bounded(-1, 4));
    }
    PlainTree tree = PlainTree::Of(project);
    for (int change = 0; change < 300; ++change)
    {
        const QList<QUuid> ids = tree.nodes.keys();
        const QUuid id = ids[random.bounded(ids.size())];
        if (random.bounded(20) == 0)
        {
            tree.Remove(id);
            project.Remove({id});
        }
        else
        {
            const QUuid folder = ids[random.bounded(ids.size())];
            const int index = random.bounded(-2, 6);
            tree.Move(id, folder, index);
            project.Move(id, folder, index);
        }
        QCOMPARE(PlainTree::Of(project).Lines(tree.root), tree.Lines(tree.root));
    }
}

void tst_ProjectUndo::EveryObjectIsFoundByItsId()
{
    QRandomGenerator random(99);
    Project project;
    for (int change = 0; change < 400; ++change)
    {
        ProjectSamples::ChangeAtRandom(project, random);
        if (random.bounded(8) == 0)
            project.UndoStack()->undo();
        ProjectContent fresh;
        fresh.Register(project.Root());
        QCOMPARE(fresh.objects.size(), project.Content().objects.size());
        for (const auto& object : fresh.objects)
        {
            QCOMPARE(project.Find(object->GetID()), object);
            if (object != project.Root())
                QVERIFY(project.Find(object->GetParentID()) != nullptr);
        }
    }
}

void tst_ProjectUndo::ALargeFolderIsRemovedQuickly()
{
    Project project;
    project.UndoStack()->beginMacro("Fill");
    ProjectContent empty;
    const QUuid bin = project.Content().Bin(FolderKind::Folders)->GetID();
    QList<QUuid> ids;
    for (int index = 0; index < 10000; ++index)
        ids.append(project.AddFolder(bin, -1, QString::number(index)));
    project.UndoStack()->endMacro();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(project.Remove(ids));
    QCOMPARE(project.Find(bin)->GetChildren().size(), 0);
    project.UndoStack()->undo();
    QCOMPARE(project.Find(bin)->GetChildren().size(), 10000);
    QVERIFY2(timer.elapsed() < 20000, QByteArray::number(timer.elapsed()));
}

static const TestRegistration<tst_ProjectUndo> ProjectUndoRegistration;

#include "tst_ProjectUndo.moc"
