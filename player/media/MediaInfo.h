// SPDX-License-Identifier: MIT
#pragma once

#include "media/FrameRate.h"

#include <QMetaType>
#include <QString>

/// What is known of a medium once it is open.
struct MediaInfo
{
    /// The path it was opened by.
    QString path;
    /// Size of the shown picture in pixels: turned upright, with square pixels. A sequence's is that of the
    /// frame it was opened by; others may differ.
    int width = 0;
    int height = 0;
    /// Frames from the first to the last, missing ones of a sequence included; 1 or more.
    int frameCount = 0;
    /// Frames a second. A movie with a variable rate has its average.
    FrameRate frameRate;
    /// Length in microseconds: frameCount frames at frameRate.
    int64_t duration = 0;
    /// Presentation time of the first frame in the file, in microseconds; 0 for pictures.
    int64_t startTime = 0;
    /// Names as the decoding library has them, e.g. "h264", "mov,mp4,m4a,3gp,3g2,mj2", "yuv420p"; "png",
    /// "half".
    QString codecName;
    QString containerName;
    QString pixelFormat;
    bool hasAudio = false;
    QString audioCodecName;
    int audioChannels = 0;
    /// Samples a second.
    int audioSampleRate = 0;
    /// Whether this is a numbered sequence of pictures; a single picture is not.
    bool isSequence = false;
    /// Number in the file name of a sequence's first frame.
    int firstSequenceNumber = 0;
    /// How many frames of a sequence have no file.
    int missingFrames = 0;
};

Q_DECLARE_METATYPE(MediaInfo)
