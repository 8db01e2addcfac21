#include "cutout/CuttingScale.h"

#include <algorithm>

CuttingScale::CuttingScale(const QSize &pictureSize, int longestSide)
    : m_pictureSize(pictureSize)
    , m_cuttingSize(pictureSize)
{
    if (longestSide > 0 && std::max(pictureSize.width(), pictureSize.height()) > longestSide)
        m_cuttingSize = pictureSize.scaled(longestSide, longestSide, Qt::KeepAspectRatio)
                                .expandedTo(QSize(1, 1)); // narrow pictures would vanish
}

QImage CuttingScale::reducedPicture(const QImage &picture) const
{
    if (m_cuttingSize == m_pictureSize)
        return picture;
    return picture.scaled(m_cuttingSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_ARGB32);
}

QTransform CuttingScale::reducing() const
{
    return QTransform::fromScale(double(m_cuttingSize.width()) / m_pictureSize.width(),
                                 double(m_cuttingSize.height()) / m_pictureSize.height());
}

QImage CuttingScale::enlargedMask(const QImage &mask) const
{
    if (m_cuttingSize == m_pictureSize)
        return mask;
    return mask.scaled(m_pictureSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_Grayscale8);
}
