#include "MethodList.h"

#include "LassoMethods.h"
#include "SessionMethod.h"
#ifdef RY_HAS_OPENCV
#include "OpenCvMethods.h"
#endif

QList<CutMethod> MethodList::all()
{
    return {
            SessionMethod::graph(),   SessionMethod::classic(),         LassoMethods::lasso(),
            LassoMethods::shrunk(),
#ifdef RY_HAS_OPENCV
            OpenCvMethods::grabCut(), OpenCvMethods::grabCutWithCore(), OpenCvMethods::watershed(),
#endif
    };
}
