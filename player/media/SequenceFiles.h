// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <map>

/// The files of a numbered sequence.
///
/// The number is the run of digits right before the extension: shot.0101.exr is frame 101 of shot.####.exr.
/// Files beside each other with the same name but for the number belong together, whatever their padding.
class SequenceFiles
{
public:
    /// Finds the sequence that the file @p path belongs to, by reading its folder. A file without a number,
    /// or with one that has more than 9 digits or no neighbour, makes a sequence of itself alone.
    static SequenceFiles Of(const QString& path);

    /// Whether there are two files or more.
    bool IsSequence() const { return mFiles.size() > 1; }
    int FirstNumber() const { return mFiles.empty() ? 0 : mFiles.begin()->first; }
    /// Frames from the first number to the last.
    int FrameCount() const;
    /// Frames without a file.
    int MissingFrames() const;
    /// Frame (1-based) of the file that the sequence was named by.
    int NamedFrame() const;
    /// Path of @p frame (1 to FrameCount()), and whether there was such a file; of a missing one the path
    /// that it would have.
    QString PathOf(int frame, bool* exists) const;

private:
    QString mFolder;
    QString mPrefix;
    QString mSuffix;
    /// File names by their numbers.
    std::map<int, QString> mFiles;
    int mNamedNumber = 0;
    /// Digits of the file that the sequence was named by.
    int mPadding = 0;
};
