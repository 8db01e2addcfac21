#include "widgets/ColorIcon.h"

#include <QCoreApplication>
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

QString ColorIcon::name(const QColor &color)
{
    constexpr double percent = 100.0;
    const QString name = color.name().toUpper();
    if (color.alpha() == 255)
        return name;
    const int opacity = qRound(color.alphaF() * percent);
    return QCoreApplication::translate("ColorIcon", "%1, %2 %").arg(name).arg(opacity);
}
