#include "image/RyColorEdges_p.h"

#include "RyVectorTarget.h"

// The same loop as the plain one, for a compiler that may use wider registers.
RY_TARGET_AVX2 void RyColorEdgeKernels::strengthRowAvx2(const QRgb *above, const QRgb *row,
                                                        const QRgb *below, Strengths strengths,
                                                        int width)
{
    for (int x = 1; x < width - 2; ++x)
        strengths[x] = strengthAt(above, row, below, x);
}
