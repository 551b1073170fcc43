// SPDX-License-Identifier: MIT
#include "window/VolumeBarBinding.h"

#include "host/Settings.h"
#include "playback/VolumeState.h"
#include "toolbars/VolumeWidget.h"
#include "window/PlayerState.h"

#include <QFont>
#include <QFontMetrics>

namespace
{

/// Points of the number on the volume's wedge, and the pixels that it has.
constexpr int NumberPoints = 7;
constexpr int NumberWidth = 26;

/// @p font, narrow enough for the wedge's number to be seen whole.
QFont FontForVolume(QFont font)
{
    QFont number = font;
    number.setPointSize(NumberPoints);
    const int width = QFontMetrics(number).horizontalAdvance(QStringLiteral("100%"));
    // A letter's edge may stand a pixel beyond its advance.
    if (width >= NumberWidth)
        font.setStretch(QFont::Unstretched * (NumberWidth - 1) / (width + 1));
    return font;
}

QString VolumeKey()
{
    return QStringLiteral("sound/volume");
}

QString MutedKey()
{
    return QStringLiteral("sound/muted");
}

} // namespace

VolumeBarBinding::VolumeBarBinding(VolumeState* volume, QWidget* barParent, QObject* parent)
    : QObject(parent), mVolume(volume), mBar(new VolumeWidget(barParent))
{
    mBar->setObjectName(QStringLiteral("volumeBar"));
    mBar->setFont(FontForVolume(mBar->font()));
    connect(mBar, SIGNAL(VolumeChanged(int)), this, SLOT(OnVolumePicked()));
    connect(mBar, SIGNAL(MutingChanged(bool)), volume, SLOT(SetMuted(bool)));
    connect(mBar, SIGNAL(LoopPressed(LoopType)), this, SLOT(OnLoopPressed(LoopType)));
    connect(mBar, SIGNAL(ViewerLayoutPressed(int)), this, SIGNAL(LayoutRequested(int)));
    connect(volume, SIGNAL(VolumeChanged(int)), this, SLOT(ShowVolume()));
    connect(volume, SIGNAL(MutedChanged(bool)), this, SLOT(ShowVolume()));
    ShowVolume();
    Sync();
}

VolumeWidget* VolumeBarBinding::Bar() const
{
    return mBar;
}

void VolumeBarBinding::OnVolumePicked()
{
    // What the signal carries may lie beyond the bar's ends.
    mVolume->SetVolume(mBar->GetVolume());
    mVolume->SetMuted(false);
}

void VolumeBarBinding::OnLoopPressed(LoopType loopType)
{
    Settings::loopType = loopType;
    Sync();
    Q_EMIT LoopChanged();
}

void VolumeBarBinding::ShowVolume()
{
    mBar->SetVolume(mVolume->Volume(), mVolume->IsMuted());
}

void VolumeBarBinding::Sync()
{
    mBar->UpdateLooping();
    mBar->UpdateViewerLayout();
}

void VolumeBarBinding::ReadState()
{
    bool isNumber = false;
    const int volume = PlayerState::Value(VolumeKey(), mVolume->Volume()).toInt(&isNumber);
    if (isNumber)
        mVolume->SetVolume(volume);
    mVolume->SetMuted(PlayerState::Value(MutedKey(), false).toBool());
}

void VolumeBarBinding::WriteState() const
{
    PlayerState::SetValue(VolumeKey(), mVolume->Volume());
    PlayerState::SetValue(MutedKey(), mVolume->IsMuted());
}
