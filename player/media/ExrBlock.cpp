// SPDX-License-Identifier: MIT
#include "media/ExrBlock.h"

#include "media/Inflate.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define TORVALEN_EXR_VECTORS
#endif

namespace
{

/// Each byte is the difference to the one before, plus 128.
void SumDifferences(uchar* data, size_t bytes)
{
    size_t i = 0;
    uchar last = 128;
#ifdef TORVALEN_EXR_VECTORS
    const __m128i middle = _mm_set1_epi8(-128);
    __m128i carry = middle;
    for (; i + 16 <= bytes; i += 16)
    {
        auto* const place = reinterpret_cast<__m128i*>(data + i);
        __m128i sum = _mm_add_epi8(_mm_loadu_si128(place), middle);
        sum = _mm_add_epi8(sum, _mm_slli_si128(sum, 1));
        sum = _mm_add_epi8(sum, _mm_slli_si128(sum, 2));
        sum = _mm_add_epi8(sum, _mm_slli_si128(sum, 4));
        sum = _mm_add_epi8(sum, _mm_slli_si128(sum, 8));
        _mm_storeu_si128(place, _mm_add_epi8(sum, carry));
        // The last byte everywhere. It does not wait for the carry, so that one addition alone does.
        const __m128i pairs = _mm_unpackhi_epi8(sum, sum);
        const __m128i high = _mm_shufflehi_epi16(pairs, 0xff);
        carry = _mm_add_epi8(carry, _mm_unpackhi_epi64(high, high));
    }
    last = uchar(_mm_cvtsi128_si32(carry) & 0xff);
#endif
    for (; i < bytes; ++i)
    {
        last = uchar(last + data[i] - 128);
        data[i] = last;
    }
}

/// The first half of the bytes stands at the even places, the second at the odd ones.
void Interleave(const uchar* source, size_t bytes, uchar* target)
{
    const uchar* const even = source;
    const uchar* const odd = source + (bytes + 1) / 2;
    const size_t pairs = bytes / 2;
    size_t i = 0;
#ifdef TORVALEN_EXR_VECTORS
    for (; i + 16 <= pairs; i += 16)
    {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(even + i));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(odd + i));
        auto* const place = reinterpret_cast<__m128i*>(target + 2 * i);
        _mm_storeu_si128(place, _mm_unpacklo_epi8(low, high));
        _mm_storeu_si128(place + 1, _mm_unpackhi_epi8(low, high));
    }
#endif
    for (; i < pairs; ++i)
    {
        target[2 * i] = even[i];
        target[2 * i + 1] = odd[i];
    }
    if (bytes % 2 != 0)
        target[bytes - 1] = even[pairs];
}

/// A negative count is followed by as many bytes, another by one byte that stands once more than it says.
bool UnpackRuns(const uchar* packed, qint64 bytes, uchar* target, qint64 targetBytes)
{
    const uchar* const end = packed + bytes;
    uchar* const targetEnd = target + targetBytes;
    while (packed < end)
    {
        const int count = static_cast<signed char>(*packed++);
        const int length = count < 0 ? -count : count + 1;
        const int taken = count < 0 ? length : 1;
        if (end - packed < taken || targetEnd - target < length)
            return false;
        if (count < 0)
            std::memcpy(target, packed, size_t(length));
        else
            std::memset(target, *packed, size_t(length));
        packed += taken;
        target += length;
    }
    return target == targetEnd;
}

/// Sums the differences that stand in @p Planes rows of bytes, the highest first, and puts values of @p Bytes
/// bytes.
template<int Planes, int Bytes>
void JoinPlanes(const uchar* source, int width, uchar* target)
{
    quint32 value = 0;
    for (int x = 0; x < width; ++x, target += Bytes)
    {
        quint32 difference = 0;
        for (int plane = 0; plane < Planes; ++plane)
            difference |= quint32(source[qsizetype(plane) * width + x]) << (8 * (Bytes - 1 - plane));
        value += difference;
        if constexpr (Bytes == 4)
            qToLittleEndian<quint32>(value, target);
        else
            qToLittleEndian<quint16>(quint16(value), target);
    }
}

/// Bytes of a block's rows once the float values have lost their lowest.
qint64 ShortenedRowBytes(const ExrHeader& header)
{
    qint64 bytes = 0;
    for (const ExrChannel& channel : header.channels)
        bytes += qint64(channel.isFloat ? 3 : 2) * header.data.width();
    return bytes;
}

void JoinAllPlanes(const ExrHeader& header, int rows, const uchar* source, uchar* target)
{
    const int width = header.data.width();
    for (int row = 0; row < rows; ++row)
        for (const ExrChannel& channel : header.channels)
        {
            if (channel.isFloat)
                JoinPlanes<3, 4>(source, width, target);
            else
                JoinPlanes<2, 2>(source, width, target);
            source += qsizetype(channel.isFloat ? 3 : 2) * width;
            target += qsizetype(channel.Bytes()) * width;
        }
}

void MakeRoom(std::vector<uchar>& buffer, qint64 bytes)
{
    if (buffer.size() < size_t(bytes))
        buffer.resize(size_t(bytes));
}

#ifdef TORVALEN_EXR_VECTORS

/// Returns how many values of the @p count are done.
__attribute__((target("avx,f16c"))) int ToHalfByEights(const uchar* source, int count, quint16* target)
{
    int i = 0;
    for (; i + 8 <= count; i += 8)
    {
        float values[8];
        std::memcpy(values, source + qsizetype(i) * 4, sizeof(values));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + i),
                         _mm256_cvtps_ph(_mm256_loadu_ps(values), _MM_FROUND_TO_NEAREST_INT));
    }
    return i;
}

#else

int ToHalfByEights(const uchar*, int, quint16*)
{
    return 0;
}

#endif

bool HasHalfInstructions()
{
#ifdef TORVALEN_EXR_VECTORS
    static const bool has = __builtin_cpu_supports("avx") && __builtin_cpu_supports("f16c");
    return has;
#else
    return false;
#endif
}

} // namespace

const uchar* ExrBlock::Unpack(const ExrHeader& header, int rows, const uchar* packed, qint64 bytes,
                              std::vector<uchar>& scratch, std::vector<uchar>& target)
{
    const qint64 wanted = header.RowBytes() * rows;
    // A block that would not shrink stands as it is.
    if (bytes == wanted)
        return packed;
    if (bytes > wanted || header.compression == ExrCompression::None)
        return nullptr;
    MakeRoom(target, wanted);
    if (header.compression == ExrCompression::Pxr24)
    {
        const qint64 shortened = ShortenedRowBytes(header) * rows;
        MakeRoom(scratch, shortened);
        if (!Inflate::Unpack(packed, size_t(bytes), scratch.data(), size_t(shortened)))
            return nullptr;
        JoinAllPlanes(header, rows, scratch.data(), target.data());
        return target.data();
    }
    MakeRoom(scratch, wanted);
    const bool isWhole = header.compression == ExrCompression::Rle
                             ? UnpackRuns(packed, bytes, scratch.data(), wanted)
                             : Inflate::Unpack(packed, size_t(bytes), scratch.data(), size_t(wanted));
    if (!isWhole)
        return nullptr;
    SumDifferences(scratch.data(), size_t(wanted));
    Interleave(scratch.data(), size_t(wanted), target.data());
    return target.data();
}

quint16 ExrBlock::RoundedToHalf(quint32 floatBits)
{
    const auto sign = quint16(floatBits >> 16 & 0x8000U);
    const quint32 magnitude = floatBits & 0x7fffffffU;
    constexpr quint32 infinity = 0x7f800000U;
    // Half way between the largest half float and what would be the next.
    constexpr quint32 overflow = 0x477ff000U;
    // The smallest normal half float.
    constexpr quint32 normal = 0x38800000U;
    if (magnitude > infinity)
        return quint16(sign | 0x7e00U);
    if (magnitude >= overflow)
        return quint16(sign | 0x7c00U);
    quint32 significand = magnitude - ((127U - 15U) << 23);
    quint32 shift = 13;
    if (magnitude < normal)
    {
        // Steps of 2^-24; what is less than half of one is nothing.
        const quint32 exponent = magnitude >> 23;
        if (exponent < 102)
            return sign;
        significand = (magnitude & 0x7fffffU) | 0x800000U;
        shift = 126 - exponent;
    }
    const quint32 rest = significand & ((1U << shift) - 1U);
    const quint32 half = 1U << (shift - 1U);
    quint32 result = significand >> shift;
    if (rest > half || (rest == half && (result & 1U) != 0))
        ++result;
    return quint16(sign | result);
}

void ExrBlock::ToHalf(const uchar* source, bool isFloat, int count, quint16* target)
{
    if (!isFloat)
    {
        qFromLittleEndian<quint16>(source, count, target);
        return;
    }
    for (int i = HasHalfInstructions() ? ToHalfByEights(source, count, target) : 0; i < count; ++i)
        target[i] = RoundedToHalf(qFromLittleEndian<quint32>(source + qsizetype(i) * 4));
}
