#include "widgets/ColorButton.h"

#include <QColorDialog>
#include <QPainter>

ColorButton::ColorButton(const QString &name, const QColor &color, bool mayBeTranslucent,
                         QWidget *parent)
    : QPushButton(parent)
    , m_name(name)
    , m_mayBeTranslucent(mayBeTranslucent)
{
    setColor(color);
    connect(this, &QPushButton::clicked, this, &ColorButton::choose);
}

void ColorButton::setColor(const QColor &color)
{
    constexpr QSize size(36, 18);
    m_color = color;
    QPixmap pixmap(size * devicePixelRatioF());
    pixmap.setDevicePixelRatio(devicePixelRatioF());
    pixmap.fill(Qt::white);
    QPainter painter(&pixmap);
    const QRect area(QPoint(), size);
    painter.fillRect(area, QBrush(Qt::gray, Qt::Dense6Pattern)); // seen through what is translucent
    painter.fillRect(area, color);
    setIcon(pixmap);
    setIconSize(size);
    const QColor::NameFormat format = m_mayBeTranslucent ? QColor::HexArgb : QColor::HexRgb;
    setToolTip(QStringLiteral("%1: %2").arg(m_name, color.name(format)));
    setAccessibleName(toolTip());
}

void ColorButton::choose()
{
    QColorDialog::ColorDialogOptions options;
    options.setFlag(QColorDialog::ShowAlphaChannel, m_mayBeTranslucent);
    const QColor chosen = QColorDialog::getColor(m_color, this, m_name, options);
    if (chosen.isValid())
        setColor(chosen);
}
