// SPDX-License-Identifier: MIT
#include "media/FileWindow.h"

#include <algorithm>
#include <vector>

namespace
{

// Few calls, and still within the second level of the cache.
constexpr qint64 WindowBytes = qint64(256) << 10;

std::vector<uchar>& WindowBuffer()
{
    thread_local std::vector<uchar> buffer;
    return buffer;
}

} // namespace

bool FileWindow::Open()
{
    if (!mFile.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    mSize = mFile.size();
    return true;
}

const uchar* FileWindow::At(qint64 offset, qint64 bytes)
{
    if (offset < 0 || bytes < 0 || offset > mSize || bytes > mSize - offset)
        return nullptr;
    std::vector<uchar>& buffer = WindowBuffer();
    if (offset < mBegin || offset + bytes > mEnd)
    {
        const qint64 wanted = std::min(std::max(bytes, WindowBytes), mSize - offset);
        if (buffer.size() < size_t(wanted))
            buffer.resize(size_t(wanted));
        mBegin = offset;
        mEnd = offset;
        if (!mFile.seek(offset))
            return nullptr;
        const qint64 read = mFile.read(reinterpret_cast<char*>(buffer.data()), wanted);
        mEnd = offset + std::max(read, qint64(0));
        if (read < bytes)
            return nullptr;
    }
    return buffer.data() + (offset - mBegin);
}
