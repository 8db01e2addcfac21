#include "segmentation/RyMementoSegmentation.h"

#include "segmentation/RyPackedMask.h"

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

void RyMementoSegmentation::setConstraints(
        const std::shared_ptr<const RyCutConstraints> &constraints)
{
    m_constraints = constraints;
}

void RyMementoSegmentation::setRegionRecords(const std::shared_ptr<const RyRegionRecords> &records)
{
    m_regionRecords = records;
}

std::unique_ptr<RyMementoSegmentation> RyMementoSegmentation::clone() const
{
    return std::make_unique<RyMementoSegmentation>(*this);
}

QImage RyMementoSegmentation::mask() const
{
    return m_packedMask ? m_packedMask->unpacked() : m_mask;
}

std::unique_ptr<RyMementoSegmentation> RyMementoSegmentation::compacted() const
{
    auto memento = clone();
    if (auto packed = RyPackedMask::pack(m_mask)) {
        memento->m_packedMask = std::make_shared<const RyPackedMask>(std::move(*packed));
        memento->m_mask = QImage();
    }
    return memento;
}

qint64 RyMementoSegmentation::sizeInBytes() const
{
    return m_mask.sizeInBytes() + m_labels.sizeInBytes() +
           (m_packedMask ? m_packedMask->sizeInBytes() : 0);
}

qint64 RyMementoSegmentation::compactedSizeInBytes() const
{
    constexpr int pixelsPerByte = 8;
    const qint64 pixels = qint64(m_mask.width()) * m_mask.height();
    return sizeInBytes() - m_mask.sizeInBytes() + pixels / pixelsPerByte;
}
