#pragma once

#include <QImage>

/**
 * How well a mask agrees with the true one.
 *
 * Intersection over union: pixels in both objects over pixels in either; 1 where both are empty.
 *
 * Boundary F-measure: the boundary is the object's outermost pixels, see Masks::boundary().
 * Precision is the share of the mask's boundary pixels that have one of the true boundary within
 * the tolerance (Euclidean, between pixel centres, the tolerance included); recall is the same with
 * the two exchanged; F is their harmonic mean. A mask without a boundary agrees fully with one that
 * has none either, and not at all with one that has.
 *
 * Source   Martin, Fowlkes and Malik, IEEE TPAMI 26(5), 2004. They match pixels one to one; here
 *          one may answer for several, as usual where outlines are closed and one pixel thin.
 */
struct MaskScore
{
    double intersectionOverUnion = 0.0;
    double boundaryPrecision = 0.0;
    double boundaryRecall = 0.0;

    double boundaryF() const;

    /// Masks of one size; the tolerance is in pixels.
    static MaskScore of(const QImage &mask, const QImage &truth, double tolerance);
};
