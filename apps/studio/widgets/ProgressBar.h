#pragma once

#include <QProgressBar>

/**
 * A plain progress bar. What styles draw has running stripes and translucent lines; Qt's painter
 * divides these among the global thread pool, and while a cut keeps all processors busy the event
 * loop would wait for them, 30 ms and more for each step.
 *
 * Threads  the GUI thread.
 */
class ProgressBar : public QProgressBar
{
    Q_OBJECT

public:
    using QProgressBar::QProgressBar;

    /// To be painted with all else that has changed: setValue() would paint at once, and the whole
    /// window if the canvas is waiting to be painted too.
    void showValue(int value);

protected:
    void paintEvent(QPaintEvent *event) override;
};
