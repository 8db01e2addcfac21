#include "gestures/Gesture.h"

#include <utility>

// Not inline, or GCC 12 warns that alternatives which the variant does not hold are moved from
// memory that is not initialised.
Gesture::Gesture(Step what)
    : step(std::move(what))
{}

bool Gesture::beginsCut() const
{
    return std::holds_alternative<Lasso>(step) || std::holds_alternative<Close>(step);
}
