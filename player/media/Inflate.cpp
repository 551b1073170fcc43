// SPDX-License-Identifier: MIT
#include "media/Inflate.h"

#include <libdeflate.h>

#include <memory>

namespace
{

struct InflateDeleter
{
    void operator()(libdeflate_decompressor* unpacker) const { libdeflate_free_decompressor(unpacker); }
};

} // namespace

bool Inflate::Unpack(const uchar* packed, size_t bytes, uchar* target, size_t targetBytes)
{
    thread_local const std::unique_ptr<libdeflate_decompressor, InflateDeleter> unpacker(
        libdeflate_alloc_decompressor());
    // Without a place for the number of bytes, fewer than those asked for are a failure.
    return unpacker && libdeflate_zlib_decompress(unpacker.get(), packed, bytes, target, targetBytes,
                                                  nullptr) == LIBDEFLATE_SUCCESS;
}

quint32 Inflate::Crc32(const uchar* data, size_t bytes)
{
    return libdeflate_crc32(0, data, bytes);
}
