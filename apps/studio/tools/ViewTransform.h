#pragma once

#include <QPoint>
#include <QPointF>
#include <QRectF>
#include <QTransform>

/// Where the picture lies on a widget. A pixel of the screen is 1 / devicePixelRatio of a widget's.
struct ViewTransform
{
    double scale = 1.0;            ///< pixels of the screen for each pixel of the picture
    QPoint origin;                 ///< the picture's corner, in pixels of the screen
    double devicePixelRatio = 1.0; ///< of the widget

    QPointF toPicture(const QPointF &widgetPoint) const
    {
        return (widgetPoint * devicePixelRatio - origin) / scale;
    }
    QPointF toWidget(const QPointF &picturePoint) const
    {
        return (picturePoint * scale + origin) / devicePixelRatio;
    }
    QRectF toWidget(const QRectF &pictureArea) const
    {
        return {toWidget(pictureArea.topLeft()), pictureArea.size() * widgetScale()};
    }
    QTransform pictureToWidget() const
    {
        const QPointF corner = toWidget(QPointF());
        return QTransform::fromTranslate(corner.x(), corner.y())
                .scale(widgetScale(), widgetScale());
    }
    /// Pixels of the widget for each pixel of the picture.
    double widgetScale() const { return scale / devicePixelRatio; }
};
