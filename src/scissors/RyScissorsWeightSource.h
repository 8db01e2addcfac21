#pragma once

#include "scissors/RyScissorsWeightKernels_p.h"

#include <QtGlobal>

#include <array>
#include <vector>

/**
 * Computes weights of a reduced grid from pixels.
 *
 * Input    a picture of width × height pixels, of which those beyond coveredWidth × coveredHeight
 *          are black and do not exist in memory; the factor of the reduction; what follows it.
 * Output   one byte for each grid point: the mean grey of its square, or what is left of it at the
 *          right and bottom, then the inverted Sobel magnitude, the contrast curve, the inversion.
 * Source   Sobel's operator; box averages; a logistic curve.
 * Errors   std::bad_alloc.
 * Threads  a plain value; calls may run at the same time.
 */
struct RyScissorsWeightSource
{
    enum class Format { None, Grey8, Rgb32 }; ///< None: every pixel is black

    const uchar *data = nullptr; ///< borrowed; row y starts at y · bytesPerLine
    quint32 bytesPerLine = 0;
    Format format = Format::None;
    quint32 width = 0, height = 0;
    quint32 coveredWidth = 0, coveredHeight = 0;
    quint32 scale = 1;
    bool detectsEdges = false;
    std::array<uchar, 256> finish{}; ///< contrast curve and inversion in one table
    RyScissorsWeightKernels::Variant kernels = RyScissorsWeightKernels::available().last();

    quint32 gridWidth() const;
    quint32 gridHeight() const;

    /// From this column or row on every weight is blankWeight().
    quint32 blankFromColumn() const;
    quint32 blankFromRow() const;
    uchar blankWeight() const;

    /// Writes the weights of the grid points [left, right) × [top, bottom) row after row.
    void calculate(quint32 left, quint32 top, quint32 right, quint32 bottom, uchar *out) const;

private:
    /// Scratch of one call: the pixel rows of one grid row, and the sums of their columns.
    struct Rows
    {
        std::vector<uchar> grey;
        std::vector<quint32> sums;
    };

    void greyRow(quint32 row, quint32 left, quint32 right, uchar *out) const;
    void reducedRow(quint32 row, quint32 left, quint32 right, uchar *out, Rows &scratch) const;
    void averageSquares(quint32 pixels, quint32 rows, uchar *out, Rows &scratch) const;
    void edges(quint32 left, quint32 top, quint32 right, quint32 bottom, uchar *out) const;
};
