#pragma once

#include "CutMethod.h"
#include "MaskScore.h"

/// One cut and how good it was.
struct Measurement
{
    QString caseName;
    bool isWholeThing = true;
    QString kind, method;
    MaskScore score;
    bool beatsLasso = false;  ///< in intersection over union
    bool beatsShrunk = false; ///< likewise: the blindly shrunk lasso
    double ms = 0.0;
    QList<StageTime> stages;
};
