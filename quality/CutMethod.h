#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QList>
#include <QPolygonF>
#include <QString>

#include <functional>

inline double elapsedMs(const QElapsedTimer &timer)
{
    constexpr double nanosecondsPerMs = 1e6;
    return double(timer.nsecsElapsed()) / nanosecondsPerMs;
}

struct StageTime
{
    QString name;
    double ms = 0.0;
};

/// What a method answered.
struct Cut
{
    QImage mask;             ///< as in Masks, of the picture's size
    double ms = 0.0;         ///< from the picture in the method's own format to its mask
    QList<StageTime> stages; ///< empty where the method does not tell them apart
};

/// A way to cut the object inside a lasso out of a picture (Format_ARGB32).
struct CutMethod
{
    QString name;
    std::function<Cut(const QImage &picture, const QPolygonF &lasso)> cut;
};
