#pragma once

#include "segmentation/RyCut.h"

#include <QImage>
#include <QPainterPath>

#include <memory>

class RyGraphCut;

/**
 * A cut by graph cuts: the mask has the cut's own outline, and every
 * region is on the side that most of it is on.
 *
 * Errors   std::bad_alloc.
 * Threads  stateless; blocks its caller and fans out over the global pool.
 */
namespace RyGraphFirstCut {

/// Judges what a lasso holds. Null for a lasso that covers no pixel of the picture, which has 32
/// bits a pixel.
std::shared_ptr<const RyGraphCut> analyse(const QImage &picture, const QPainterPath &lasso);

/// Cuts, and gives the mask in a session's format. Null where memory is short.
QImage mask(const RyGraphCut &graphCut, const RyCutConstraints &constraints, const QSize &picture,
            QRgb maskColor);

/// Makes a mask the cut's, and puts the regions on their sides. Label 0 is background.
void adopt(RyCut &cut, const QImage &mask, const RyRegions &regions);

/// Cuts anew under all constraints of the cut.
void recut(RyCut &cut, const RyGraphCut &graphCut, const RyRegions &regions);

} // namespace RyGraphFirstCut
