#include "regiongrowing/RyEdgeDetectorSobelColor_p.h"

// The same loop as the plain one, for a compiler that may use wider registers. The target is the
// function's, not the file's: inline functions compiled here for AVX2 could otherwise end up in
// code that runs on older processors.
#if defined(__x86_64__) || defined(__i386__)
__attribute__((target("avx2")))
#endif
void RyEdgeDetectorSobelKernels::strengthRowAvx2(const QRgb *above, const QRgb *row,
                                                 const QRgb *below, Strengths strengths,
                                                 int width)
{
    for (int x = 1; x < width - 2; ++x)
        strengths[x] = strengthAt(above, row, below, x);
}
