#include "ColorIcon.h"

#include <QPainter>
#include <QPixmap>

QIcon ColorIcon::make(const QColor &color)
{
    constexpr int side = 16;
    QPixmap pixmap(side, side);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(Qt::gray);
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}
