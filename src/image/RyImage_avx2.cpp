#include "image/RyImage_p.h"

#include "RyVectorTarget.h"

// The same loop as the plain one, for a compiler that may use four doubles at a time.
RY_TARGET_AVX2 void RyImageKernels::convertRowAvx2(const QRgb *in, QRgb *out, int count)
{
    for (int x = 0; x < count; ++x)
        out[x] = packedYCbCr(in[x]);
}
