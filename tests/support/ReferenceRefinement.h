#pragma once

#include "segmentation/RyImageSegmentation.h"
#include "support/Pixels.h"
#include "support/SessionDriver.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

/// What a user's corrections do to a session's cut, in plain code.
class ReferenceRefinement
{
public:
    explicit ReferenceRefinement(const RyImageSegmentation &session)
        : ReferenceRefinement(*mementoOf(session, true))
    {}
    explicit ReferenceRefinement(const RyMementoSegmentation &memento)
        : mask(memento.mask())
        , foreground(memento.foregroundClusters())
        , background(memento.backgroundClusters())
        , color(memento.maskColor().rgb())
        , labels(memento.labels())
        , points(memento.pointsOfSuperpixels())
    {
        // Every region holds its pixels; what stands under label 0 is for the session to say.
        for (qsizetype label = 1; label < points.size(); ++label)
            points[label].clear();
        for (int y = 0; y < labels.height() && !points.isEmpty(); ++y)
            for (int x = 0; x < labels.width(); ++x)
                if (labelAt({x, y}) > 0 && labelAt({x, y}) < points.size())
                    points[labelAt({x, y})] << QPoint(x, y);
    }

    int labelAt(QPoint point) const
    {
        point.setX(std::clamp(point.x(), 0, labels.width() - 1));
        point.setY(std::clamp(point.y(), 0, labels.height() - 1));
        return int(labels.pixel(point));
    }

    void click(const QPointF &at)
    {
        const int label = labelAt({int(std::round(at.x())), int(std::round(at.y()))});
        move(label, !foreground.contains(label));
    }

    void scribble(const QPainterPath &path, bool toForeground)
    {
        QPainter painter(&mask);
        if (toForeground)
            painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillPath(path, QColor(color));
    }

    void paintSelection(const QPainterPath &path, bool toForeground)
    {
        for (const int label : touchedBy(path))
            move(label, toForeground);
    }

    QSet<int> touchedBy(const QPainterPath &path) const
    {
        QImage stroke(labels.size(), QImage::Format_RGB32);
        stroke.fill(Qt::black);
        QPainter(&stroke).fillPath(path, Qt::white);
        const QRect area = path.boundingRect().toRect() & stroke.rect();
        QSet<int> found;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                if (stroke.pixel(x, y) == 0xFFFFFFFF && labelAt({x, y}) > 0)
                    found.insert(labelAt({x, y}));
        return found;
    }

    QSet<int> brush(const QPoint &at, int diameter) const
    {
        QSet<int> found;
        const int radius = diameter / 2;
        for (int y = 0; y < labels.height(); ++y)
            for (int x = 0; x < labels.width(); ++x)
                if (int(std::hypot(x - at.x(), y - at.y())) <= radius && labelAt({x, y}) > 0 &&
                    std::abs(x - at.x()) <= radius && std::abs(y - at.y()) <= radius)
                    found.insert(labelAt({x, y}));
        return found;
    }

    QImage hover(const QSet<int> &clusters, bool toForeground) const
    {
        ReferenceRefinement preview = *this;
        for (const int label : clusters)
            preview.move(label, toForeground);
        preview.mask.setPixel(0, 0, mask.pixel(0, 0));
        return preview.mask;
    }

    void recolour(QRgb to)
    {
        color = to;
        forEachPixel([to](QRgb pixel) { return pixel == 0 ? 0 : to; });
    }

    void invert()
    {
        foreground.swap(background);
        forEachPixel([this](QRgb pixel) { return pixel == 0 ? color : 0; });
    }

    /// What a session differs in; empty when it agrees.
    QString differenceTo(const RyImageSegmentation &session) const
    {
        return differenceTo(*mementoOf(session, false));
    }
    QString differenceTo(const RyMementoSegmentation &memento) const
    {
        QStringList found;
        if (memento.mask() != mask)
            found << QStringLiteral("mask");
        if (memento.foregroundClusters() != foreground)
            found << QStringLiteral("foreground");
        if (memento.backgroundClusters() != background)
            found << QStringLiteral("background");
        if (memento.maskColor().rgb() != color)
            found << QStringLiteral("colour");
        return found.join(u' ');
    }

    /// The beginning of the SHA-256 of mask and sets.
    QByteArray digest() const
    {
        QByteArray text = Pixels::sha256(mask);
        for (const auto &set : {foreground, background}) {
            QList<int> sorted(set.begin(), set.end());
            std::sort(sorted.begin(), sorted.end());
            text += '|';
            for (const int label : sorted)
                text += QByteArray::number(label) + ' ';
        }
        return QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex().left(8);
    }

    QImage mask;
    QSet<int> foreground, background;
    QRgb color;
    QImage labels;
    QList<QList<QPoint>> points;

private:
    void move(int label, bool toForeground)
    {
        (toForeground ? foreground : background).insert(label);
        (toForeground ? background : foreground).remove(label);
        for (const QPoint &point : points.value(label))
            reinterpret_cast<QRgb *>(mask.scanLine(point.y()))[point.x()] =
                    toForeground ? 0 : color;
    }

    template <typename Function>
    void forEachPixel(Function function)
    {
        for (int y = 0; y < mask.height(); ++y) {
            auto *const row = reinterpret_cast<QRgb *>(mask.scanLine(y));
            std::transform(row, row + mask.width(), row, function);
        }
    }
};
