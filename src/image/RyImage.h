#pragma once

#include "RyIntRange.h"

#include <QFileInfo>
#include <QImage>
#include <QMutex>

/**
 * A picture with its YCbCr plane and the file it came from.
 *
 * Input    32-bit pictures are kept as they are (alpha is carried but not looked at); any other
 *          format is converted to QImage::Format_ARGB32 first.
 * Output   the YCbCr plane, of the same size and format: byte 0 Cr, 1 Cb, 2 Y, 3 alpha 255.
 * Source   BT.601 full range, truncated to bytes (RyColorConverter).
 * Errors   none reported: a null picture, or one whose plane cannot be allocated, has a null
 *          plane.
 * Threads  copying and assigning lock the source; the getters do not. The plane is built by the
 *          constructor, in parallel from 201 rows on. Time O(w · h). Copies share their pixels.
 */
class RyImage
{
public:
    RyImage(const QImage &rgb, const QFileInfo &file);
    /// Takes both planes as they are, for a picture that was converted before.
    RyImage(const QImage &rgb, const QImage &ycbcr, const QFileInfo &file);
    RyImage(const RyImage &other);
    RyImage &operator=(const RyImage &other);
    virtual ~RyImage() = default;

    QImage imageRGB() const { return m_imageRGB; }
    QImage imageYCbCr() const { return m_imageYCbCr; }

    QString name() const { return m_fileInfo.baseName(); }
    QSize size() const { return m_imageRGB.size(); }
    int width() const { return m_imageRGB.width(); }
    int height() const { return m_imageRGB.height(); }
    QRect rect() const { return m_imageRGB.rect(); }

    /// Builds the YCbCr plane from the RGB plane anew.
    void buildingColorspaces();

    /// Converts some rows. Both images are 32 bits deep and of one size; ycbcr shares no pixels
    /// with another image, or this call detaches it.
    void mapBlock(const RyIntRange &rows, const QImage &rgb, QImage &ycbcr) const;

private:
    mutable QMutex m_mutex; // held while another thread copies this object
    QImage m_imageRGB;
    QImage m_imageYCbCr;
    QFileInfo m_fileInfo;
};
