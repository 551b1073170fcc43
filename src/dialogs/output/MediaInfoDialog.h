// SPDX-License-Identifier: MIT
#pragma once

#include "TorvalenUIExport.h"

#include <QDialog>
#include <QString>

namespace Ui
{
class MediaInfoDialog;
}

/// A panel of what is known of the current medium. It reads nothing by itself: the host sets each value, and
/// calls Clear() when there is no medium.
class TORVALENUI_EXPORT MediaInfoDialog : public QDialog
{
    Q_OBJECT

public:
    explicit MediaInfoDialog(QWidget* parent);
    ~MediaInfoDialog() override;

    /// Shows @p path and, in bold above it, its file name; the path that is shown already changes nothing.
    void SetSourcePath(const QString& path);
    /// Each shows its text as it stands.
    void SetDuration(const QString& duration);
    void SetNormalSize(const QString& size);
    void SetCurrentSize(const QString& size);
    void SetVideoCodec(const QString& codec);
    void SetNumFrames(int frames);
    /// Shows @p rate frames a second, with three decimals unless it is a whole number.
    void SetFrameRate(double rate);
    void SetAudioCodec(const QString& codec);
    void SetNumAudioChannels(int channels);
    /// Shows @p rate samples a second.
    void SetSampleRate(int rate);
    /// Empties every value.
    void Clear();

private:
    Ui::MediaInfoDialog* mUi;
};
