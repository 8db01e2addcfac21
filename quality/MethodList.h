#pragma once

#include "CutMethod.h"

/// Every method there is, in the order in which tables and sheets show them.
namespace MethodList {

QList<CutMethod> all();

} // namespace MethodList
