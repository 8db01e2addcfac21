#pragma once

#include "document/Points.h"

#include <QPoint>
#include <QRectF>
#include <QTransform>

/// Where the picture lies on a widget. A pixel of the screen is 1 / devicePixelRatio of a
/// widget's.
struct ViewTransform
{
    double scale = 1.0;            ///< pixels of the screen for each pixel of the picture
    QPoint origin;                 ///< the picture's corner, in pixels of the screen
    double devicePixelRatio = 1.0; ///< of the widget

    PicturePoint toPicture(const WidgetPoint &point) const
    {
        return PicturePoint((point * devicePixelRatio - origin) / scale);
    }
    WidgetPoint toWidget(const PicturePoint &point) const
    {
        return WidgetPoint((point * scale + origin) / devicePixelRatio);
    }
    QRectF toWidget(const QRectF &pictureArea) const
    {
        return {toWidget(PicturePoint(pictureArea.topLeft())), pictureArea.size() * widgetScale()};
    }
    QTransform pictureToWidget() const
    {
        const WidgetPoint corner = toWidget(PicturePoint());
        return QTransform::fromTranslate(corner.x(), corner.y())
                .scale(widgetScale(), widgetScale());
    }
    /// Pixels of the widget for each pixel of the picture.
    double widgetScale() const { return scale / devicePixelRatio; }
};
