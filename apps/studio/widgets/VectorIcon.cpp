#include "widgets/VectorIcon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

#include <cmath>

namespace {

constexpr double grid = 24.0; // shapes are drawn on a grid of this size
constexpr double penWidth = 1.7;

void addLine(QPainterPath &path, const QPolygonF &points)
{
    path.moveTo(points.first());
    for (qsizetype i = 1; i < points.size(); ++i)
        path.lineTo(points.at(i));
}

QPainterPath lensPath()
{
    QPainterPath path;
    path.addEllipse(QPointF(10.5, 10.5), 6.5, 6.5);
    addLine(path, {{15.3, 15.3}, {20.5, 20.5}});
    return path;
}

QPainterPath openPath()
{
    QPainterPath path;
    addLine(path, {{3, 19}, {3, 5.5}, {9, 5.5}, {11, 8}, {19, 8}, {19, 11}});
    addLine(path, {{3, 19}, {6.5, 11}, {22, 11}, {18.5, 19}, {3, 19}});
    return path;
}

QPainterPath savePath()
{
    QPainterPath path;
    addLine(path, {{4, 4}, {16.5, 4}, {20, 7.5}, {20, 20}, {4, 20}, {4, 4}});
    addLine(path, {{8, 4}, {8, 9}, {15, 9}, {15, 4}});
    addLine(path, {{7.5, 20}, {7.5, 13.5}, {16.5, 13.5}, {16.5, 20}});
    return path;
}

QPainterPath pastePath()
{
    QPainterPath path;
    path.addRoundedRect(QRectF(5, 5, 14, 16), 1.5, 1.5);
    path.addRoundedRect(QRectF(9, 3, 6, 4), 1, 1);
    addLine(path, {{8.5, 12}, {15.5, 12}});
    addLine(path, {{8.5, 16}, {15.5, 16}});
    return path;
}

QPainterPath undoPath()
{
    QPainterPath path(QPointF(4.5, 9.5));
    path.lineTo(14.5, 9.5);
    path.arcTo(QRectF(9.5, 9.5, 10, 9), 90, -180);
    path.lineTo(9, 18.5);
    addLine(path, {{8.5, 5.5}, {4.5, 9.5}, {8.5, 13.5}});
    return path;
}

QPainterPath lassoPath()
{
    QPainterPath path(QPointF(8, 15.5));
    path.cubicTo(1, 13, 2, 4, 12, 4);
    path.cubicTo(22, 4, 23.5, 13.5, 14, 15.5);
    path.cubicTo(11.5, 16, 9.5, 16, 8, 15.5);
    path.addEllipse(QPointF(7.5, 17.2), 1.9, 1.9);
    path.moveTo(7.2, 19.1);
    path.cubicTo(7.2, 20.6, 6.2, 21.4, 4.8, 21.6);
    return path;
}

QPainterPath scissorsPath()
{
    QPainterPath path;
    path.addEllipse(QPointF(6.5, 18), 2.8, 2.8);
    path.addEllipse(QPointF(17.5, 18), 2.8, 2.8);
    addLine(path, {{8, 15.6}, {16.5, 3}});
    addLine(path, {{16, 15.6}, {7.5, 3}});
    return path;
}

QPainterPath brushPath()
{
    QPainterPath path;
    addLine(path, {{20.5, 3.5}, {11.3, 12}});
    path.moveTo(20.5, 3.5);
    path.lineTo(13.8, 14.2);
    path.moveTo(11.3, 12);
    path.cubicTo(13, 12, 14, 13, 13.8, 14.2);
    path.cubicTo(14, 19.5, 8.5, 21.5, 3.5, 19.5);
    path.cubicTo(6.5, 18.5, 5.5, 12.5, 11.3, 12);
    return path;
}

QPainterPath clickPath()
{
    QPainterPath path;
    addLine(path, {{9, 9}, {20.5, 13.2}, {15.3, 15.3}, {13.2, 20.5}, {9, 9}});
    addLine(path, {{8, 3}, {8, 5}});
    addLine(path, {{3, 8}, {5, 8}});
    addLine(path, {{4.5, 4.5}, {5.9, 5.9}});
    addLine(path, {{11.5, 4.5}, {10.1, 5.9}});
    addLine(path, {{4.5, 11.5}, {5.9, 10.1}});
    return path;
}

QPainterPath scribblePath()
{
    QPainterPath path;
    addLine(path, {{4, 20}, {5, 15.5}, {16.5, 4}, {20, 7.5}, {8.5, 19}, {4, 20}});
    addLine(path, {{14, 6.5}, {17.5, 10}});
    return path;
}

QPainterPath zoomInPath()
{
    QPainterPath path = lensPath();
    addLine(path, {{7.5, 10.5}, {13.5, 10.5}});
    addLine(path, {{10.5, 7.5}, {10.5, 13.5}});
    return path;
}

QPainterPath zoomOutPath()
{
    QPainterPath path = lensPath();
    addLine(path, {{7.5, 10.5}, {13.5, 10.5}});
    return path;
}

QPainterPath zoomFitPath()
{
    QPainterPath path;
    addLine(path, {{3.5, 8.5}, {3.5, 3.5}, {8.5, 3.5}});
    addLine(path, {{15.5, 3.5}, {20.5, 3.5}, {20.5, 8.5}});
    addLine(path, {{20.5, 15.5}, {20.5, 20.5}, {15.5, 20.5}});
    addLine(path, {{8.5, 20.5}, {3.5, 20.5}, {3.5, 15.5}});
    path.addRect(8, 8, 8, 8);
    return path;
}

QPainterPath zoomOriginalPath()
{
    QPainterPath path;
    addLine(path, {{4.5, 8}, {7, 6}, {7, 18}});
    addLine(path, {{15, 8}, {17.5, 6}, {17.5, 18}});
    path.addEllipse(QPointF(11.2, 10), 0.5, 0.5);
    path.addEllipse(QPointF(11.2, 15), 0.5, 0.5);
    return path;
}

QPainterPath contoursPath()
{
    QPainterPath path;
    path.addRoundedRect(QRectF(3.5, 3.5, 17, 17), 1.5, 1.5);
    addLine(path, {{3.5, 10}, {9, 12}, {12, 3.5}});
    addLine(path, {{9, 12}, {8, 20.5}});
    addLine(path, {{9, 12}, {16, 14.5}, {20.5, 9}});
    addLine(path, {{16, 14.5}, {15, 20.5}});
    return path;
}

QPainterPath layersPath()
{
    QPainterPath path;
    addLine(path, {{12, 3.5}, {21, 8.5}, {12, 13.5}, {3, 8.5}, {12, 3.5}});
    addLine(path, {{3, 12.5}, {12, 17.5}, {21, 12.5}});
    addLine(path, {{3, 16.3}, {12, 21.3}, {21, 16.3}});
    return path;
}

QPainterPath hidePath()
{
    QPainterPath path(QPointF(2.5, 12));
    path.cubicTo(7, 4.8, 17, 4.8, 21.5, 12);
    path.cubicTo(17, 19.2, 7, 19.2, 2.5, 12);
    path.addEllipse(QPointF(12, 12), 3.2, 3.2);
    addLine(path, {{4.5, 20}, {19.5, 4}});
    return path;
}

QPainterPath invertPath()
{
    QPainterPath path;
    path.addEllipse(QPointF(12, 12), 8.5, 8.5);
    for (double x = 13.5; x < 20; x += 2.2) {
        const double half = 8.5 * std::sqrt(1.0 - (x - 12) * (x - 12) / (8.5 * 8.5));
        addLine(path, {{x, 12 - half}, {x, 12 + half}});
    }
    addLine(path, {{12, 3.5}, {12, 20.5}});
    return path;
}

QPainterPath cancelPath()
{
    QPainterPath path;
    addLine(path, {{6, 6}, {18, 18}});
    addLine(path, {{18, 6}, {6, 18}});
    return path;
}

QPainterPath pathOf(VectorIcon::Shape shape)
{
    using VectorIcon::Shape;
    switch (shape) {
    case Shape::Open:
        return openPath();
    case Shape::Save:
        return savePath();
    case Shape::Paste:
        return pastePath();
    case Shape::Undo:
        return undoPath();
    case Shape::Redo:
        return QTransform(-1, 0, 0, 1, grid, 0).map(undoPath());
    case Shape::Lasso:
        return lassoPath();
    case Shape::Scissors:
        return scissorsPath();
    case Shape::Brush:
        return brushPath();
    case Shape::Click:
        return clickPath();
    case Shape::Scribble:
        return scribblePath();
    case Shape::ZoomIn:
        return zoomInPath();
    case Shape::ZoomOut:
        return zoomOutPath();
    case Shape::ZoomFit:
        return zoomFitPath();
    case Shape::ZoomOriginal:
        return zoomOriginalPath();
    case Shape::Contours:
        return contoursPath();
    case Shape::Layers:
        return layersPath();
    case Shape::Hide:
        return hidePath();
    case Shape::Invert:
        return invertPath();
    case Shape::Cancel:
        return cancelPath();
    }
    return {};
}

class Engine : public QIconEngine
{
public:
    explicit Engine(const QPainterPath &path)
        : m_path(path)
    {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const QPalette palette = QGuiApplication::palette();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / grid, rect.height() / grid);
        painter->setPen(QPen(palette.brush(group, QPalette::ButtonText), penWidth, Qt::SolidLine,
                             Qt::RoundCap, Qt::RoundJoin));
        painter->drawPath(m_path);
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return new Engine(m_path); } // the caller's

private:
    const QPainterPath m_path;
};

} // namespace

QIcon VectorIcon::make(Shape shape)
{
    return QIcon(new Engine(pathOf(shape))); // the icon takes it
}
