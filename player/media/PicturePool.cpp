// SPDX-License-Identifier: MIT
#include "media/PicturePool.h"

#include <climits>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace
{

// Room that swscale may write behind a row's end, and its alignment.
constexpr size_t Alignment = 64;
constexpr size_t Slack = 256;
// Memory that waits for use is bounded in number and in bytes.
constexpr size_t MaximumSpares = 8;
constexpr size_t MaximumSpareBytes = size_t(256) << 20;

struct Buffer
{
    void* data;
    size_t bytes;
};

class Spares
{
public:
    void* Take(size_t bytes)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        for (auto it = mBuffers.rbegin(); it != mBuffers.rend(); ++it)
        {
            if (it->bytes != bytes)
                continue;
            void* const data = it->data;
            mBytes -= bytes;
            mBuffers.erase(std::next(it).base());
            return data;
        }
        return nullptr;
    }

    void Give(const Buffer& buffer)
    {
        std::vector<void*> dropped;
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mBuffers.push_back(buffer);
            mBytes += buffer.bytes;
            while (!mBuffers.empty() && (mBuffers.size() > MaximumSpares || mBytes > MaximumSpareBytes))
            {
                dropped.push_back(mBuffers.front().data);
                mBytes -= mBuffers.front().bytes;
                mBuffers.erase(mBuffers.begin());
            }
        }
        for (void* data : dropped)
            std::free(data);
    }

private:
    std::mutex mMutex;
    std::vector<Buffer> mBuffers;
    size_t mBytes = 0;
};

Spares& TheSpares()
{
    // Never destroyed: a picture may live on while the process ends.
    static Spares* const spares = new Spares;
    return *spares;
}

void GiveBack(void* info)
{
    auto* const buffer = static_cast<Buffer*>(info);
    TheSpares().Give(*buffer);
    delete buffer;
}

} // namespace

QImage PicturePool::Take(const QSize& size, QImage::Format format)
{
    if (size.isEmpty() || size.width() > 65536 || size.height() > 65536)
        return {};
    const size_t rowBytes =
        format == QImage::Format_RGB888 ? (size_t(size.width()) * 3 + 3) / 4 * 4 : size_t(size.width()) * 4;
    const size_t pixels = rowBytes * size_t(size.height());
    if (pixels > size_t(INT_MAX))
        return {};
    const size_t bytes = (pixels + Slack + Alignment - 1) / Alignment * Alignment;
    void* data = TheSpares().Take(bytes);
    if (data == nullptr)
        data = std::aligned_alloc(Alignment, bytes);
    if (data == nullptr)
        return {};
    auto* const buffer = new Buffer{data, bytes};
    QImage image(static_cast<uchar*>(data), size.width(), size.height(), int(rowBytes), format, GiveBack,
                 buffer);
    if (image.isNull())
        GiveBack(buffer);
    return image;
}
