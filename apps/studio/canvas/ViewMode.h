#pragma once

/// How a cut is shown.
enum class ViewMode {
    Overlay,       ///< a colour lies over the background
    Outline,       ///< the object's outline alone
    Checkerboard,  ///< the object before a checkerboard
    BlackAndWhite, ///< the mask itself, the object white
    Background,    ///< the object before a colour
};
