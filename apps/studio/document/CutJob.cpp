#include "document/CutJob.h"

#include <algorithm>

bool StepJob::beginsCut() const
{
    return std::any_of(gestures.begin(), gestures.end(),
                       [](const Gesture &gesture) { return gesture.beginsCut(); });
}

bool StepJob::cuts() const
{
    return beginsCut() || std::any_of(gestures.begin(), gestures.end(), [](const Gesture &gesture) {
               return std::holds_alternative<Gesture::Recut>(gesture.step);
           });
}
