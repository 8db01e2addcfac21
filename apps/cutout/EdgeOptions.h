#pragma once

/// What is done to a mask's edge, in the order of the fields; all zero leaves it as it is. Lengths
/// are in pixels of the mask. EdgeTable has the ranges.
struct EdgeOptions
{
    static constexpr int mostPixels = 200;       ///< for lengths
    static constexpr int mostArea = 100'000'000; ///< for drop and fill

    int drop = 0;    ///< pieces of the object with fewer pixels vanish
    int fill = 0;    ///< pieces of the background with fewer pixels become object
    int smooth = 0;  ///< rounds corners about as large as this radius
    int grow = 0;    ///< moves the edge outwards; below 0: inwards
    int feather = 0; ///< softens the edge so far to either side

    bool isValid() const; ///< every number lies in its range
    bool operator==(const EdgeOptions &) const = default;
};
