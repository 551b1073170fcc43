// SPDX-License-Identifier: MIT
#include "window/AnnotationBarBinding.h"

#include "annotation/AnnotationController.h"
#include "host/Settings.h"
#include "toolbars/AnnotationWidget.h"
#include "window/CommandTable.h"
#include "window/PlayerState.h"

#include <QAction>
#include <QBoxLayout>
#include <QColorDialog>
#include <QScrollArea>

#include <algorithm>

namespace
{

constexpr float SliderSteps = 2000.0f;
constexpr int MinimumStripHeight = 60;

QString ShownKey()
{
    return QStringLiteral("annotationTools/visible");
}

} // namespace

AnnotationBarBinding::AnnotationBarBinding(AnnotationController* annotation, QWidget* barParent,
                                           QObject* parent)
    : QObject(parent), mAnnotation(annotation), mArea(new QScrollArea(barParent))
{
    mBar = new AnnotationWidget(mArea);
    mBar->setObjectName(QStringLiteral("annotationTools"));
    mBar->hide();
    mArea->setObjectName(QStringLiteral("annotationToolsArea"));
    mArea->setFrameShape(QFrame::NoFrame);
    mArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    mArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    mArea->setFocusPolicy(Qt::NoFocus);
    mArea->setWidgetResizable(true);
    mArea->setFixedWidth(mBar->width());
    mArea->setMinimumHeight(MinimumStripHeight);
    mArea->setWidget(mBar);
    mArea->hide();
    mBar->hide();
    connect(mBar, SIGNAL(ToolChanged()), this, SLOT(OnToolChanged()));
    connect(mBar, SIGNAL(UndoRequested()), annotation, SLOT(Undo()));
    connect(mBar, SIGNAL(RedoRequested()), annotation, SLOT(Redo()));
    connect(mBar, SIGNAL(GhostingChanged()), this, SIGNAL(GhostingChanged()));
    connect(mBar, SIGNAL(ClearFrameRequested(bool)), this, SIGNAL(ClearFrameRequested(bool)));
    connect(mBar, SIGNAL(PositionChangeRequested(bool)), this, SLOT(SetAtRight(bool)));
    connect(annotation->Picker(), &ColorPicker::ColorPicked, mBar, &AnnotationWidget::Sync);
}

AnnotationWidget* AnnotationBarBinding::Bar() const
{
    return mBar;
}

void AnnotationBarBinding::PlaceIn(QBoxLayout* row, QWidget* viewer)
{
    mRow = row;
    mViewer = viewer;
    row->removeWidget(mArea);
    row->insertWidget(row->indexOf(viewer) + (Settings::annotationToolsAtRight ? 1 : 0), mArea);
}

void AnnotationBarBinding::SetAtRight(bool right)
{
    Settings::annotationToolsAtRight = right;
    if (mRow)
        PlaceIn(mRow, mViewer);
    Settings::WriteUserConfig();
}

bool AnnotationBarBinding::IsShown() const
{
    // Not whether it is on screen: it stays shown in a window that is minimised.
    return !mBar->isHidden();
}

void AnnotationBarBinding::SetShown(bool shown)
{
    if (shown == IsShown())
        return;
    mBar->setVisible(shown);
    mArea->setVisible(shown);
    // The strip tells of it only once it is on screen.
    OnToolChanged();
    Q_EMIT ShownChanged(shown);
}

void AnnotationBarBinding::Toggle()
{
    SetShown(!IsShown());
}

void AnnotationBarBinding::OnToolChanged()
{
    mAnnotation->EndEdits();
    Settings::drawEnabled = IsShown();
    Q_EMIT ToolChanged();
}

void AnnotationBarBinding::SelectTool(AnnotationToolType tool)
{
    SetShown(true);
    switch (tool)
    {
    case Pencil:
        mBar->ActivatePencil();
        break;
    case Eraser:
        mBar->ActivateEraser();
        break;
    case Text:
        mBar->ActivateText();
        break;
    case Arrow:
        mBar->ActivateArrow();
        break;
    case Oval:
        mBar->ActivateOval();
        break;
    case Eyedropper:
        mBar->ActivateEyedropper();
        break;
    case Rectangle:
        mBar->ActivateRectangle();
        break;
    }
}

void AnnotationBarBinding::ChangeWidth(int direction)
{
    const int eighth = static_cast<int>(Settings::drawWidth * SliderSteps / 8.0f);
    mBar->IncrementWidthSlider(direction * std::max(eighth, 1));
}

void AnnotationBarBinding::PickColor()
{
    const QColor color = QColorDialog::getColor(Settings::drawColor, mBar->window(), tr("Drawing Colour"),
                                                QColorDialog::ShowAlphaChannel);
    if (color.isValid())
        Settings::drawColor = color;
    Sync();
}

void AnnotationBarBinding::UpdateHotkeys(CommandTable* commands)
{
    const auto key = [commands](const char* name)
    {
        const QAction* const action = commands->Action(QLatin1String(name));
        return action ? action->shortcut().toString(QKeySequence::NativeText) : QString();
    };
    mBar->UpdateHotkeys(key("annotate.pencil"), key("annotate.eraser"), key("annotate.text"),
                        key("annotate.arrow"), key("annotate.oval"), key("annotate.rectangle"),
                        key("annotate.eyedropper"), key("annotate.ghostPrevious"), key("annotate.ghostNext"));
}

void AnnotationBarBinding::Sync()
{
    mBar->Sync();
}

void AnnotationBarBinding::ReadState()
{
    SetShown(PlayerState::Value(ShownKey(), false).toBool());
}

void AnnotationBarBinding::WriteState() const
{
    PlayerState::SetValue(ShownKey(), IsShown());
}
