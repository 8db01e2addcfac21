#pragma once

#include "colour/RyYCbCr.h"

#include <QImage>
#include <QList>

/**
 * How often each colour occurs in the part of a picture that a mask chooses.
 *
 * Input    a YCbCr plane, and a mask of 32-bit pixels whose alpha marks a part; both are cut at
 *          the smaller one.
 * Output   counts of 16 × 16 × 16 bins, 16 values wide on each channel; luminance varies fastest.
 * Errors   none reported: a colour that fits no bin counts 0, null images count nothing.
 * Threads  a plain value; different objects may count at the same time. Time O(w · h).
 */
class RyHistogram3D
{
public:
    RyHistogram3D() = default; ///< no bins
    /// Counts pixels whose mask alpha is not 0 when insideMask is true, those with alpha 0 when it
    /// is false.
    RyHistogram3D(const QImage &yCbCr, const QImage &mask, bool insideMask);

    void buildHistogram(); ///< counts; call once

    qsizetype size() const { return m_count; } ///< pixels counted
    int createIndex(const RyYCbCr &color) const;
    int value(const RyYCbCr &color) const; ///< the count of the colour's bin

private:
    QList<int> m_bins;
    qsizetype m_count = 0;
    QImage m_picture;
    QImage m_mask;
    bool m_insideMask = false;
};
