#pragma once

#include "segmentation/RySegmentationState.h"

#include <QImage>
#include <QPainterPath>

#include <memory>
#include <vector>

/**
 * The first cut by graph cuts, on a session's state: the mask has the cut's own outline, and every
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

/// Makes a mask the state's, and puts the regions on their sides. Label 0 is background.
void adopt(RySegmentationState &state, const QImage &mask);

/// Cuts anew under all constraints of the state.
void recut(RySegmentationState &state);

} // namespace RyGraphFirstCut
