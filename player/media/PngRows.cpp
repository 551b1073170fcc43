// SPDX-License-Identifier: MIT
#include "media/PngRows.h"

#include <cstdlib>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace
{

enum class PngFilter
{
    None = 0,
    Left = 1,
    Above = 2,
    Mean = 3,
    Nearest = 4
};

#if defined(__SSE2__)

/// A pixel and what stands behind it: 4 bytes, or 8 where a pixel is larger.
template<int PixelBytes>
__m128i LoadPixel(const uchar* place)
{
    if constexpr (PixelBytes <= 4)
    {
        int value = 0;
        std::memcpy(&value, place, sizeof(value));
        return _mm_cvtsi32_si128(value);
    }
    else
    {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(place));
    }
}

template<int PixelBytes>
void StorePixel(uchar* place, __m128i pixel)
{
    if constexpr (PixelBytes <= 4)
    {
        const int value = _mm_cvtsi128_si32(pixel);
        std::memcpy(place, &value, sizeof(value));
    }
    else
    {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(place), pixel);
    }
}

__m128i Magnitude(__m128i value)
{
    return _mm_max_epi16(value, _mm_sub_epi16(_mm_setzero_si128(), value));
}

__m128i Chosen(__m128i mask, __m128i yes, __m128i no)
{
    return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

template<int PixelBytes>
void RestoreLeft(const uchar* filtered, uchar* row, size_t bytes)
{
    __m128i left = _mm_setzero_si128();
    for (size_t i = 0; i < bytes; i += PixelBytes)
    {
        left = _mm_add_epi8(left, LoadPixel<PixelBytes>(filtered + i));
        StorePixel<PixelBytes>(row + i, left);
    }
}

template<int PixelBytes>
void RestoreMean(const uchar* filtered, const uchar* above, uchar* row, size_t bytes)
{
    const __m128i one = _mm_set1_epi8(1);
    __m128i left = _mm_setzero_si128();
    for (size_t i = 0; i < bytes; i += PixelBytes)
    {
        const __m128i over = LoadPixel<PixelBytes>(above + i);
        // The instruction rounds up, the filter down.
        const __m128i mean =
            _mm_sub_epi8(_mm_avg_epu8(left, over), _mm_and_si128(_mm_xor_si128(left, over), one));
        left = _mm_add_epi8(mean, LoadPixel<PixelBytes>(filtered + i));
        StorePixel<PixelBytes>(row + i, left);
    }
}

template<int PixelBytes>
void RestoreNearest(const uchar* filtered, const uchar* above, uchar* row, size_t bytes)
{
    // 16 bits a value, since the differences are signed.
    const __m128i zero = _mm_setzero_si128();
    __m128i left = zero;
    __m128i corner = zero;
    for (size_t i = 0; i < bytes; i += PixelBytes)
    {
        const __m128i over = _mm_unpacklo_epi8(LoadPixel<PixelBytes>(above + i), zero);
        const __m128i added = _mm_unpacklo_epi8(LoadPixel<PixelBytes>(filtered + i), zero);
        const __m128i toOver = _mm_sub_epi16(over, corner);
        const __m128i toLeft = _mm_sub_epi16(left, corner);
        const __m128i fromLeft = Magnitude(toOver);
        const __m128i fromOver = Magnitude(toLeft);
        const __m128i fromCorner = Magnitude(_mm_add_epi16(toOver, toLeft));
        const __m128i least = _mm_min_epi16(fromCorner, _mm_min_epi16(fromLeft, fromOver));
        const __m128i nearest = Chosen(_mm_cmpeq_epi16(least, fromLeft), left,
                                       Chosen(_mm_cmpeq_epi16(least, fromOver), over, corner));
        corner = over;
        // Byte by byte, so that the upper byte of each value stays zero.
        left = _mm_add_epi8(nearest, added);
        StorePixel<PixelBytes>(row + i, _mm_packus_epi16(left, left));
    }
}

#else

template<int PixelBytes>
void RestoreLeft(const uchar* filtered, uchar* row, size_t bytes)
{
    for (size_t i = 0; i < bytes; ++i)
        row[i] = uchar(filtered[i] + (i < PixelBytes ? 0 : row[i - PixelBytes]));
}

template<int PixelBytes>
void RestoreMean(const uchar* filtered, const uchar* above, uchar* row, size_t bytes)
{
    for (size_t i = 0; i < bytes; ++i)
    {
        const int left = i < PixelBytes ? 0 : row[i - PixelBytes];
        row[i] = uchar(filtered[i] + (left + above[i]) / 2);
    }
}

template<int PixelBytes>
void RestoreNearest(const uchar* filtered, const uchar* above, uchar* row, size_t bytes)
{
    for (size_t i = 0; i < bytes; ++i)
    {
        const int left = i < PixelBytes ? 0 : row[i - PixelBytes];
        const int corner = i < PixelBytes ? 0 : above[i - PixelBytes];
        const int fromLeft = std::abs(above[i] - corner);
        const int fromOver = std::abs(left - corner);
        const int fromCorner = std::abs(above[i] + left - 2 * corner);
        int nearest = corner;
        if (fromLeft <= fromOver && fromLeft <= fromCorner)
            nearest = left;
        else if (fromOver <= fromCorner)
            nearest = above[i];
        row[i] = uchar(filtered[i] + nearest);
    }
}

#endif

template<int PixelBytes>
bool RestoreRow(int filter, const uchar* filtered, const uchar* above, uchar* row, size_t bytes)
{
    switch (PngFilter(filter))
    {
    case PngFilter::None:
        std::memcpy(row, filtered, bytes);
        return true;
    case PngFilter::Left:
        RestoreLeft<PixelBytes>(filtered, row, bytes);
        return true;
    case PngFilter::Above:
        for (size_t i = 0; i < bytes; ++i)
            row[i] = uchar(filtered[i] + above[i]);
        return true;
    case PngFilter::Mean:
        RestoreMean<PixelBytes>(filtered, above, row, bytes);
        return true;
    case PngFilter::Nearest:
        RestoreNearest<PixelBytes>(filtered, above, row, bytes);
        return true;
    }
    return false;
}

} // namespace

bool PngRows::Restore(int filter, int pixelBytes, const uchar* filtered, const uchar* above, uchar* row,
                      size_t bytes)
{
    switch (pixelBytes)
    {
    case 1:
        return RestoreRow<1>(filter, filtered, above, row, bytes);
    case 2:
        return RestoreRow<2>(filter, filtered, above, row, bytes);
    case 3:
        return RestoreRow<3>(filter, filtered, above, row, bytes);
    case 4:
        return RestoreRow<4>(filter, filtered, above, row, bytes);
    case 6:
        return RestoreRow<6>(filter, filtered, above, row, bytes);
    case 8:
        return RestoreRow<8>(filter, filtered, above, row, bytes);
    default:
        return false;
    }
}
