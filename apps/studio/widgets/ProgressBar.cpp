#include "widgets/ProgressBar.h"

#include <QStyleOptionProgressBar>
#include <QStylePainter>

#include <algorithm>

void ProgressBar::showValue(int value)
{
    setUpdatesEnabled(false);
    setValue(value);
    setUpdatesEnabled(true);
}

void ProgressBar::paintEvent(QPaintEvent *)
{
    QStyleOptionProgressBar option;
    initStyleOption(&option);
    QStylePainter painter(this);
    const QRect room = rect().adjusted(1, 1, -1, -1); // within the frame
    painter.fillRect(room, palette().base());
    const double share = double(value() - minimum()) / std::max(1, maximum() - minimum());
    QRect done = room;
    done.setWidth(int(room.width() * std::max(0.0, share))); // there may be no value yet
    painter.fillRect(QStyle::visualRect(layoutDirection(), room, done), palette().highlight());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.drawControl(QStyle::CE_ProgressBarLabel, option);
}
