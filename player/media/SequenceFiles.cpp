// SPDX-License-Identifier: MIT
#include "media/SequenceFiles.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace
{

// A number of 9 digits fits 31 bits, and so does the count of frames between two of them.
constexpr int MaximumDigits = 9;

bool IsDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

} // namespace

SequenceFiles SequenceFiles::Of(const QString& path)
{
    const QFileInfo file(path);
    const QString name = file.fileName();
    SequenceFiles files;
    files.mFolder = file.path();
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const int end = dot < 0 ? name.size() : dot;
    int begin = end;
    while (begin > 0 && IsDigit(name.at(begin - 1)))
        --begin;
    files.mPadding = end - begin;
    if (files.mPadding == 0 || files.mPadding > MaximumDigits)
    {
        files.mFiles[0] = name;
        return files;
    }
    files.mPrefix = name.left(begin);
    files.mSuffix = name.mid(end);
    files.mNamedNumber = name.midRef(begin, files.mPadding).toInt();
    files.mFiles[files.mNamedNumber] = name;

    const QStringList neighbours = QDir(files.mFolder).entryList(QDir::Files | QDir::Hidden, QDir::Unsorted);
    for (const QString& neighbour : neighbours)
    {
        const int digits = neighbour.size() - files.mPrefix.size() - files.mSuffix.size();
        if (digits < 1 || digits > MaximumDigits || !neighbour.startsWith(files.mPrefix) ||
            !neighbour.endsWith(files.mSuffix))
            continue;
        const QStringRef number = neighbour.midRef(files.mPrefix.size(), digits);
        if (!std::all_of(number.begin(), number.end(), IsDigit))
            continue;
        // Of two files with one number that with the padding of the named file counts.
        QString& known = files.mFiles[number.toInt()];
        if (known.isEmpty() || digits == files.mPadding)
            known = neighbour;
    }
    return files;
}

int SequenceFiles::FrameCount() const
{
    return mFiles.empty() ? 0 : mFiles.rbegin()->first - mFiles.begin()->first + 1;
}

int SequenceFiles::MissingFrames() const
{
    return FrameCount() - int(mFiles.size());
}

int SequenceFiles::NamedFrame() const
{
    return IsSequence() ? mNamedNumber - FirstNumber() + 1 : 1;
}

QString SequenceFiles::PathOf(int frame, bool* exists) const
{
    const int number = FirstNumber() + frame - 1;
    const auto found = mFiles.find(number);
    *exists = found != mFiles.end();
    const QString name =
        *exists ? found->second
                : mPrefix + QString::number(number).rightJustified(mPadding, QLatin1Char('0')) + mSuffix;
    return QDir(mFolder).filePath(name);
}
