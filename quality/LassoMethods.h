#pragma once

#include "CutMethod.h"

/// What the lasso alone gives, without a look at the picture: a method that does no better need not
/// be run.
namespace LassoMethods {

/// The lasso, filled.
CutMethod lasso();
/// The lasso shrunk by twelve pixels if the picture's long side is 481, in proportion if it is not.
CutMethod shrunk();

} // namespace LassoMethods
