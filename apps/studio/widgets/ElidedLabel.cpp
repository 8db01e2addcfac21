#include "widgets/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

QSize ElidedLabel::minimumSizeHint() const
{
    return {1, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect area = contentsRect().adjusted(std::max(indent(), 0), 0, 0, 0);
    const QString line = fontMetrics().elidedText(text(), Qt::ElideRight, area.width());
    style()->drawItemText(&painter, area, int(alignment()), palette(), isEnabled(), line,
                          foregroundRole());
}
