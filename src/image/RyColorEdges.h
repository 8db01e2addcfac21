#pragma once

#include <QImage>

#include <array>

/**
 * The edges of a picture: a 3 × 3 Sobel operator over colour differences.
 *
 * Input    a YCbCr plane; the difference of two pixels is the sum of their absolute channel
 *          differences, 0 … 765.
 * Output   the picture of edges: Format_ARGB32 of the plane's size, opaque grey, red = green =
 *          blue = strength 0 … 255. The outermost pixels, the last column but one and the last row
 *          but one are never computed and stay black.
 * Source   Sobel's operator with unsigned colour distances instead of signed differences.
 * Errors   std::bad_alloc; a null picture of a null plane, or when memory is too short for it. One
 *          lower than 4 rows is black.
 * Threads  a plain value; of() blocks its caller and fans out over the global pool. Time O(w · h).
 */
struct RyColorEdges
{
    using Histogram = std::array<qint64, 256>;

    /// In lower pictures no row is computed: none has both neighbours but those that are left out.
    static constexpr int fewestRows = 4;

    QImage picture;
    Histogram histogram{}; ///< of the strengths that were computed

    static RyColorEdges of(const QImage &yCbCr);
};
