#pragma once

#include "cutout/CutoutMask.h"
#include "cutout/EdgeOptions.h"

#include <QImage>

#include <stop_token>

/**
 * Works on the edge of a mask: drop, fill, smooth, grow, feather, in this order.
 *
 * Input    a mask in Format_Grayscale8, 255 where the object is, or a session's own mask, 32 bits
 *          deep and transparent where the object is.
 * Output   masks of the same size and resolution, before and after feathering. Without options the
 *          mask as it is; smooth and grow give hard edges, also where they were soft; feather makes
 *          them soft. What lies beyond the picture counts as what lies at its border, so that an
 *          object which the picture cuts off is neither shrunk nor softened there.
 * Errors   null masks where the mask is null or of another format, where options are not valid,
 *          without memory, and once a stop was requested.
 * Threads  pure, any thread; stops within a few rows. Time O(pixels), whatever the radii: from
 *          smooth on those of the object's rectangle with a margin.
 */
namespace EdgeOperations {

CutoutMask apply(const QImage &mask, const EdgeOptions &options, const std::stop_token &stop = {});

} // namespace EdgeOperations
