// SPDX-License-Identifier: MIT
#include "toolbars/AnnotationWidget.h"

#include "host/Settings.h"
#include "kit/FlatButton.h"
#include "kit/SmoothSlider.h"

#include <QAction>
#include <QColorDialog>
#include <QMenu>
#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

/// The tool whose width the slider edits; one for all strips, like the settings that it writes.
AnnotationToolType widthSliderTool = Pencil;

constexpr QColor selectedBackgroundColor(30, 30, 30, 255);
constexpr QColor selectedImageColor(220, 220, 220, 255);

/// Steps of the width slider for the whole width of the picture.
constexpr float WidthSteps = 2000.0f;

/// The width setting of @p tool; null for one that has none.
float* WidthSettingOf(AnnotationToolType tool)
{
    switch (tool)
    {
    case Pencil:
        return &Settings::pencilWidth;
    case Eraser:
        return &Settings::eraserWidth;
    case Text:
        return &Settings::textWidth;
    case Arrow:
        return &Settings::arrowWidth;
    case Oval:
        return &Settings::ovalWidth;
    case Rectangle:
        return &Settings::rectangleWidth;
    case Eyedropper:
        break;
    }
    return nullptr;
}

/// @p steps without their fraction, kept within what an int holds; 0 for what is no number.
int TruncatedSteps(float steps)
{
    if (steps != steps)
        return 0;
    return static_cast<int>(std::clamp(static_cast<double>(steps), -2147483648.0, 2147483647.0));
}

} // namespace

AnnotationWidget::AnnotationWidget(QWidget* parent) : QWidget(parent)
{
    setFixedWidth(30);
    Initialize();
    CreateConnections();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(const QPoint&)), this, SLOT(ShowContextMenu(QPoint)));
}

AnnotationWidget::~AnnotationWidget()
{
    delete mWidthSlider;
}

void AnnotationWidget::Sync()
{
    UpdateColorButton();
    UpdateSelected();
}

void AnnotationWidget::IncrementWidthSlider(int delta)
{
    widthSliderTool = Settings::annotationTool;
    mWidthSlider->setValue(TruncatedSteps(Settings::drawWidth * WidthSteps + static_cast<float>(delta)));
    // Also where the slider stays, so that a width outside its range is brought in.
    SetWidth(mWidthSlider->value());
}

void AnnotationWidget::UpdateHotkeys(const QString& pencil, const QString& eraser, const QString& text,
                                     const QString& arrow, const QString& oval, const QString& rectangle,
                                     const QString& eyedropper, const QString& ghostPrevious,
                                     const QString& ghostNext)
{
    const struct
    {
        FlatButton* button;
        QString name;
        QString nameWithKey;
        const QString& key;
    } rows[] = {
        {mPencilButton, tr("Pencil"), tr("Pencil (%1)"), pencil},
        {mEraserButton, tr("Eraser"), tr("Eraser (%1)"), eraser},
        {mTextButton, tr("Text"), tr("Text (%1)"), text},
        {mArrowButton, tr("Arrow"), tr("Arrow (%1)"), arrow},
        {mOvalButton, tr("Oval"), tr("Oval (%1)"), oval},
        {mRectangleButton, tr("Rectangle"), tr("Rectangle (%1)"), rectangle},
        {mEyedropperButton, tr("Eyedropper"), tr("Eyedropper (%1)"), eyedropper},
        {mGhostPreviousButton, tr("Ghost Previous"), tr("Ghost Previous (%1)"), ghostPrevious},
        {mGhostNextButton, tr("Ghost Next"), tr("Ghost Next (%1)"), ghostNext},
    };
    for (const auto& row : rows)
        row.button->setToolTip(row.key.isEmpty() ? row.name : row.nameWithKey.arg(row.key));
}

void AnnotationWidget::ActivatePencil()
{
    Activate(Pencil);
}

void AnnotationWidget::ActivateEraser()
{
    Activate(Eraser);
}

void AnnotationWidget::ActivateText()
{
    Activate(Text);
}

void AnnotationWidget::ActivateOval()
{
    Activate(Oval);
}

void AnnotationWidget::ActivateRectangle()
{
    Activate(Rectangle);
}

void AnnotationWidget::ActivateArrow()
{
    Activate(Arrow);
}

void AnnotationWidget::ActivateEyedropper()
{
    Activate(Eyedropper);
}

void AnnotationWidget::SelectColor()
{
    const QPointer<AnnotationWidget> self(this);
    const QColor color = QColorDialog::getColor(Settings::drawColor, this, tr("Select Color"),
                                                QColorDialog::DontUseNativeDialog);
    if (!self || !color.isValid())
        return;
    Settings::drawColor = color;
    UpdateColorButton();
}

void AnnotationWidget::SetWidth(int value)
{
    const float width = std::max(static_cast<float>(value) / WidthSteps, Settings::MINIMUM_DRAW_WIDTH);
    if (widthSliderTool == Settings::annotationTool)
        Settings::drawWidth = width;
    if (float* const setting = WidthSettingOf(widthSliderTool))
        *setting = width;
}

void AnnotationWidget::ToggleGhostPrevious()
{
    Settings::annotationGhostPrevious = !Settings::annotationGhostPrevious;
    UpdateSelected();
    Q_EMIT GhostingChanged();
}

void AnnotationWidget::ToggleGhostNext()
{
    Settings::annotationGhostNext = !Settings::annotationGhostNext;
    UpdateSelected();
    Q_EMIT GhostingChanged();
}

void AnnotationWidget::SetGhostPreviousNumFrames()
{
    const auto* action = qobject_cast<QAction*>(sender());
    if (action == nullptr)
        return;
    Settings::annotationGhostPreviousNumFrames = action->data().toInt();
    Q_EMIT GhostingChanged();
}

void AnnotationWidget::SetGhostNextNumFrames()
{
    const auto* action = qobject_cast<QAction*>(sender());
    if (action == nullptr)
        return;
    Settings::annotationGhostNextNumFrames = action->data().toInt();
    Q_EMIT GhostingChanged();
}

void AnnotationWidget::Undo()
{
    Q_EMIT UndoRequested();
}

void AnnotationWidget::Redo()
{
    Q_EMIT RedoRequested();
}

void AnnotationWidget::Clear()
{
    Q_EMIT ClearFrameRequested(false);
}

void AnnotationWidget::ClearAll()
{
    Q_EMIT ClearFrameRequested(true);
}

void AnnotationWidget::SetPositionAtRight(bool right)
{
    Q_EMIT PositionChangeRequested(right);
}

void AnnotationWidget::ShowContextMenu(QPoint pos)
{
    const std::pair<const FlatButton*, AnnotationToolType> tools[] = {
        {mPencilButton, Pencil},       {mEraserButton, Eraser}, {mOvalButton, Oval},
        {mRectangleButton, Rectangle}, {mArrowButton, Arrow},   {mTextButton, Text}};
    for (const auto& [button, tool] : tools)
    {
        if (button->underMouse())
        {
            ShowWidthSlider(button, tool);
            return;
        }
    }
    for (const FlatButton* button :
         {mEyedropperButton, mColorButton, mUndoButton, mRedoButton, mClearButton, mClearAllButton})
    {
        if (button->underMouse())
            return;
    }
    if (mGhostPreviousButton->underMouse())
    {
        ShowGhostMenu(pos, 0, Settings::annotationGhostPreviousNumFrames, SLOT(SetGhostPreviousNumFrames()));
        return;
    }
    if (mGhostNextButton->underMouse())
    {
        // Without a 0, unlike the frames before: that is meant.
        ShowGhostMenu(pos, 1, Settings::annotationGhostNextNumFrames, SLOT(SetGhostNextNumFrames()));
        return;
    }
    mPositionAction->setChecked(Settings::annotationToolsAtRight);
    QMenu menu;
    menu.addAction(mPositionAction);
    menu.exec(mapToGlobal(pos));
}

void AnnotationWidget::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Sync();
    Q_EMIT ToolChanged();
}

void AnnotationWidget::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    mWidthSlider->hide();
    Q_EMIT ToolChanged();
}

void AnnotationWidget::Initialize()
{
    mPositionAction = new QAction(tr("Position Tools at Right"), this);
    mPositionAction->setObjectName(QStringLiteral("positionAction"));
    mPositionAction->setCheckable(true);

    const QImage ghost(QStringLiteral(":/icons/annotation_ghost.png"));
    const QImage undo(QStringLiteral(":/icons/undo.png"));
    const struct
    {
        FlatButton** button;
        const char* name;
        QString toolTip;
        QImage image;
        int margin;
    } buttons[] = {
        {&mPencilButton, "pencilButton", tr("Pencil Tool"), QImage(":/icons/pencil.png"), 6},
        {&mEraserButton, "eraserButton", tr("Eraser Tool"), QImage(":/icons/eraser.png"), 6},
        {&mTextButton, "textButton", tr("Text Tool"), QImage(":/icons/text.png"), 10},
        {&mArrowButton, "arrowButton", tr("Arrow Tool"), QImage(":/icons/arrow.png"), 10},
        {&mRectangleButton, "rectangleButton", tr("Rectangle Tool"), QImage(":/icons/rectangle.png"), 8},
        {&mOvalButton, "ovalButton", tr("Oval Tool"), QImage(":/icons/oval.png"), 8},
        {&mEyedropperButton, "eyedropperButton", tr("Color Picker Tool"), QImage(":/icons/eyedropper.png"),
         10},
        {&mColorButton, "colorButton", tr("Color Select"), QImage(), 0},
        {&mGhostPreviousButton, "ghostPreviousButton", tr("Ghost Previous"), ghost.mirrored(true, false), 6},
        {&mGhostNextButton, "ghostNextButton", tr("Ghost Next"), ghost, 6},
        {&mUndoButton, "undoButton", tr("Undo"), undo, 6},
        {&mRedoButton, "redoButton", tr("Redo"), undo.mirrored(true, false), 6},
        {&mClearButton, "clearButton", tr("Clear Frame"), QImage(":/icons/clear.png"), 10},
        {&mClearAllButton, "clearAllButton", tr("Delete Bookmark"), QImage(":/icons/clearall.png"), 6},
    };

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 0, 2, 0);
    layout->setSpacing(0);
    for (const auto& row : buttons)
    {
        CreateButton(row.button, row.image, row.margin, layout, row.toolTip);
        (*row.button)->setObjectName(QLatin1String(row.name));
        (*row.button)->setAccessibleName(row.toolTip);
    }
    mColorButton->SetBorderWidth(3);
    mColorButton->SetHoverEnabled(false);
    layout->addStretch(0);

    mWidthSlider = new SmoothSlider;
    mWidthSlider->setObjectName(QStringLiteral("widthSlider"));
    mWidthSlider->setAccessibleName(tr("Tool Width"));
    mWidthSlider->setOrientation(Qt::Horizontal);
    mWidthSlider->setWindowFlags(Qt::Popup);
    mWidthSlider->setFocusPolicy(Qt::NoFocus);
    mWidthSlider->setFixedSize(160, 26);
    // The maximum stays at 99, a width of 0.0495: that is meant.
    mWidthSlider->setMinimum(2);
}

void AnnotationWidget::CreateConnections()
{
    connect(mPencilButton, SIGNAL(clicked()), this, SLOT(ActivatePencil()));
    connect(mEraserButton, SIGNAL(clicked()), this, SLOT(ActivateEraser()));
    connect(mTextButton, SIGNAL(clicked()), this, SLOT(ActivateText()));
    connect(mArrowButton, SIGNAL(clicked()), this, SLOT(ActivateArrow()));
    connect(mRectangleButton, SIGNAL(clicked()), this, SLOT(ActivateRectangle()));
    connect(mOvalButton, SIGNAL(clicked()), this, SLOT(ActivateOval()));
    connect(mEyedropperButton, SIGNAL(clicked()), this, SLOT(ActivateEyedropper()));
    connect(mColorButton, SIGNAL(clicked()), this, SLOT(SelectColor()));
    connect(mGhostPreviousButton, SIGNAL(clicked()), this, SLOT(ToggleGhostPrevious()));
    connect(mGhostNextButton, SIGNAL(clicked()), this, SLOT(ToggleGhostNext()));
    connect(mUndoButton, SIGNAL(clicked()), this, SLOT(Undo()));
    connect(mRedoButton, SIGNAL(clicked()), this, SLOT(Redo()));
    connect(mClearButton, SIGNAL(clicked()), this, SLOT(Clear()));
    connect(mClearAllButton, SIGNAL(clicked()), this, SLOT(ClearAll()));
    connect(mWidthSlider, SIGNAL(valueChanged(int)), this, SLOT(SetWidth(int)));
    connect(mPositionAction, SIGNAL(triggered(bool)), this, SLOT(SetPositionAtRight(bool)));
}

void AnnotationWidget::CreateButton(FlatButton** button, const QImage& image, int margin, QVBoxLayout* layout,
                                    const QString& toolTip)
{
    *button = new FlatButton(this);
    (*button)->setFixedSize(26, 26);
    (*button)->SetImage(image, margin);
    (*button)->setToolTip(toolTip);
    layout->addWidget(*button);
}

void AnnotationWidget::SetButtonColors(FlatButton* button, bool selected)
{
    if (selected)
        button->SetColors(selectedBackgroundColor, selectedImageColor);
    else
        button->SetColors(QColor(), QColor());
}

void AnnotationWidget::UpdateColorButton()
{
    mColorButton->SetColors(Settings::drawColor, QColor());
}

void AnnotationWidget::UpdateSelected()
{
    const std::pair<FlatButton*, AnnotationToolType> tools[] = {
        {mPencilButton, Pencil},        {mEraserButton, Eraser}, {mOvalButton, Oval},
        {mRectangleButton, Rectangle},  {mArrowButton, Arrow},   {mTextButton, Text},
        {mEyedropperButton, Eyedropper}};
    for (const auto& [button, tool] : tools)
        SetButtonColors(button, Settings::annotationTool == tool);
    SetButtonColors(mGhostPreviousButton, Settings::annotationGhostPrevious);
    SetButtonColors(mGhostNextButton, Settings::annotationGhostNext);
}

void AnnotationWidget::Activate(AnnotationToolType tool)
{
    const float* const width = WidthSettingOf(tool);
    Settings::annotationTool = tool;
    Settings::drawWidth = width != nullptr ? *width : 0.0f;
    UpdateSelected();
    Q_EMIT ToolChanged();
}

void AnnotationWidget::ShowWidthSlider(const FlatButton* button, AnnotationToolType tool)
{
    widthSliderTool = tool;
    const QPoint corner = button->mapToGlobal(QPoint(0, 0));
    const int x = Settings::annotationToolsAtRight ? corner.x() - 3 - (mWidthSlider->width() - 1)
                                                   : corner.x() + 3 + (mPencilButton->width() - 1);
    // A width between two of the slider's steps falls to the lower one, since the slider's change sets it.
    mWidthSlider->setValue(TruncatedSteps(*WidthSettingOf(tool) * WidthSteps));
    mWidthSlider->setGeometry(QRect(QPoint(x, corner.y() + 2), mWidthSlider->size()));
    mWidthSlider->show();
    setFocus(Qt::PopupFocusReason);
}

void AnnotationWidget::ShowGhostMenu(QPoint pos, int first, int checked, const char* slot)
{
    QMenu menu;
    QList<QPointer<QAction>> actions;
    for (int number = first; number <= 9; ++number)
    {
        auto* action = new QAction(QStringLiteral("%1").arg(number), this);
        action->setCheckable(true);
        action->setChecked(number == checked);
        action->setData(number);
        connect(action, SIGNAL(triggered()), this, slot);
        menu.addAction(action);
        actions.append(action);
    }
    menu.exec(mapToGlobal(pos));
    for (const QPointer<QAction>& action : qAsConst(actions))
    {
        if (action)
            action->deleteLater();
    }
}
