#include "gestures/Gesture.h"

#include <utility>

// Not inline: GCC 12 would see through a move of the alternatives that are not there, and warn of
// memory that is not initialised.
Gesture::Gesture(Step what)
    : step(std::move(what))
{}

bool Gesture::beginsCut() const
{
    return std::holds_alternative<Lasso>(step) || std::holds_alternative<Close>(step);
}
