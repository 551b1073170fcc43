// SPDX-License-Identifier: MIT
#include "dialogs/output/MediaInfoDialog.h"

#include "ui_MediaInfoDialog.h"

#include <QFileInfo>

#include <limits>

namespace
{

bool IsWholeNumber(double number)
{
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max() &&
           static_cast<double>(static_cast<int>(number)) == number;
}

} // namespace

MediaInfoDialog::MediaInfoDialog(QWidget* parent) : QDialog(parent), mUi(new Ui::MediaInfoDialog)
{
    mUi->setupUi(this);
    setWindowTitle(tr("Media Information"));
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    mUi->generalLabel->setText(tr("<b>General</b>"));
    mUi->videoLabel->setText(tr("<b>Video</b>"));
    mUi->audioLabel->setText(tr("<b>Audio</b>"));
    Clear();
}

MediaInfoDialog::~MediaInfoDialog()
{
    delete mUi;
}

void MediaInfoDialog::SetSourcePath(const QString& path)
{
    if (path == mUi->source->text())
        return;
    mUi->filename->setText(QStringLiteral("<b>%1</b>").arg(QFileInfo(path).fileName()));
    mUi->source->setText(path);
}

void MediaInfoDialog::SetDuration(const QString& duration)
{
    mUi->duration->setText(duration);
}

void MediaInfoDialog::SetNormalSize(const QString& size)
{
    mUi->normalSize->setText(size);
}

void MediaInfoDialog::SetCurrentSize(const QString& size)
{
    mUi->currentSize->setText(size);
}

void MediaInfoDialog::SetVideoCodec(const QString& codec)
{
    mUi->videoCodec->setText(codec);
}

void MediaInfoDialog::SetNumFrames(int frames)
{
    mUi->frames->setText(QString::number(frames));
}

void MediaInfoDialog::SetFrameRate(double rate)
{
    mUi->frameRate->setText(IsWholeNumber(rate) ? QString::number(static_cast<int>(rate))
                                                : QString::number(rate, 'f', 3));
}

void MediaInfoDialog::SetAudioCodec(const QString& codec)
{
    mUi->audioCodec->setText(codec);
}

void MediaInfoDialog::SetNumAudioChannels(int channels)
{
    mUi->audioChannels->setText(QString::number(channels));
}

void MediaInfoDialog::SetSampleRate(int rate)
{
    mUi->audioSampleRate->setText(QString::number(rate));
}

void MediaInfoDialog::Clear()
{
    mUi->filename->setText(tr("<b>No Media</b>"));
    mUi->source->clear();
    mUi->duration->clear();
    mUi->normalSize->clear();
    mUi->currentSize->clear();
    mUi->videoCodec->clear();
    mUi->frameRate->clear();
    mUi->frames->clear();
    mUi->audioCodec->clear();
    mUi->audioChannels->clear();
    mUi->audioSampleRate->clear();
}
