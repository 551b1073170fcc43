// SPDX-License-Identifier: MIT
#pragma once

#include "media/MediaReader.h"
#include "media/SequenceFiles.h"

/// Reads a numbered sequence of picture files, or a single one.
///
/// Each frame stands alone, and any number of threads may read at once. Numbers without a file are frames
/// too; they answer Missing. A frame of another size keeps its own.
class SequenceReader : public MediaReader
{
public:
    /// Opens the sequence that the file @p path belongs to. Returns null if none of its files can be read and
    /// tells why in @p error.
    static std::unique_ptr<SequenceReader> Open(const QString& path, const MediaOptions& options,
                                                QString* error);

    const MediaInfo& Info() const override { return mInfo; }
    DecodedFrame DecodeFrame(int frame, const CancelToken& cancel) override;
    bool CanReadInParallel() const override { return true; }

private:
    SequenceReader(SequenceFiles files, const MediaOptions& options);

    SequenceFiles mFiles;
    MediaOptions mOptions;
    MediaInfo mInfo;
};
