#include "segmentation/RyExpandedLasso.h"

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

#include <cmath>

/// A freehand lasso that trembles by three pixels, as the session grows and fills it.
static void growFreehandLasso(benchmark::State &state)
{
    const int points = int(state.range(0));
    QRandomGenerator random(7);
    QPolygonF polygon;
    for (int i = 0; i < points; ++i) {
        const double angle = 2.0 * M_PI * i / points;
        polygon << QPointF(600 + 350 * std::cos(angle) + random.bounded(6.0) - 3.0,
                           400 + 250 * std::sin(angle) + random.bounded(6.0) - 3.0);
    }
    QPainterPath lasso;
    lasso.addPolygon(polygon);
    lasso.closeSubpath();
    QImage picture(1200, 800, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        picture.fill(Qt::black);
        QPainter painter(&picture);
        RyExpandedLasso(lasso, picture.rect(), 10).fill(painter);
    }
}
BENCHMARK(growFreehandLasso)->Arg(50)->Arg(2000)->Arg(100000)->Unit(benchmark::kMillisecond);
