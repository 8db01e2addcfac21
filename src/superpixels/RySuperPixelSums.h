#pragma once

#include "superpixels/RySuperPixel.h"

#include <QImage>
#include <QList>
#include <QRect>

/**
 * Adds every labelled pixel of an area to the record of its label.
 *
 * Input    a label image and a YCbCr plane, both 32 bits deep; the area is cut at both.
 * Output   colour and position sums and the count of every record but record 0 grow; nothing is
 *          reset or normalised. Labels without a record are passed over.
 * Errors   none reported: null images add nothing.
 * Threads  blocks its caller; row bands run on the global pool. Sums wrap at 2³² and come out the
 *          same for every number of bands. Time O(area).
 */
namespace RySuperPixelSums {

void addLabelledPixels(QList<RySuperPixel> &records, const QImage &labels, const QImage &yCbCr,
                       const QRect &area);

} // namespace RySuperPixelSums
