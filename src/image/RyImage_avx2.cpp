#include "image/RyImage_p.h"

// The same loop as the plain one, for a compiler that may use four doubles at a time. The target is
// the function's and not the file's: inline functions of Qt compiled here for AVX2 could otherwise
// end up in code that runs on older processors.
#if defined(__x86_64__) || defined(__i386__)
__attribute__((target("avx2")))
#endif
void RyImageKernels::convertRowAvx2(const QRgb *in, QRgb *out, int count)
{
    for (int x = 0; x < count; ++x)
        out[x] = packedYCbCr(in[x]);
}
