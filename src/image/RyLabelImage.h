#pragma once

#include <QImage>

#include <cstdlib>

/**
 * Access to label images: pictures of signed 32-bit words, one label a pixel, 0 for none.
 *
 * They travel as QImage::Format_ARGB32, so that they share like any picture, and are never shown.
 *
 * Threads  stateless; row() of a writable image detaches it, so take it before slices run.
 */
namespace RyLabelImage {

/// All labels 0; null when the size is empty or memory is short. The pages come zeroed from the
/// system as they are written, so that a small lasso on a large picture costs little.
inline QImage create(const QSize &size)
{
    if (size.isEmpty())
        return {};
    const auto bytesPerLine = qsizetype(size.width()) * qsizetype(sizeof(qint32));
    void *const words = std::calloc(std::size_t(size.height()), std::size_t(bytesPerLine));
    if (!words)
        return {};
    QImage labels(static_cast<uchar *>(words), size.width(), size.height(), bytesPerLine,
                  QImage::Format_ARGB32, std::free, words);
    if (labels.isNull())
        std::free(words); // a null image never calls its clean-up function
    return labels;
}

inline const qint32 *row(const QImage &labels, int y)
{
    return reinterpret_cast<const qint32 *>(labels.constScanLine(y));
}

inline qint32 *row(QImage &labels, int y)
{
    return reinterpret_cast<qint32 *>(labels.scanLine(y));
}

/// The label as an index into a table of count entries; whatever does not fit means no superpixel.
inline qint32 index(qint32 label, qsizetype count)
{
    return label > 0 && label < count ? label : 0;
}

} // namespace RyLabelImage
