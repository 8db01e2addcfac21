#include "segmentation/RyMementoSegmentation.h"

RyMementoSegmentation::RyMementoSegmentation(const QPainterPath &lassoPath,
                                             const QSet<int> &foregroundClusters,
                                             const QSet<int> &backgroundClusters,
                                             const QImage &mask, const QImage &labels,
                                             const QList<QList<QPoint>> &pointsOfSuperpixels,
                                             const QColor &maskColor)
    : m_pointsOfSuperpixels(pointsOfSuperpixels)
    , m_foregroundClusters(foregroundClusters)
    , m_backgroundClusters(backgroundClusters)
    , m_mask(mask)
    , m_labels(labels)
    , m_maskColor(maskColor)
    , m_lassoPath(lassoPath)
{}

RyMementoSegmentation::~RyMementoSegmentation() = default;

std::unique_ptr<RyMementoSegmentation> RyMementoSegmentation::clone() const
{
    return std::make_unique<RyMementoSegmentation>(*this);
}
