#include "superpixels/RySlic_p.h"

#include "RyVectorTarget.h"

#if RY_HAS_X86_VECTORS

#include <immintrin.h>

namespace RySlicKernels {

namespace {

/// Takes one byte of each of four pixels into the low byte of its 32-bit lane.
RY_TARGET_SSSE3 inline __m128 channel(__m128i pixels, int byte)
{
    const char b = char(byte);
    const __m128i pick = _mm_setr_epi8(b, -1, -1, -1, char(b + 4), -1, -1, -1, char(b + 8), -1, -1,
                                       -1, char(b + 12), -1, -1, -1);
    return _mm_cvtepi32_ps(_mm_shuffle_epi8(pixels, pick));
}

RY_TARGET_SSSE3 inline __m128 squaredDifference(__m128 centre, __m128 values)
{
    const __m128 difference = _mm_sub_ps(centre, values);
    return _mm_mul_ps(difference, difference);
}

RY_TARGET_SSSE3 inline __m128 select(__m128 mask, __m128 ifSet, __m128 otherwise)
{
    return _mm_or_ps(_mm_and_ps(mask, ifSet), _mm_andnot_ps(mask, otherwise));
}

} // namespace

RY_TARGET_SSSE3 void measureGroupsSse(const Block &block)
{
    const RySuperPixel &centre = *block.centre;
    const __m128 luminance = _mm_set1_ps(float(centre.color().luminance()));
    const __m128 cb = _mm_set1_ps(float(centre.color().cb()));
    const __m128 cr = _mm_set1_ps(float(centre.color().cr()));
    const __m128 centreX = _mm_set1_ps(float(centre.x()));
    const __m128 step = _mm_set1_ps(block.step);
    const __m128 colorScale = _mm_set1_ps(RySuperPixel::colorScale);
    const __m128 reversed = _mm_setr_ps(3, 2, 1, 0);
    const __m128 label = _mm_castsi128_ps(_mm_set1_epi32(int(block.label)));
    for (int y = block.firstRow; y < block.endRow; ++y) {
        const RyYCbCrPixel *const pixels = block.pixelRow(y);
        auto *const labels =
                reinterpret_cast<float *>(block.labelRow(y)); // moved, not computed with
        float *const distances = block.distanceRow(y);
        const qint64 dy = qint64(centre.y()) - y;
        const __m128 squaredRows = _mm_set1_ps(float(dy * dy));
        for (int x = block.firstColumn; x < block.endColumn; x += 4) {
            const __m128i group = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pixels + x));
            const __m128 squares =
                    _mm_add_ps(_mm_add_ps(squaredDifference(luminance, channel(group, 2)),
                                          squaredDifference(cb, channel(group, 1))),
                               squaredDifference(cr, channel(group, 0)));
            const __m128 columns = _mm_add_ps(_mm_set1_ps(float(x)), reversed);
            const __m128 length =
                    _mm_sqrt_ps(_mm_add_ps(squaredDifference(centreX, columns), squaredRows));
            const __m128 distance =
                    _mm_add_ps(_mm_div_ps(squares, colorScale), _mm_div_ps(length, step));
            float *const bestSoFar = distances + (x - block.distancesLeft);
            const __m128 best = _mm_loadu_ps(bestSoFar);
            const __m128 closer = _mm_cmplt_ps(distance, best);
            if (_mm_movemask_ps(closer) == 0)
                continue;
            _mm_storeu_ps(bestSoFar, select(closer, distance, best));
            _mm_storeu_ps(labels + x, select(closer, label, _mm_loadu_ps(labels + x)));
        }
    }
}

} // namespace RySlicKernels

#else

// Never offered by available() on other processors; the plain loop keeps the linker content.
void RySlicKernels::measureGroupsSse(const Block &block)
{
    measureScalar(block);
}

#endif
