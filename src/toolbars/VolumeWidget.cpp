// SPDX-License-Identifier: MIT
#include "toolbars/VolumeWidget.h"

#include "host/Settings.h"
#include "host/ViewerLayout.h"
#include "kit/FlatButton.h"
#include "kit/PopUpWidget.h"
#include "toolbars/VolumeSlider.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int MaximumVolume = 150;
constexpr int MuteSide = 12;
constexpr int SelectorSide = 14;
constexpr int LoopMargin = 2;
constexpr int PingPongMargin = 0;
constexpr int ViewerMargin = 3;

FlatButton* MakeVolumeButton(const char* name, const QString& accessibleName, int side, const QImage& image,
                             int margin, QWidget* parent)
{
    auto* button = new FlatButton(parent);
    button->setObjectName(QLatin1String(name));
    button->setAccessibleName(accessibleName);
    button->setFixedSize(side, side);
    button->SetImage(image, margin);
    button->SetHoverEnabled(false);
    return button;
}

void ShowChoice(FlatButton* button, const QImage& image, int margin, const QString& text)
{
    button->SetImage(image, margin);
    button->setToolTip(text);
    button->setAccessibleName(text);
}

} // namespace

VolumeWidget::VolumeWidget(QWidget* parent)
    : QWidget(parent)
    , mVolumeImage(QStringLiteral(":/icons/volume.png"))
    , mMuteImage(QStringLiteral(":/icons/mute.png"))
    , mLoopImage(QStringLiteral(":/icons/loop.png"))
    , mNoLoopImage(QStringLiteral(":/icons/loop_none.png"))
    , mPingPongImage(QStringLiteral(":/icons/loop_pingpong.png"))
    , mViewerSingleImage(QStringLiteral(":/icons/viewer_single.png"))
    , mViewerHorizontalImage(QStringLiteral(":/icons/viewer_horizontal.png"))
    , mViewerVerticalImage(QStringLiteral(":/icons/viewer_vertical.png"))
{
    CreateWidgets();
    CreateLayout();
    CreateConnections();
    // The layout button shows the single viewer until the host calls UpdateViewerLayout(): that is meant.
    UpdateLooping();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, SIGNAL(customContextMenuRequested(QPoint)), this, SLOT(ShowContextMenu(QPoint)));
}

int VolumeWidget::GetVolume() const
{
    return mVolumeSlider->GetValue();
}

bool VolumeWidget::IsMuted() const
{
    return mMuted;
}

void VolumeWidget::SetVolume(int volume)
{
    const int clamped = std::clamp(volume, 0, MaximumVolume);
    if (clamped != mVolumeSlider->GetValue())
        mVolumeSlider->SetValue(clamped);
}

void VolumeWidget::SetVolume(int volume, bool muted)
{
    mSignalsBlocked = true;
    SetVolume(volume);
    SetMuted(muted);
    mSignalsBlocked = false;
}

void VolumeWidget::SetMuted(bool muted)
{
    if (muted == mMuted)
        return;
    mMuted = muted;
    ShowMuting();
}

void VolumeWidget::UpdateLooping()
{
    switch (static_cast<int>(Settings::loopType))
    {
    case Loop:
        ShowChoice(mLoopButton, mLoopImage, LoopMargin, tr("Loop"));
        break;
    case PingPong:
        ShowChoice(mLoopButton, mPingPongImage, PingPongMargin, tr("Ping Pong"));
        break;
    default:
        ShowChoice(mLoopButton, mNoLoopImage, LoopMargin, tr("No Loop"));
    }
}

void VolumeWidget::UpdateViewerLayout()
{
    switch (Settings::viewerLayout)
    {
    case Horizontal:
        ShowChoice(mViewerButton, mViewerHorizontalImage, ViewerMargin, tr("Horizontal Viewer"));
        break;
    case Vertical:
        ShowChoice(mViewerButton, mViewerVerticalImage, ViewerMargin, tr("Vertical Viewer"));
        break;
    default:
        ShowChoice(mViewerButton, mViewerSingleImage, ViewerMargin, tr("Single Viewer"));
    }
}

void VolumeWidget::OnSliderValueChange(int value)
{
    if (!mSignalsBlocked)
        Q_EMIT VolumeChanged(value);
}

void VolumeWidget::ToggleMute()
{
    mMuted = !mMuted;
    ShowMuting();
    Q_EMIT MutingChanged(mMuted);
}

void VolumeWidget::ShowLoopSelectWidget()
{
    ShowAbove(mLoopButton, mLoopSelectWidget);
}

void VolumeWidget::SetNoLoop()
{
    mLoopSelectWidget->hide();
    Q_EMIT LoopPressed(NoLoop);
}

void VolumeWidget::SetLoop()
{
    mLoopSelectWidget->hide();
    Q_EMIT LoopPressed(Loop);
}

void VolumeWidget::SetPingPong()
{
    mLoopSelectWidget->hide();
    Q_EMIT LoopPressed(PingPong);
}

void VolumeWidget::ShowViewerSelectWidget()
{
    ShowAbove(mViewerButton, mViewerSelectWidget);
}

void VolumeWidget::SetViewerLayoutSingle()
{
    mViewerSelectWidget->hide();
    Q_EMIT ViewerLayoutPressed(Single);
}

void VolumeWidget::SetViewerLayoutHorizontal()
{
    mViewerSelectWidget->hide();
    Q_EMIT ViewerLayoutPressed(Horizontal);
}

void VolumeWidget::SetViewerLayoutVertical()
{
    mViewerSelectWidget->hide();
    Q_EMIT ViewerLayoutPressed(Vertical);
}

void VolumeWidget::ShowContextMenu(QPoint) {}

void VolumeWidget::CreateWidgets()
{
    mVolumeSlider = new VolumeSlider(this);
    mVolumeSlider->setObjectName(QStringLiteral("volumeSlider"));
    mVolumeSlider->setAccessibleName(tr("Volume"));
    mVolumeSlider->SetMaximum(MaximumVolume);
    mMuteButton = MakeVolumeButton("muteButton", tr("Mute"), MuteSide, mVolumeImage, 0, this);

    mLoopButton = MakeVolumeButton("loopButton", tr("No Loop"), SelectorSide, mNoLoopImage, LoopMargin, this);
    mNoLoopButton =
        MakeVolumeButton("noLoopButton", tr("No Loop"), SelectorSide, mNoLoopImage, LoopMargin, nullptr);
    mLoopOnButton =
        MakeVolumeButton("loopOnButton", tr("Loop"), SelectorSide, mLoopImage, LoopMargin, nullptr);
    mPingPongButton = MakeVolumeButton("pingPongButton", tr("Ping Pong"), SelectorSide, mPingPongImage,
                                       PingPongMargin, nullptr);
    mLoopSelectWidget = new PopUpWidget(this);
    mLoopSelectWidget->setObjectName(QStringLiteral("loopSelectWidget"));
    for (FlatButton* choice : {mNoLoopButton, mLoopOnButton, mPingPongButton})
        mLoopSelectWidget->AddWidget(choice);
    mLoopSelectWidget->UpdateLayout();

    mViewerButton = MakeVolumeButton("viewerButton", tr("Single Viewer"), SelectorSide, mViewerSingleImage,
                                     ViewerMargin, this);
    mViewerSingleButton = MakeVolumeButton("viewerSingleButton", tr("Single Viewer"), SelectorSide,
                                           mViewerSingleImage, ViewerMargin, nullptr);
    mViewerHorizontalButton = MakeVolumeButton("viewerHorizontalButton", tr("Horizontal Viewer"),
                                               SelectorSide, mViewerHorizontalImage, ViewerMargin, nullptr);
    mViewerVerticalButton = MakeVolumeButton("viewerVerticalButton", tr("Vertical Viewer"), SelectorSide,
                                             mViewerVerticalImage, ViewerMargin, nullptr);
    mViewerSelectWidget = new PopUpWidget(this);
    mViewerSelectWidget->setObjectName(QStringLiteral("viewerSelectWidget"));
    for (FlatButton* choice : {mViewerSingleButton, mViewerHorizontalButton, mViewerVerticalButton})
        mViewerSelectWidget->AddWidget(choice);
    mViewerSelectWidget->UpdateLayout();
}

void VolumeWidget::CreateLayout()
{
    // Puts the little mute button at the foot of the slider.
    auto* column = new QVBoxLayout;
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addSpacing(mVolumeSlider->height() - mMuteButton->height());
    column->addWidget(mMuteButton);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(mLoopButton);
    layout->addWidget(mViewerButton);
    layout->addSpacing(10);
    layout->addStretch();
    layout->addLayout(column);
    layout->addWidget(mVolumeSlider);
}

void VolumeWidget::CreateConnections()
{
    connect(mVolumeSlider, SIGNAL(VolumeChanged(int)), this, SLOT(OnSliderValueChange(int)));
    connect(mMuteButton, SIGNAL(clicked()), this, SLOT(ToggleMute()));
    connect(mLoopButton, SIGNAL(clicked()), this, SLOT(ShowLoopSelectWidget()));
    connect(mNoLoopButton, SIGNAL(clicked()), this, SLOT(SetNoLoop()));
    connect(mLoopOnButton, SIGNAL(clicked()), this, SLOT(SetLoop()));
    connect(mPingPongButton, SIGNAL(clicked()), this, SLOT(SetPingPong()));
    connect(mViewerButton, SIGNAL(clicked()), this, SLOT(ShowViewerSelectWidget()));
    connect(mViewerSingleButton, SIGNAL(clicked()), this, SLOT(SetViewerLayoutSingle()));
    connect(mViewerHorizontalButton, SIGNAL(clicked()), this, SLOT(SetViewerLayoutHorizontal()));
    connect(mViewerVerticalButton, SIGNAL(clicked()), this, SLOT(SetViewerLayoutVertical()));
}

void VolumeWidget::ShowMuting()
{
    mMuteButton->SetImage(mMuted ? mMuteImage : mVolumeImage, 0);
}

void VolumeWidget::ShowAbove(const FlatButton* button, PopUpWidget* popUp)
{
    const QPoint corner = button->mapToGlobal(QPoint(0, 0));
    QRect place(QPoint(0, 0), popUp->size());
    place.moveLeft(corner.x());
    place.moveBottom(corner.y() - 1);
    popUp->setGeometry(place);
    popUp->show();
    setFocus(Qt::PopupFocusReason);
}
