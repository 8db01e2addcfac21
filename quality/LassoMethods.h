#pragma once

#include "CutMethod.h"

/// What the lasso alone gives, without a look at the picture: a method that does no better need not
/// be run.
namespace LassoMethods {

/// The lasso, filled.
CutMethod lasso();
/// The lasso shrunk by twelve pixels in a picture whose long side is 481, and in proportion in others.
CutMethod shrunk();

} // namespace LassoMethods
