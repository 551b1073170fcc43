// SPDX-License-Identifier: MIT
#include "window/PanelArea.h"

#include "window/PlayerState.h"

#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int DefaultColumnWidth = 260;
constexpr int DefaultPanelHeight = 300;
constexpr int MinimumPanelSize = 60;
/// Sizes of the state file beyond this are taken for broken.
constexpr int MaximumPanelSize = 20000;
constexpr int WriteDelay = 300;

int KeptSize(const QString& key, int fallback)
{
    const int size = PlayerState::Value(key, fallback).toInt();
    return size >= MinimumPanelSize && size <= MaximumPanelSize ? size : fallback;
}

QSplitter* MakePanelSplitter(Qt::Orientation orientation, const char* objectName)
{
    auto* const splitter = new QSplitter(orientation);
    splitter->setObjectName(QLatin1String(objectName));
    splitter->setChildrenCollapsible(false);
    return splitter;
}

} // namespace

PanelArea::PanelArea(QWidget* center, QWidget* parent)
    : QWidget(parent)
    , mColumns(MakePanelSplitter(Qt::Horizontal, "panelColumns"))
    , mLeft(MakePanelSplitter(Qt::Vertical, "leftPanels"))
    , mRight(MakePanelSplitter(Qt::Vertical, "rightPanels"))
    , mLeftWidth(DefaultColumnWidth)
    , mRightWidth(DefaultColumnWidth)
{
    setObjectName(QStringLiteral("panelArea"));
    mColumns->addWidget(mLeft);
    mColumns->addWidget(center);
    mColumns->addWidget(mRight);
    mColumns->setStretchFactor(0, 0);
    mColumns->setStretchFactor(1, 1);
    mColumns->setStretchFactor(2, 0);
    AddPlace(QStringLiteral("project"), tr("Project"), mLeft);
    AddPlace(QStringLiteral("details"), tr("Details"), mLeft);
    AddPlace(QStringLiteral("properties"), tr("Properties"), mRight);

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(mColumns);
    for (const QSplitter* const splitter : {mColumns, mLeft, mRight})
        connect(splitter, SIGNAL(splitterMoved(int, int)), this, SLOT(OnSplitterMoved()));
    mWriteTimer.setSingleShot(true);
    mWriteTimer.setInterval(WriteDelay);
    connect(&mWriteTimer, SIGNAL(timeout()), this, SLOT(WriteState()));
    ReadState();
    Arrange();
}

PanelArea::~PanelArea()
{
    if (mWriteTimer.isActive())
        WriteState();
}

void PanelArea::AddPlace(const QString& name, const QString& title, QSplitter* column)
{
    auto* const frame = new QWidget;
    frame->setObjectName(name + QLatin1String("Place"));
    frame->setAccessibleName(title);
    frame->setMinimumSize(MinimumPanelSize, MinimumPanelSize);
    auto* const layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    column->addWidget(frame);
    mPlaces.append(Place{name, column, frame, nullptr, DefaultPanelHeight, true});
}

const PanelArea::Place* PanelArea::Find(const QString& name) const
{
    const auto found = std::find_if(mPlaces.begin(), mPlaces.end(),
                                    [&name](const Place& place) { return place.name == name; });
    return found == mPlaces.end() ? nullptr : &*found;
}

PanelArea::Place* PanelArea::Find(const QString& name)
{
    return const_cast<Place*>(qAsConst(*this).Find(name));
}

bool PanelArea::SetPanel(const QString& name, QWidget* panel)
{
    Place* const place = Find(name);
    if (!place)
        return false;
    if (place->panel == panel)
        return true;
    const bool wasVisible = IsVisible(name);
    if (place->panel)
    {
        place->panel->hide();
        place->panel->deleteLater();
    }
    place->panel = panel;
    if (panel)
    {
        place->frame->layout()->addWidget(panel);
        // It goes with its place; a panel that was hidden by itself would leave the place empty.
        panel->show();
    }
    Arrange();
    if (IsVisible(name) != wasVisible)
        Q_EMIT VisibilityChanged(name, IsVisible(name));
    return true;
}

QWidget* PanelArea::Panel(const QString& name) const
{
    const Place* const place = Find(name);
    return place ? place->panel : nullptr;
}

bool PanelArea::IsVisible(const QString& name) const
{
    const Place* const place = Find(name);
    return place && place->panel && place->wanted;
}

QStringList PanelArea::Names() const
{
    QStringList names;
    for (const Place& place : mPlaces)
        names << place.name;
    return names;
}

void PanelArea::SetVisible(const QString& name, bool visible)
{
    Place* const place = Find(name);
    if (!place || place->wanted == visible)
        return;
    place->wanted = visible;
    Arrange();
    WriteState();
    if (place->panel)
        Q_EMIT VisibilityChanged(name, visible);
}

void PanelArea::Toggle(const QString& name)
{
    SetVisible(name, !IsVisible(name));
}

void PanelArea::Arrange()
{
    for (QSplitter* const column : {mLeft, mRight})
    {
        QList<int> heights;
        bool any = false;
        for (const Place& place : qAsConst(mPlaces))
        {
            if (place.column != column)
                continue;
            const bool shown = IsVisible(place.name);
            place.frame->setVisible(shown);
            heights << place.height;
            any = any || shown;
        }
        column->setVisible(any);
        column->setSizes(heights);
    }
    const int left = mLeft->isHidden() ? 0 : mLeftWidth;
    const int right = mRight->isHidden() ? 0 : mRightWidth;
    mColumns->setSizes({left, std::max(mColumns->width() - left - right, 1), right});
}

void PanelArea::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    // Columns keep the width that they were given, also when the window was once too small for it.
    Arrange();
}

void PanelArea::OnSplitterMoved()
{
    if (!mLeft->isHidden())
        mLeftWidth = mColumns->sizes().at(0);
    if (!mRight->isHidden())
        mRightWidth = mColumns->sizes().at(2);
    for (Place& place : mPlaces)
    {
        if (!place.frame->isHidden())
            place.height = place.column->sizes().at(place.column->indexOf(place.frame));
    }
    mWriteTimer.start();
}

void PanelArea::ReadState()
{
    mLeftWidth = KeptSize(QStringLiteral("panels/leftWidth"), mLeftWidth);
    mRightWidth = KeptSize(QStringLiteral("panels/rightWidth"), mRightWidth);
    for (Place& place : mPlaces)
    {
        const QString key = QStringLiteral("panels/") + place.name;
        place.wanted = PlayerState::Value(key + QLatin1String("Visible"), true).toBool();
        place.height = KeptSize(key + QLatin1String("Height"), place.height);
    }
}

void PanelArea::WriteState()
{
    PlayerState::SetValue(QStringLiteral("panels/leftWidth"), mLeftWidth);
    PlayerState::SetValue(QStringLiteral("panels/rightWidth"), mRightWidth);
    for (const Place& place : qAsConst(mPlaces))
    {
        const QString key = QStringLiteral("panels/") + place.name;
        PlayerState::SetValue(key + QLatin1String("Visible"), place.wanted);
        PlayerState::SetValue(key + QLatin1String("Height"), place.height);
    }
}
