#include "LassoMethods.h"

#include "DistanceMap.h"
#include "Masks.h"

using namespace Qt::StringLiterals;

namespace {

QImage shrink(const QImage &mask, double depth)
{
    const DistanceMap depths(Masks::inverted(mask));
    QImage result = Masks::empty(mask.size());
    for (int y = 0; y < mask.height(); ++y) {
        uchar *const row = result.scanLine(y);
        for (int x = 0; x < mask.width(); ++x)
            row[x] = double(depths.squaredAt(x, y)) > depth * depth ? 255 : 0;
    }
    return result;
}

QImage shrunkLasso(const QImage &picture, const QPolygonF &lasso)
{
    constexpr double usualDepth = 12.0, usualLongSide = 481.0;
    const double longSide = qMax(picture.width(), picture.height());
    return shrink(Masks::filled(lasso, picture.size()), usualDepth * longSide / usualLongSide);
}

QImage filledLasso(const QImage &picture, const QPolygonF &lasso)
{
    return Masks::filled(lasso, picture.size());
}

CutMethod timed(const QString &name, QImage (*cut)(const QImage &, const QPolygonF &))
{
    return {name, [cut](const QImage &picture, const QPolygonF &lasso) {
                QElapsedTimer timer;
                timer.start();
                const QImage mask = cut(picture, lasso);
                return Cut{mask, elapsedMs(timer), {}};
            }};
}

} // namespace

CutMethod LassoMethods::lasso()
{
    return timed(u"lasso"_s, filledLasso);
}

CutMethod LassoMethods::shrunk()
{
    return timed(u"shrunk"_s, shrunkLasso);
}
