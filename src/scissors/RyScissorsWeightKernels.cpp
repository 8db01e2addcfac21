#include "RyCpuFeatures.h"
#include "scissors/RyScissorsWeightKernels_p.h"

void RyScissorsWeightKernels::greyRow(const QRgb *in, uchar *out, int count)
{
    for (int i = 0; i < count; ++i) {
        const quint32 sum = (in[i] & 0xFF) + ((in[i] >> 8) & 0xFF) + ((in[i] >> 16) & 0xFF);
        out[i] = uchar(sum * 21846 >> 16); // sum / 3 for all sums up to 765
    }
}

void RyScissorsWeightKernels::averageRows(const uchar *in0, const uchar *in1, uchar *out, int count)
{
    for (int i = 0; i < count; ++i)
        out[i] = uchar((in0[2 * i] + in0[2 * i + 1] + in1[2 * i] + in1[2 * i + 1]) >> 2);
}

QList<RyScissorsWeightKernels::Variant> RyScissorsWeightKernels::available()
{
    QList<Variant> variants{{"plain", greyRow, averageRows}};
    if (ryCpuHasFeature(RyCpuFeature::Avx2))
        variants.append({"avx2", greyRowAvx2, averageRowsAvx2});
    return variants;
}
