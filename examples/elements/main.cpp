// SPDX-License-Identifier: MIT
#include "host/Source.h"
#include "host/Timeline.h"
#include "views/TimelineListView.h"

#include <QApplication>
#include <QFileInfo>

#include <algorithm>
#include <memory>

namespace
{

/// A file on a timeline.
class Clip : public ProjectObject
{
public:
    explicit Clip(const QString& path)
        : mName(QFileInfo(path).fileName()), mSource(std::make_shared<Source>(QUuid::createUuid(), path))
    {
    }

    const QString& GetName() override { return mName; }
    int GetType() override { return 2; }
    bool IsMissing() override { return !QFileInfo::exists(mSource->GetPath()); }
    std::weak_ptr<Source> GetSource() override { return mSource; }

private:
    QString mName;
    std::shared_ptr<Source> mSource;
};

/// A timeline that is no more than its list of clips.
class Cut : public Timeline
{
public:
    QList<std::shared_ptr<ProjectObject>> GetChildren() override { return mClips; }

    void Insert(const QString& path, int index) { mClips.insert(Place(index), std::make_shared<Clip>(path)); }
    /// Indices count the list with the clip still in it.
    void Move(const QUuid& id, int index)
    {
        const int from = Find(id);
        if (from < 0)
            return;
        const int to = Place(index);
        mClips.move(from, to > from ? to - 1 : to);
    }
    void Remove(const QUuid& id)
    {
        if (const int index = Find(id); index >= 0)
            mClips.removeAt(index);
    }
    void Sort(bool ascending)
    {
        std::stable_sort(mClips.begin(), mClips.end(),
                         [ascending](const auto& a, const auto& b)
                         { return ascending ? a->GetName() < b->GetName() : b->GetName() < a->GetName(); });
    }

private:
    int Place(int index) const { return index < 0 ? mClips.size() : std::min(index, mClips.size()); }
    int Find(const QUuid& id) const
    {
        for (int index = 0; index < mClips.size(); ++index)
        {
            if (mClips.at(index)->GetID() == id)
                return index;
        }
        return -1;
    }

    QList<std::shared_ptr<ProjectObject>> mClips;
};

} // namespace

/// A host of one timeline's elements: lists the files of the command line, which can be moved, sorted and
/// removed, and takes files from the desktop.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const auto cut = std::make_shared<Cut>();
    for (const QString& path : QApplication::arguments().mid(1))
        cut->Insert(path, -1);

    TimelineListView list;
    list.resize(320, 480);
    list.SetTimeline(cut);

    // The list asks; nothing moves until the host has changed the timeline and hands it in again.
    QObject::connect(&list, &TimelineListView::InsertSourcesRequested, &list,
                     [&](const QList<QString>& paths, const QList<int>& indices)
                     {
                         // One index for all of them: each goes behind the one before.
                         for (int file = 0; file < paths.size(); ++file)
                             cut->Insert(paths.at(file), indices.at(file) < 0 ? -1 : indices.at(file) + file);
                         list.SetTimeline(cut);
                     });
    QObject::connect(&list, &TimelineListView::MoveElementsRequested, &list,
                     [&](const QList<QUuid>& ids, const QList<int>& indices)
                     {
                         for (int pair = 0; pair < ids.size(); ++pair)
                             cut->Move(ids.at(pair), indices.at(pair));
                         list.SetTimeline(cut);
                     });
    QObject::connect(&list, &TimelineListView::RemoveElementsRequested, &list,
                     [&](const QList<QUuid>& ids)
                     {
                         for (const QUuid& id : ids)
                             cut->Remove(id);
                         list.SetTimeline(cut);
                     });
    QObject::connect(&list, &TimelineListView::SortElementsRequested, &list,
                     [&](bool ascending)
                     {
                         cut->Sort(ascending);
                         list.SetTimeline(cut);
                     });
    list.show();
    return QApplication::exec();
}
