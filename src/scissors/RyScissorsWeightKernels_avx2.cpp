#include "scissors/RyScissorsWeightKernels_p.h"

#include "RyVectorTarget.h"

#if RY_HAS_X86_VECTORS

#include <immintrin.h>

namespace {

RY_TARGET_AVX2 inline __m256i load(const void *from)
{
    return _mm256_loadu_si256(static_cast<const __m256i *>(from));
}

/// The three channels' sums of eight pixels, in 32 bits each.
RY_TARGET_AVX2 inline __m256i colorSums(const QRgb *in)
{
    const __m256i pairs = _mm256_maddubs_epi16(load(in), _mm256_set1_epi32(0x00010101));
    return _mm256_madd_epi16(pairs, _mm256_set1_epi16(1));
}

/// Sixteen sums a third each, in 16 bits, in the order in which packing leaves them.
RY_TARGET_AVX2 inline __m256i thirds(const QRgb *in)
{
    const __m256i sums = _mm256_packus_epi32(colorSums(in), colorSums(in + 8));
    return _mm256_mulhi_epu16(sums, _mm256_set1_epi16(21846));
}

/// The sums of neighbouring bytes of both rows, sixteen of 16 bits.
RY_TARGET_AVX2 inline __m256i quarters(const uchar *in0, const uchar *in1)
{
    const __m256i ones = _mm256_set1_epi8(1);
    const __m256i sums = _mm256_add_epi16(_mm256_maddubs_epi16(load(in0), ones),
                                          _mm256_maddubs_epi16(load(in1), ones));
    return _mm256_srli_epi16(sums, 2);
}

} // namespace

RY_TARGET_AVX2 void RyScissorsWeightKernels::greyRowAvx2(const QRgb *in, uchar *out, int count)
{
    // Packing works within halves of 128 bits: four bytes of each vector stay together.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i grey = _mm256_packus_epi16(thirds(in + i), thirds(in + i + 16));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i),
                            _mm256_permutevar8x32_epi32(grey, order));
    }
    greyRow(in + i, out + i, count - i);
}

RY_TARGET_AVX2 void RyScissorsWeightKernels::averageRowsAvx2(const uchar *in0, const uchar *in1,
                                                             uchar *out, int count)
{
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i averages = _mm256_packus_epi16(quarters(in0 + 2 * i, in1 + 2 * i),
                                                     quarters(in0 + 2 * i + 32, in1 + 2 * i + 32));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i),
                            _mm256_permute4x64_epi64(averages, 0xD8)); // halves back in order
    }
    averageRows(in0 + 2 * i, in1 + 2 * i, out + i, count - i);
}

#else // Never chosen: ryCpuHasFeature() says no on other processors.

void RyScissorsWeightKernels::greyRowAvx2(const QRgb *in, uchar *out, int count)
{
    greyRow(in, out, count);
}

void RyScissorsWeightKernels::averageRowsAvx2(const uchar *in0, const uchar *in1, uchar *out,
                                              int count)
{
    averageRows(in0, in1, out, count);
}

#endif
