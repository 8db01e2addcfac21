#pragma once

#include "Measurement.h"

#include <QStringList>

struct Spread
{
    double median = 0.0, mean = 0.0;

    static Spread of(QList<double> values); ///< zeros for none
};

/// What many cases of one method and one kind of lasso come to.
struct ResultSummary
{
    qsizetype cases = 0;
    Spread intersectionOverUnion, boundaryF, ms;
    double shareBeatingLasso = 0.0, shareBeatingShrunk = 0.0;
    QStringList worstOverlaps, worstBoundaries; ///< up to five: the case's name and its figure

    explicit ResultSummary(const QList<Measurement> &measurements);
};
