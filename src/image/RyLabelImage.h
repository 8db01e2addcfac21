#pragma once

#include "RyImageMemory.h"

#include <QImage>

/**
 * Access to label images: pictures of signed 32-bit words, one label a pixel, 0 for none.
 *
 * They travel as QImage::Format_ARGB32, so that they share like any picture, and are never shown.
 *
 * Threads  stateless; row() of a writable image detaches it, so take it before slices run.
 */
namespace RyLabelImage {

/// All labels 0; null when the size is empty or memory is short.
inline QImage create(const QSize &size)
{
    return RyImageMemory::zeroedImage(size, QImage::Format_ARGB32);
}

inline const qint32 *row(const QImage &labels, int y)
{
    return reinterpret_cast<const qint32 *>(labels.constScanLine(y));
}

inline qint32 *row(QImage &labels, int y)
{
    return reinterpret_cast<qint32 *>(labels.scanLine(y));
}

/// The label as an index into a table of count entries; 0 for whatever does not fit.
inline qint32 index(qint32 label, qsizetype count)
{
    return label > 0 && label < count ? label : 0;
}

} // namespace RyLabelImage
