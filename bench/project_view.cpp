// SPDX-License-Identifier: MIT
#include "host/ProjectObject.h"
#include "host/Settings.h"
#include "views/ProjectView.h"

#include <QApplication>
#include <QIcon>
#include <QTreeWidget>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

// What ProjectView::Update() costs, against building the same rows in a bare QTreeWidget; and what the user
// does with ten thousand rows. Update() may take twice as long as the bare tree; `x_floor` tells.

namespace
{

/// An object of a project whose answers are plain members.
class BenchObject : public ProjectObject
{
public:
    BenchObject(const QUuid& parentID, int type, const QString& name)
        : ProjectObject(QUuid::createUuid(), parentID), mType(type), mName(name)
    {
    }

    const QString& GetName() override { return mName; }
    int GetType() override { return mType; }
    QList<std::shared_ptr<ProjectObject>> GetChildren() override { return children; }

    QList<std::shared_ptr<ProjectObject>> children;

private:
    int mType;
    QString mName;
};

using ObjectPointer = std::shared_ptr<BenchObject>;

/// A project of @p count objects, all at top level, or @p perFolder in each of as many expanded folders as it
/// takes.
ObjectPointer MakeProject(int count, int perFolder)
{
    auto root = std::make_shared<BenchObject>(QUuid(), 0, QStringLiteral("root"));
    ObjectPointer folder = root;
    for (int index = 0; index < count; ++index)
    {
        if (perFolder > 0 && index % perFolder == 0)
        {
            folder = std::make_shared<BenchObject>(root->GetID(), 0,
                                                   QStringLiteral("folder %1").arg(index / perFolder));
            folder->SetExpanded(true);
            root->children << folder;
        }
        folder->children << std::make_shared<BenchObject>(folder->GetID(), 1,
                                                          QStringLiteral("timeline %1").arg(index));
    }
    return root;
}

/// Builds the rows that the panel shows in the plainest way that is quick: apart from the tree, which takes
/// them in at once.
class BareTree
{
public:
    BareTree()
    {
        mTree.setColumnCount(4);
        mTree.setSelectionMode(QAbstractItemView::ExtendedSelection);
        mFolderIcon.addFile(QStringLiteral(":/icons/project_folder.png"));
        mTimelineIcon.addFile(QStringLiteral(":/icons/project_timeline.png"));
        mTree.resize(300, 600);
        mTree.show();
        QApplication::processEvents();
    }

    void Build(const ObjectPointer& root)
    {
        mTree.clear();
        QList<QTreeWidgetItem*> rows;
        QList<QTreeWidgetItem*> expanded;
        for (const auto& child : qAsConst(root->children))
        {
            QTreeWidgetItem* const row = MakeRow(child);
            rows << row;
            if (child->IsExpanded())
                expanded << row;
            const auto grandchildren = child->GetChildren();
            for (const auto& grandchild : grandchildren)
                row->addChild(MakeRow(grandchild));
        }
        mTree.addTopLevelItems(rows);
        for (QTreeWidgetItem* const row : qAsConst(expanded))
            row->setExpanded(true);
    }

private:
    QTreeWidgetItem* MakeRow(const std::shared_ptr<ProjectObject>& object) const
    {
        auto* const row = new QTreeWidgetItem;
        row->setText(0, object->GetName());
        row->setData(0, Qt::UserRole, object->GetID());
        row->setData(0, Qt::UserRole + 1, QVariant::fromValue(std::weak_ptr<ProjectObject>(object)));
        row->setToolTip(0, QString());
        row->setFlags(row->flags() | Qt::ItemIsEditable);
        row->setIcon(0, object->GetType() == 0 ? mFolderIcon : mTimelineIcon);
        row->setText(1, QString());
        row->setTextAlignment(1, Qt::AlignHCenter);
        return row;
    }

    QTreeWidget mTree;
    QIcon mFolderIcon;
    QIcon mTimelineIcon;
};

double Milliseconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count();
}

double Median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

/// A panel that shows a project.
struct Panel
{
    explicit Panel(const ObjectPointer& project) : root(project), tree(view.findChild<QTreeWidget*>())
    {
        view.SetRoot(root);
        view.Update();
        view.resize(300, 600);
        view.show();
        QApplication::processEvents();
    }

    ObjectPointer root;
    ProjectView view;
    QTreeWidget* tree;
};

void Update(benchmark::State& state)
{
    Panel panel(MakeProject(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))));
    BareTree bare;
    std::vector<double> times;
    std::vector<double> floors;
    // By turns, so that both see the same machine.
    for (int round = 0; round < 11; ++round)
    {
        floors.push_back(Milliseconds([&] { bare.Build(panel.root); }));
        times.push_back(Milliseconds([&] { panel.view.Update(); }));
        QApplication::processEvents();
    }
    state.counters["median_ms"] = Median(times);
    state.counters["floor_ms"] = Median(floors);
    state.counters["x_floor"] = Median(times) / Median(floors);
    for (auto _ : state)
        panel.view.Update();
}

/// What the user does with one folder of 10,000 rows, each below half a second.
void TenThousandRows(benchmark::State& state)
{
    const ObjectPointer root = MakeProject(10000, 10000);
    Panel panel(root);
    const auto folder = std::static_pointer_cast<BenchObject>(root->children.first());
    std::vector<double> selecting;
    std::vector<double> collapsing;
    std::vector<double> restoring;
    const auto once = [&]
    {
        selecting.push_back(Milliseconds([&] { panel.tree->selectAll(); }));
        collapsing.push_back(Milliseconds([&] { panel.tree->topLevelItem(0)->setExpanded(false); }));
        folder->SetExpanded(true);
        for (int index = 0; index < folder->children.size(); index += 2)
            folder->children[index]->SetSelected(true);
        restoring.push_back(Milliseconds([&] { panel.view.Update(); }));
        QApplication::processEvents();
    };
    for (auto _ : state)
        once();
    state.counters["select_and_mirror_all_ms"] = Median(selecting);
    state.counters["collapse_ms"] = Median(collapsing);
    state.counters["restore_every_other_ms"] = Median(restoring);
}

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"objects", "per_folder"})->Unit(benchmark::kMillisecond)->MinTime(0.1);
    for (const int count : {1000, 10000, 50000})
    {
        for (const int perFolder : {0, 100})
            benchmark->Args({count, perFolder});
    }
}

} // namespace

BENCHMARK(Update)->Apply(Sizes);
BENCHMARK(TenThousandRows)->Unit(benchmark::kMillisecond)->Iterations(7);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Settings::RestoreDefaults();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
