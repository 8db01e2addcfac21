#pragma once

#include <QCryptographicHash>
#include <QImage>

/// Questions about pictures that tests ask.
namespace Pixels {

/// Of all rows without their padding.
inline QByteArray sha256(const QImage &image)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const qsizetype used = qsizetype(image.width()) * image.depth() / 8;
    for (int y = 0; y < image.height(); ++y)
        hash.addData(QByteArrayView(image.constScanLine(y), used));
    return hash.result().toHex();
}

template <typename Predicate>
qsizetype count(const QImage &image, Predicate predicate)
{
    qsizetype found = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            found += predicate(row[x]);
    }
    return found;
}

inline qsizetype foreground(const QImage &mask)
{
    return count(mask, [](QRgb pixel) { return pixel == 0; });
}

inline qsizetype differing(const QImage &a, const QImage &b)
{
    qsizetype found = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto *const rowA = reinterpret_cast<const QRgb *>(a.constScanLine(y));
        const auto *const rowB = reinterpret_cast<const QRgb *>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x)
            found += rowA[x] != rowB[x];
    }
    return found;
}

} // namespace Pixels
