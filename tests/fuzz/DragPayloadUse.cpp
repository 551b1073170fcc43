// SPDX-License-Identifier: MIT
#include "fuzz/DragPayloadUse.h"

#include "host/Settings.h"
#include "kit/DragPayload.h"
#include "kit/UiGlobals.h"
#include "viewers/ViewerWidget.h"
#include "views/ProjectRow.h"
#include "views/ProjectViewTreeWidget.h"
#include "views/TimelineListViewTreeWidget.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>

#include <algorithm>

namespace
{

/// A folder whose kind is a test's to choose, or another object.
class FuzzObject : public ProjectObject
{
public:
    FuzzObject(int type, int bin) : mType(type), mBin(bin) {}

    int GetType() override { return mType; }
    bool IsFolderBin() override { return mBin == 1; }
    bool IsSourceBin() override { return mBin == 2; }
    bool IsTimelineBin() override { return mBin == 3; }

private:
    int mType;
    int mBin;
};

/// Hands drags to the handlers of a widget, as if they had entered.
template<typename Widget>
class DropReceiver : public Widget
{
public:
    /// Whether a move and a drop of @p mimeData at @p pos are taken.
    bool Take(const QMimeData& mimeData, const QPoint& pos)
    {
        QDragEnterEvent enter(pos, Qt::MoveAction, &mimeData, Qt::LeftButton, Qt::NoModifier);
        Widget::dragEnterEvent(&enter);
        QDragMoveEvent move(pos, Qt::CopyAction | Qt::MoveAction, &mimeData, Qt::LeftButton, Qt::NoModifier);
        move.ignore();
        Widget::dragMoveEvent(&move);
        QDropEvent drop(pos, Qt::MoveAction, &mimeData, Qt::LeftButton, Qt::NoModifier);
        Widget::dropEvent(&drop);
        return move.isAccepted() && move.dropAction() != Qt::IgnoreAction;
    }
};

/// The three widgets that take drags, with something in them.
struct Receivers
{
    Receivers()
    {
        for (int bin = 0; bin < 4; ++bin)
        {
            QTreeWidgetItem* const folder = AddRow(tree.invisibleRootItem(), 0, bin);
            AddRow(AddRow(folder, 0, 0), 1, 0);
            AddRow(folder, 1, 0)->setSelected(true);
            AddRow(list.invisibleRootItem(), 2, 0)->setSelected(bin == 1);
        }
        tree.expandAll();
        for (QWidget* const widget :
             {static_cast<QWidget*>(&viewer), static_cast<QWidget*>(&tree), static_cast<QWidget*>(&list)})
            widget->resize(256, 256);
        QObject::connect(&list, &TimelineListViewTreeWidget::InsertElementsRequested,
                         [this](const QList<QUuid>& ids) { inserted = ids.size(); });
        QObject::connect(&viewer, &ViewerWidget::ViewerDropEvent, [this] { ++dropsOnViewer; });
    }

    QTreeWidgetItem* AddRow(QTreeWidgetItem* parent, int type, int bin)
    {
        objects << std::make_shared<FuzzObject>(type, bin);
        auto* const row = new QTreeWidgetItem(parent);
        ProjectRow::SetObject(row, objects.last()->GetID(), objects.last());
        return row;
    }

    QList<std::shared_ptr<ProjectObject>> objects;
    DropReceiver<ViewerWidget> viewer;
    DropReceiver<ProjectViewTreeWidget> tree;
    DropReceiver<TimelineListViewTreeWidget> list;
    int inserted = 0;
    int dropsOnViewer = 0;
};

Receivers& TheReceivers()
{
    static Receivers* const receivers = []
    {
        Settings::hardwareAcceleratedPlayback = false;
        return new Receivers;
    }();
    return *receivers;
}

/// How many ids @p bytes hold; 0 if they are anything else than a number and as many ids.
int CountOf(const QByteArray& bytes)
{
    if (bytes.size() < 4 || bytes.size() % 16 != 4)
        return 0;
    uint64_t count = 0;
    for (int index = 0; index < 4; ++index)
        count = count * 256 + static_cast<unsigned char>(bytes[index]);
    return count * 16 + 4 == static_cast<uint64_t>(bytes.size()) ? static_cast<int>(count) : 0;
}

} // namespace

std::string UseDragPayload(const uint8_t* bytes, size_t size)
{
    constexpr size_t HeaderSize = 3;
    if (size < HeaderSize)
        return {};
    const bool hasObjects = bytes[0] & 1;
    const bool hasElements = bytes[0] & 2;
    const bool hasFlags = bytes[0] & 4;
    const bool hasFiles = bytes[0] & 8;
    const QPoint pos(40, bytes[1]);
    const size_t flagCount = std::min<size_t>(bytes[2] % 8, size - HeaderSize);
    const auto* const text = reinterpret_cast<const char*>(bytes) + HeaderSize;
    const QByteArray flags(text, static_cast<int>(flagCount));
    const QByteArray ids(text + flagCount, static_cast<int>(size - HeaderSize - flagCount));

    const int count = CountOf(ids);
    const QList<QUuid> read = DragPayload::ReadIDs(ids);
    if (read.size() != count)
        return "the reader found another number of ids";
    if (count > 0 && DragPayload::WriteIDs(read) != ids)
        return "the ids were not read as they were written";

    QMimeData mimeData;
    if (hasObjects)
        mimeData.setData(UiGlobals::PROJECT_OBJECT_UUID_MIME_TYPE, ids);
    if (hasElements)
        mimeData.setData(UiGlobals::TIMELINE_ELEMENT_UUID_MIME_TYPE, ids);
    if (hasFlags)
        mimeData.setData(UiGlobals::ALLOWED_DROP_TYPES, flags);
    if (hasFiles)
        mimeData.setData(QStringLiteral("text/uri-list"), ids);
    const auto isSet = [&](int flag) { return hasFlags && flags.size() >= 5 && flags[flag] != 0; };

    Receivers& receivers = TheReceivers();
    receivers.dropsOnViewer = 0;
    const bool viewerTakes = hasFiles || (hasObjects && count < 2 && (isSet(2) || isSet(4)));
    if (receivers.viewer.Take(mimeData, pos) != viewerTakes ||
        receivers.dropsOnViewer != (viewerTakes ? 1 : 0))
        return "the viewer decided otherwise";

    receivers.inserted = -1;
    const bool listTakes = hasObjects ? isSet(3) : hasElements || hasFiles;
    if (receivers.list.Take(mimeData, pos) != listTakes)
        return "the element list decided otherwise";
    if (receivers.inserted != (hasObjects && listTakes ? count : -1))
        return "the element list took another number of ids";

    const bool treeMayTake = hasFiles || (hasObjects && !ids.isEmpty() && isSet(0));
    if (receivers.tree.Take(mimeData, pos) && !treeMayTake)
        return "the project tree took what it has to refuse";
    return {};
}
