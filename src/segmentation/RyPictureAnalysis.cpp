#include "segmentation/RyPictureAnalysis.h"

#include "graphcut/RyGraphCut.h"
#include "segmentation/RyGraphFirstCut.h"

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

std::shared_ptr<const RyGraphCut> RyPictureAnalysis::graphCut(const RyPreparedLasso &lasso)
{
    const QImage picture = image().imageRGB();
    {
        const QMutexLocker lock(&m_graphCutMutex);
        if (m_graphCut && m_lasso == lasso)
            return m_graphCut;
    }
    auto graphCut = RyGraphFirstCut::analyse(picture, lasso.insidePicture());
    const QMutexLocker lock(&m_graphCutMutex);
    m_lasso = lasso;
    m_graphCut = graphCut;
    return graphCut;
}

void RyPictureAnalysis::forgetGraphCut()
{
    std::shared_ptr<const RyGraphCut> forgotten; // goes after the lock
    const QMutexLocker lock(&m_graphCutMutex);
    forgotten.swap(m_graphCut);
    m_lasso = {};
}
