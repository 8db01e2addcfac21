#pragma once

#include "segmentation/RyImageSegmentation.h"

#include <QEventLoop>
#include <QObject>

/**
 * The host of one segmentation session: gives it a picture and a lasso, and waits in an event loop
 * for the mask.
 *
 * Threads  main thread.
 */
class CutSession : public QObject
{
    Q_OBJECT

public:
    explicit CutSession(const QColor &maskColour);

    /// The session's mask, in its own format. Null when the session had too little memory, or was
    /// aborted.
    QImage cut(const QImage &picture, const QPolygonF &lasso);
    const RyImageSegmentation &segmentation() const { return m_segmentation; }

public Q_SLOTS:
    void abort();

Q_SIGNALS:
    void progress(int currentStep, int totalSteps);

private:
    void receiveMask(const QImage &mask);

    RyImageSegmentation m_segmentation;
    QEventLoop m_eventLoop;
    QImage m_mask;
    bool m_isWaiting = false; // for a mask that is a result
};
