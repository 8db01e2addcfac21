#include "superpixels/RySlic_p.h"

#include "RyVectorTarget.h"

#if RY_HAS_X86_VECTORS

#include <immintrin.h>

namespace RySlicKernels {

namespace {

/// One record, a copy in every lane.
struct Centre
{
    __m256 luminance, cb, cr, x, step;
};

RY_TARGET_AVX2 inline Centre broadcast(const Block &block)
{
    const RySuperPixel &centre = *block.centre;
    return {_mm256_set1_ps(float(centre.color().luminance())),
            _mm256_set1_ps(float(centre.color().cb())), _mm256_set1_ps(float(centre.color().cr())),
            _mm256_set1_ps(float(centre.x())), _mm256_set1_ps(block.step)};
}

RY_TARGET_AVX2 inline __m256 squaredRowDistance(const Block &block, int y)
{
    const qint64 dy = qint64(block.centre->y()) - y;
    return _mm256_set1_ps(float(dy * dy));
}

/// Distances of eight pixels whose columns are given; the order of evaluation is part of the
/// result.
RY_TARGET_AVX2 inline __m256 distancesOf(const Centre &centre, __m256i pixels, __m256 columns,
                                         __m256 squaredRows)
{
    const __m256i lowByte = _mm256_set1_epi32(0xFF);
    const __m256i y = _mm256_and_si256(_mm256_srli_epi32(pixels, 16), lowByte);
    const __m256i cb = _mm256_and_si256(_mm256_srli_epi32(pixels, 8), lowByte);
    const __m256i cr = _mm256_and_si256(pixels, lowByte);
    const __m256 dy = _mm256_sub_ps(centre.luminance, _mm256_cvtepi32_ps(y));
    const __m256 dcb = _mm256_sub_ps(centre.cb, _mm256_cvtepi32_ps(cb));
    const __m256 dcr = _mm256_sub_ps(centre.cr, _mm256_cvtepi32_ps(cr));
    const __m256 squares = _mm256_add_ps(
            _mm256_add_ps(_mm256_mul_ps(dy, dy), _mm256_mul_ps(dcb, dcb)), _mm256_mul_ps(dcr, dcr));
    const __m256 color = _mm256_div_ps(squares, _mm256_set1_ps(RySuperPixel::colorScale));
    const __m256 dx = _mm256_sub_ps(centre.x, columns);
    const __m256 length = _mm256_sqrt_ps(_mm256_add_ps(_mm256_mul_ps(dx, dx), squaredRows));
    return _mm256_add_ps(color, _mm256_div_ps(length, centre.step));
}

} // namespace

RY_TARGET_AVX2 void measureGroupsAvx2(const Block &block)
{
    const Centre centre = broadcast(block);
    const __m256i label = _mm256_set1_epi32(int(block.label));
    const __m256 reversed = _mm256_setr_ps(7, 6, 5, 4, 3, 2, 1, 0);
    for (int y = block.firstRow; y < block.endRow; ++y) {
        const RyYCbCrPixel *const pixels = block.pixelRow(y);
        quint32 *const labels = block.labelRow(y);
        float *const distances = block.distanceRow(y);
        const __m256 squaredRows = squaredRowDistance(block, y);
        for (int x = block.firstColumn; x < block.endColumn; x += 8) {
            const __m256i group = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(pixels + x));
            const __m256 columns = _mm256_add_ps(_mm256_set1_ps(float(x)), reversed);
            const __m256 distance = distancesOf(centre, group, columns, squaredRows);
            float *const bestSoFar = distances + (x - block.distancesLeft);
            const __m256 best = _mm256_loadu_ps(bestSoFar);
            const __m256 closer = _mm256_cmp_ps(distance, best, _CMP_LT_OQ);
            auto *const words = reinterpret_cast<__m256i *>(labels + x);
            const __m256i before = _mm256_loadu_si256(words);
            _mm256_storeu_ps(bestSoFar, _mm256_blendv_ps(best, distance, closer));
            _mm256_storeu_si256(words,
                                _mm256_blendv_epi8(before, label, _mm256_castps_si256(closer)));
        }
    }
}

RY_TARGET_AVX2 void measurePartOfGroupAvx2(const Block &block)
{
    const Centre centre = broadcast(block);
    const __m256i label = _mm256_set1_epi32(int(block.label));
    const int start = roundedDown(block.firstColumn, 8);
    const __m256i columns =
            _mm256_add_epi32(_mm256_set1_epi32(start), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    const __m256i wanted =
            _mm256_and_si256(_mm256_cmpgt_epi32(columns, _mm256_set1_epi32(block.firstColumn - 1)),
                             _mm256_cmpgt_epi32(_mm256_set1_epi32(block.endColumn), columns));
    for (int y = block.firstRow; y < block.endRow; ++y) {
        // Masked lanes are neither read nor written: the group may reach outside the picture.
        const auto *const pixels = reinterpret_cast<const int *>(block.pixelRow(y) + start);
        auto *const labels = reinterpret_cast<int *>(block.labelRow(y) + start);
        float *const distances = block.distanceRow(y) + (start - block.distancesLeft);
        const __m256 distance =
                distancesOf(centre, _mm256_maskload_epi32(pixels, wanted),
                            _mm256_cvtepi32_ps(columns), squaredRowDistance(block, y));
        const __m256 best = _mm256_maskload_ps(distances, wanted);
        const __m256 below = _mm256_cmp_ps(distance, best, _CMP_LT_OQ);
        const __m256i closer = _mm256_and_si256(_mm256_castps_si256(below), wanted);
        _mm256_maskstore_ps(distances, closer, distance);
        _mm256_maskstore_epi32(labels, closer, label);
    }
}

} // namespace RySlicKernels

#else

// Never offered by available() on other processors; the plain loop keeps the linker content.
void RySlicKernels::measureGroupsAvx2(const Block &block)
{
    measureScalar(block);
}

void RySlicKernels::measurePartOfGroupAvx2(const Block &block)
{
    measureScalar(block);
}

#endif
