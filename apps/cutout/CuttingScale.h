#pragma once

#include <QImage>
#include <QTransform>

/// Between a picture and the size it is cut at. Equal sizes leave everything as it is. Images come
/// back null when there is too little memory.
class CuttingScale
{
public:
    /// A longest side of 0 keeps the picture's size.
    CuttingScale(const QSize &pictureSize, int longestSide);

    QSize pictureSize() const { return m_pictureSize; }
    QSize cuttingSize() const { return m_cuttingSize; }

    QImage reducedPicture(const QImage &picture) const;
    /// From pixels of the picture to those of the cutting size.
    QTransform reducing() const;
    /// Smooth, so that edges which were steps at cutting size become soft at full size.
    QImage enlargedMask(const QImage &mask) const;

private:
    QSize m_pictureSize;
    QSize m_cuttingSize;
};
