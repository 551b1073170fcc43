// SPDX-License-Identifier: MIT
#pragma once

#include "host/ExportPreset.h"
#include "host/ExportProfile.h"
#include "host/ExportQuality.h"
#include "output/OutputPlan.h"

#include <QSize>
#include <QStringList>

/// What the user chose for an export.
struct ExportOptions
{
    /// Absolute path of the movie.
    QString outputPath;
    QSize size;
    ExportProfile profile = ExportProfileHigh;
    ExportQuality quality = ExportQualityHigh;
    ExportPreset preset = ExportPresetMedium;
    /// The encoder's program.
    QString encoder;
    /// Where the movie is written until it is whole; empty for beside @c outputPath.
    QString temporaryDirectory;
};

/// Words of the encoder for what the user chose; a value that there isn't counts as the last one.
QString EncoderProfile(ExportProfile profile);
/// The constant rate factor: lower is better.
int EncoderRateFactor(ExportQuality quality);
QString EncoderPreset(ExportPreset preset);

/// The smallest size that can be encoded and holds @p size: even on both axes, since colour is stored at half
/// of it.
QSize EncodableSize(const QSize& size);

/// Arguments of the encoder, which reads frames of @p size (encodable) as bare planes from its standard
/// input, the sound from the media of @p plan, and writes H.264 and AAC in mp4 to @p file. It tells its
/// progress on its standard output.
QStringList EncoderArguments(const OutputPlan& plan, const ExportOptions& options, const QSize& size,
                             const QString& file);
