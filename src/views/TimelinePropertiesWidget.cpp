// SPDX-License-Identifier: MIT
#include "views/TimelinePropertiesWidget.h"

#include "host/Settings.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int GroupMargin = 6;
constexpr int GroupSpacing = 2;
constexpr int FrameBoxWidth = 82;
constexpr int PanZoomBoxWidth = 54;
constexpr int ResetButtonWidth = 54;

/// Gives @p widget what the form finds it by.
template<typename Widget>
Widget* NamedProperty(Widget* widget, const char* name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QLabel* MakePathLabel(const char* name, const QString& text, QWidget* parent)
{
    auto* label = NamedProperty(new QLabel(parent), name);
    // A path is shown as it stands, whatever it looks like.
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->hide();
    return label;
}

QSpinBox* MakeFrameBox(const char* name, const QString& accessibleName, QWidget* parent)
{
    auto* box = NamedProperty(new QSpinBox(parent), name);
    box->setAccessibleName(accessibleName);
    box->setFixedWidth(FrameBoxWidth);
    box->setRange(0, 0);
    return box;
}

QDoubleSpinBox* MakePanZoomBox(const char* name, const QString& accessibleName, int decimals, double minimum,
                               double maximum, QWidget* parent)
{
    auto* box = NamedProperty(new QDoubleSpinBox(parent), name);
    box->setAccessibleName(accessibleName);
    box->setFixedWidth(PanZoomBoxWidth);
    box->setDecimals(decimals);
    box->setRange(minimum, maximum);
    box->setSingleStep(0.1);
    return box;
}

QPushButton* MakeResetButton(const char* name, const QString& text, QWidget* parent)
{
    auto* button = NamedProperty(new QPushButton(text, parent), name);
    button->setFixedWidth(ResetButtonWidth);
    return button;
}

QVBoxLayout* MakeGroupColumn(QGroupBox* group)
{
    auto* column = new QVBoxLayout(group);
    column->setContentsMargins(GroupMargin, GroupMargin, GroupMargin, GroupMargin);
    return column;
}

QHBoxLayout* MakeRow(const QList<QWidget*>& widgets)
{
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets)
        row->addWidget(widget);
    return row;
}

/// Whether the left button is down on the arrows of @p box, which is what tells a step from typing.
bool IsPressedOnItsArrows(const QAbstractSpinBox* box)
{
    const auto* edit = box->findChild<QLineEdit*>();
    return edit != nullptr && box->testAttribute(Qt::WA_UnderMouse) &&
           !edit->testAttribute(Qt::WA_UnderMouse) && QGuiApplication::mouseButtons() == Qt::LeftButton;
}

} // namespace

TimelinePropertiesWidget::TimelinePropertiesWidget(QWidget* parent) : QWidget(parent)
{
    Initialize();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(ShowContextMenu(QPoint)));
}

void TimelinePropertiesWidget::SetDisplayType(PropertiesDisplayType type)
{
    mSourceGroup->hide();
    mRangeGroup->hide();
    mOptionsGroup->hide();
    if (type == PropertiesDisplaySource)
    {
        mSourceGroup->show();
        OnShowRelativeSourcePathToggled();
        mRangeGroup->show();
    }
    else if (type == PropertiesDisplayTimeline)
    {
        mRangeGroup->show();
        mOptionsGroup->show();
    }
}

void TimelinePropertiesWidget::SetFrameCount(int frameCount)
{
    mFrameCount = std::max(frameCount, 0);
    const int lowest = std::min(mFrameCount, 1);
    const QSignalBlocker inBlocker(mInSpinBox);
    const QSignalBlocker outBlocker(mOutSpinBox);
    mInSpinBox->setRange(lowest, mFrameCount);
    mOutSpinBox->setRange(lowest, mFrameCount);
}

void TimelinePropertiesWidget::SetFrameRange(int startFrame, int endFrame)
{
    const QSignalBlocker inBlocker(mInSpinBox);
    const QSignalBlocker outBlocker(mOutSpinBox);
    mInSpinBox->setValue(startFrame);
    mOutSpinBox->setValue(endFrame);
}

void TimelinePropertiesWidget::SetPanAndZoom(QPointF panInterpolation, float zoom, bool enabled)
{
    const QSignalBlocker xBlocker(mPanXSpinBox);
    const QSignalBlocker yBlocker(mPanYSpinBox);
    const QSignalBlocker zoomBlocker(mZoomSpinBox);
    const QSignalBlocker enabledBlocker(mPanZoomEnabledCheckBox);
    mPanXSpinBox->setValue(panInterpolation.x());
    mPanYSpinBox->setValue(panInterpolation.y());
    mZoomSpinBox->setValue(static_cast<double>(zoom));
    mPanZoomEnabledCheckBox->setChecked(enabled);
}

void TimelinePropertiesWidget::SetSourceInput(const QUuid& id, const QString& path,
                                              const QString& relativePath)
{
    mSourceID = id;
    mSourcePathEdit->setText(path);
    // A long path shows its beginning.
    mSourcePathEdit->setCursorPosition(0);
    mRelativePathValueLabel->setText(relativePath.isEmpty() ? tr("<not available>") : relativePath);
}

void TimelinePropertiesWidget::SetSourceRootPath(const QString& rootPath)
{
    mSourceRootValueLabel->setText(rootPath.isEmpty() ? tr("<not set>") : rootPath);
}

void TimelinePropertiesWidget::SetUseSourceInOuts(bool enabled)
{
    mApplySourceRangesCheckBox->setChecked(enabled);
}

void TimelinePropertiesWidget::OnSourcePathChanged()
{
    Q_EMIT SourceChangeRequested(mSourceID, mSourcePathEdit->text(), QString());
}

void TimelinePropertiesWidget::SelectSourcePath()
{
    Q_EMIT SourceChangeRequested(mSourceID, QString(), mSourcePathEdit->text());
}

void TimelinePropertiesWidget::OnShowRelativeSourcePathToggled()
{
    const bool isShown = mShowRelativePathCheckBox->isChecked();
    for (QLabel* label :
         {mSourceRootLabel, mSourceRootValueLabel, mRelativePathLabel, mRelativePathValueLabel})
        label->setVisible(isShown);
}

void TimelinePropertiesWidget::RequestRangeChange()
{
    int in = mInSpinBox->value();
    int out = mOutSpinBox->value();
    if (in > out)
    {
        if (sender() == mOutSpinBox)
            in = out;
        else
            out = in;
    }
    Q_EMIT RangeChangeRequested(in, out);
}

void TimelinePropertiesWidget::OnInValueChanged()
{
    if (IsPressedOnItsArrows(mInSpinBox))
        RequestRangeChange();
}

void TimelinePropertiesWidget::OnOutValueChanged()
{
    if (IsPressedOnItsArrows(mOutSpinBox))
        RequestRangeChange();
}

void TimelinePropertiesWidget::OnResetRange()
{
    Q_EMIT RangeChangeRequested(mInSpinBox->minimum(), mOutSpinBox->maximum());
}

void TimelinePropertiesWidget::OnPanXValueChanged()
{
    if (IsPressedOnItsArrows(mPanXSpinBox))
        OnPanZoomChanged();
}

void TimelinePropertiesWidget::OnPanYValueChanged()
{
    if (IsPressedOnItsArrows(mPanYSpinBox))
        OnPanZoomChanged();
}

void TimelinePropertiesWidget::OnZoomValueChanged()
{
    if (IsPressedOnItsArrows(mZoomSpinBox))
        OnPanZoomChanged();
}

void TimelinePropertiesWidget::OnPanZoomChanged()
{
    Q_EMIT PanZoomChangeRequested(QPointF(mPanXSpinBox->value(), mPanYSpinBox->value()),
                                  static_cast<float>(mZoomSpinBox->value()),
                                  mPanZoomEnabledCheckBox->isChecked());
}

void TimelinePropertiesWidget::OnResetPanZoom()
{
    Q_EMIT PanZoomChangeRequested(QPointF(0, 0), 1.0F, false);
}

void TimelinePropertiesWidget::OnSourceInOutsToggled()
{
    Q_EMIT UseSourceInOutsChanged(mApplySourceRangesCheckBox->isChecked());
}

void TimelinePropertiesWidget::ShowContextMenu(QPoint) {}

void TimelinePropertiesWidget::Initialize()
{
    InitializeSource();
    InitializeRange();
    InitializePanZoom();
    InitializeOptions();

    auto* layout = new QVBoxLayout(this);
    for (QGroupBox* group : {mSourceGroup, mRangeGroup, mPanZoomGroup, mOptionsGroup})
        layout->addWidget(group);
    layout->addStretch();

    for (QGroupBox* group : {mSourceGroup, mRangeGroup, mOptionsGroup})
        group->hide();
}

void TimelinePropertiesWidget::InitializeSource()
{
    mSourceGroup = NamedProperty(new QGroupBox(tr("Source Input"), this), "sourceGroup");
    mSourcePathEdit = NamedProperty(new QLineEdit(mSourceGroup), "sourcePathEdit");
    mSourcePathEdit->setAccessibleName(tr("Source Path"));
    connect(mSourcePathEdit, SIGNAL(returnPressed()), this, SLOT(OnSourcePathChanged()));
    mReplaceButton = NamedProperty(new QPushButton(tr("Replace"), mSourceGroup), "replaceButton");
    connect(mReplaceButton, SIGNAL(clicked()), this, SLOT(SelectSourcePath()));
    // The blanks behind the names are meant.
    mSourceRootLabel = MakePathLabel("sourceRootLabel", tr("Source Root:   "), mSourceGroup);
    mSourceRootValueLabel = MakePathLabel("sourceRootValueLabel", tr("<not set>"), mSourceGroup);
    mSourceRootValueLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    mRelativePathLabel = MakePathLabel("relativePathLabel", tr("Relative Path:  "), mSourceGroup);
    mRelativePathValueLabel = MakePathLabel("relativePathValueLabel", tr("<not available>"), mSourceGroup);
    mRelativePathValueLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    mShowRelativePathCheckBox =
        NamedProperty(new QCheckBox(tr("Show Relative Path"), mSourceGroup), "showRelativePathCheckBox");
    connect(mShowRelativePathCheckBox, SIGNAL(clicked()), this, SLOT(OnShowRelativeSourcePathToggled()));

    auto* form = new QFormLayout;
    form->addRow(mSourceRootLabel, mSourceRootValueLabel);
    form->addRow(mRelativePathLabel, mRelativePathValueLabel);
    QVBoxLayout* const column = MakeGroupColumn(mSourceGroup);
    column->addLayout(MakeRow({mSourcePathEdit, mReplaceButton}));
    column->addLayout(form);
    column->addWidget(mShowRelativePathCheckBox);
}

void TimelinePropertiesWidget::InitializeRange()
{
    mRangeGroup = NamedProperty(new QGroupBox(tr("Range"), this), "rangeGroup");
    mInSpinBox = MakeFrameBox("inSpinBox", tr("In"), mRangeGroup);
    connect(mInSpinBox, SIGNAL(valueChanged(int)), this, SLOT(OnInValueChanged()));
    connect(mInSpinBox, SIGNAL(editingFinished()), this, SLOT(RequestRangeChange()));
    mOutSpinBox = MakeFrameBox("outSpinBox", tr("Out"), mRangeGroup);
    connect(mOutSpinBox, SIGNAL(valueChanged(int)), this, SLOT(OnOutValueChanged()));
    connect(mOutSpinBox, SIGNAL(editingFinished()), this, SLOT(RequestRangeChange()));
    mResetRangeButton = MakeResetButton("resetRangeButton", tr("Reset"), mRangeGroup);
    connect(mResetRangeButton, SIGNAL(clicked()), this, SLOT(OnResetRange()));

    QHBoxLayout* const row = MakeRow({mInSpinBox, mOutSpinBox, mResetRangeButton});
    row->setContentsMargins(GroupMargin, GroupMargin, GroupMargin, GroupMargin);
    row->setSpacing(GroupSpacing);
    row->addStretch();
    mRangeGroup->setLayout(row);
}

void TimelinePropertiesWidget::InitializePanZoom()
{
    mPanZoomGroup = NamedProperty(new QGroupBox(tr("Pan/Zoom"), this), "panZoomGroup");
    mPanXSpinBox = MakePanZoomBox("panXSpinBox", tr("Pan X"), 2, -1.0, 1.0, mPanZoomGroup);
    connect(mPanXSpinBox, SIGNAL(valueChanged(double)), this, SLOT(OnPanXValueChanged()));
    connect(mPanXSpinBox, SIGNAL(editingFinished()), this, SLOT(OnPanZoomChanged()));
    mPanYSpinBox = MakePanZoomBox("panYSpinBox", tr("Pan Y"), 2, -1.0, 1.0, mPanZoomGroup);
    connect(mPanYSpinBox, SIGNAL(valueChanged(double)), this, SLOT(OnPanYValueChanged()));
    connect(mPanYSpinBox, SIGNAL(editingFinished()), this, SLOT(OnPanZoomChanged()));
    mZoomSpinBox = MakePanZoomBox("zoomSpinBox", tr("Zoom"), 1, 1.0,
                                  static_cast<double>(Settings::zoomMaximum), mPanZoomGroup);
    connect(mZoomSpinBox, SIGNAL(valueChanged(double)), this, SLOT(OnZoomValueChanged()));
    connect(mZoomSpinBox, SIGNAL(editingFinished()), this, SLOT(OnPanZoomChanged()));
    mPanZoomEnabledCheckBox =
        NamedProperty(new QCheckBox(tr("Enabled"), mPanZoomGroup), "panZoomEnabledCheckBox");
    connect(mPanZoomEnabledCheckBox, SIGNAL(clicked()), this, SLOT(OnPanZoomChanged()));
    mResetPanZoomButton = MakeResetButton("resetPanZoomButton", tr("Reset"), mPanZoomGroup);
    connect(mResetPanZoomButton, SIGNAL(clicked()), this, SLOT(OnResetPanZoom()));

    QHBoxLayout* const values = MakeRow({mPanXSpinBox, mPanYSpinBox, mZoomSpinBox, mResetPanZoomButton});
    values->setSpacing(GroupSpacing);
    values->addStretch();
    QHBoxLayout* const state = MakeRow({mPanZoomEnabledCheckBox});
    state->addStretch();
    QVBoxLayout* const column = MakeGroupColumn(mPanZoomGroup);
    column->setSpacing(GroupSpacing);
    column->addLayout(values);
    column->addLayout(state);
}

void TimelinePropertiesWidget::InitializeOptions()
{
    mOptionsGroup = NamedProperty(new QGroupBox(tr("Options"), this), "optionsGroup");
    mApplySourceRangesCheckBox =
        NamedProperty(new QCheckBox(tr("Apply Source Ranges"), mOptionsGroup), "applySourceRangesCheckBox");
    mApplySourceRangesCheckBox->setChecked(true);
    connect(mApplySourceRangesCheckBox, SIGNAL(clicked()), this, SLOT(OnSourceInOutsToggled()));
    MakeGroupColumn(mOptionsGroup)->addWidget(mApplySourceRangesCheckBox);
}
