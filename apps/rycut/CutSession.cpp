#include "CutSession.h"

CutSession::CutSession(const CuttingScale &scale)
    : m_player(m_segmentation, scale.reducing())
{
    connect(&m_segmentation, &RyImageSegmentation::failed, this, [this] { m_hasFailed = true; });
    connect(&m_segmentation, &RyImageSegmentation::segmentationProgress, this,
            &CutSession::progress);
    m_segmentation.setMaskColor(Qt::white);
}

QImage CutSession::cut(const QImage &picture, const QList<Gesture> &gestures)
{
    m_segmentation.setup(picture, {});
    m_player.setPicture(picture);
    for (const Gesture &gesture : gestures) {
        if (!m_player.play(gesture) || m_hasFailed)
            return {};
    }
    return m_segmentation.maskForeground();
}

void CutSession::abort()
{
    m_player.stop();
    m_segmentation.cancel();
}
