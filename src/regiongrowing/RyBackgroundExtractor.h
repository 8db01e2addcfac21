#pragma once

#include "image/RyImage.h"
#include "superpixels/RySuperPixel.h"

#include <QList>
#include <QSet>

/**
 * Finds regions whose colour is more frequent under a mask than beside it.
 *
 * Input    a picture, the regions' records, candidate labels, and a mask whose alpha marks what
 *          the candidates are compared with.
 * Output   the candidates whose mean colour lies in a histogram bin (RyHistogram3D) that holds
 *          strictly more pixels under the mask than beside it. Counts are absolute, so the larger
 *          side wins often.
 * Errors   none reported: candidates without a record are never taken.
 * Threads  blocks its caller; both histograms are counted on the global pool. Time O(w · h).
 */
class RyBackgroundExtractor
{
public:
    void setup(const RyImage *image); ///< borrowed
    void setSuperPixelInformations(const QList<RySuperPixel> &regions);
    QSet<int> extractBackground(const QSet<int> &candidates, const QImage &mask) const;

private:
    const RyImage *m_image = nullptr;
    QList<RySuperPixel> m_regions;
};
