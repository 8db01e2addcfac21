#pragma once

#include "CutMethod.h"

class RyImageSegmentation;

/// First cuts of the library, as a host asks for them: a new session each time, through its public
/// interface, timed from the picture in memory to the mask in the host's event loop.
namespace SessionMethod {

/// Makes a session ready for a method, before it is given the picture.
using Preparation = std::function<void(RyImageSegmentation &)>;

CutMethod classic();
CutMethod graph();

} // namespace SessionMethod
