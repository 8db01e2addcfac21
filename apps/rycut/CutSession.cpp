#include "CutSession.h"

CutSession::CutSession(const CuttingScale &scale)
    : m_player(m_segmentation, scale.reducing())
{
    connect(&m_segmentation, &RyImageSegmentation::sendNewMask, this,
            [this](const QImage &mask) { m_heardNullMask = mask.isNull(); });
    connect(&m_segmentation, &RyImageSegmentation::segmentationProgress, this,
            &CutSession::progress);
    m_segmentation.setMaskColor(Qt::white);
}

QImage CutSession::cut(const QImage &picture, const QList<Gesture> &gestures)
{
    m_segmentation.setup(picture, {});
    m_player.setPicture(picture);
    bool hasLasso = false; // before that, there is no mask to send
    for (const Gesture &gesture : gestures) {
        hasLasso = hasLasso || gesture.beginsCut();
        m_heardNullMask = false;
        if (!m_player.play(gesture) || (hasLasso && m_heardNullMask))
            return {};
    }
    return m_segmentation.maskForeground();
}

void CutSession::abort()
{
    m_player.stop();
    m_segmentation.cancel();
}
