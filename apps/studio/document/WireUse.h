#pragma once

/// What becomes of the inside of a closed wire.
enum class WireUse {
    Cut,      ///< the object in it is looked for, as in a lasso
    Mask,     ///< all of it is the object, and nothing else
    Add,      ///< becomes part of the object
    TakeAway, ///< no longer part of the object
};
