#include "segmentation/RyPictureAnalysis.h"

#include <QMutexLocker>

#include <new>
#include <utility>

RyPictureAnalysis::RyPictureAnalysis(const QImage &picture, const QFileInfo &file)
    : m_picture(picture)
    , m_file(file)
{}

const RyImage &RyPictureAnalysis::image()
{
    const QMutexLocker lock(&m_mutex);
    if (!m_image) {
        auto image = std::make_unique<const RyImage>(m_picture, m_file);
        if (image->imageYCbCr().isNull() && !m_picture.isNull())
            throw std::bad_alloc();
        m_image = std::move(image);
        m_picture = QImage();
    }
    return *m_image;
}

std::optional<RyPictureAnalysis::Edges> RyPictureAnalysis::edges() const
{
    const QMutexLocker lock(&m_mutex);
    return m_edges;
}

void RyPictureAnalysis::setEdges(const Edges &edges)
{
    const QMutexLocker lock(&m_mutex);
    m_edges = edges;
}
