#include "CutSession.h"

#include <QPainterPath>

CutSession::CutSession(const QColor &maskColour)
{
    connect(&m_segmentation, &RyImageSegmentation::sendNewMask, this, &CutSession::receiveMask);
    connect(&m_segmentation, &RyImageSegmentation::segmentationProgress, this,
            &CutSession::progress);
    m_segmentation.setMaskColor(maskColour);
}

QImage CutSession::cut(const QImage &picture, const QPolygonF &lasso)
{
    QPainterPath path;
    path.addPolygon(lasso);
    path.closeSubpath();
    m_segmentation.setup(picture, {});
    m_segmentation.startThreadWithInitialPath(path);
    // The null masks of both calls are emitted in this thread, so they have arrived by now.
    m_isWaiting = true;
    m_eventLoop.exec();
    return m_mask;
}

void CutSession::receiveMask(const QImage &mask)
{
    if (!m_isWaiting)
        return;
    m_isWaiting = false;
    m_mask = mask;
    m_eventLoop.quit();
}

void CutSession::abort()
{
    m_isWaiting = false;
    m_segmentation.cancel();
    m_eventLoop.quit();
}
