#include "Masks.h"

#include "cutout/MaskImage.h"

#include <QPainter>

QImage Masks::empty(const QSize &size)
{
    QImage mask(size, QImage::Format_Grayscale8);
    mask.fill(0);
    return mask;
}

QImage Masks::filled(const QPolygonF &lasso, const QSize &size)
{
    QImage mask = empty(size);
    QPainter painter(&mask);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawPolygon(lasso, Qt::WindingFill);
    return mask;
}

QImage Masks::thresholded(const QImage &image)
{
    QImage mask = image.convertToFormat(QImage::Format_Grayscale8);
    for (int y = 0; y < mask.height(); ++y) {
        uchar *const row = mask.scanLine(y);
        for (int x = 0; x < mask.width(); ++x)
            row[x] = row[x] >= MaskImage::half ? 255 : 0;
    }
    return mask;
}

QImage Masks::inverted(const QImage &mask)
{
    QImage result = mask;
    result.invertPixels();
    return result;
}

QImage Masks::boundary(const QImage &mask)
{
    QImage result = empty(mask.size());
    const int right = mask.width() - 1, bottom = mask.height() - 1;
    for (int y = 0; y <= bottom; ++y) {
        const uchar *const row = mask.constScanLine(y);
        const uchar *const above = mask.constScanLine(qMax(y - 1, 0));
        const uchar *const below = mask.constScanLine(qMin(y + 1, bottom));
        uchar *const out = result.scanLine(y);
        for (int x = 0; x <= right; ++x) {
            const bool isEnclosed = above[x] != 0 && below[x] != 0 && row[qMax(x - 1, 0)] != 0 &&
                                    row[qMin(x + 1, right)] != 0;
            out[x] = row[x] != 0 && !isEnclosed ? 255 : 0;
        }
    }
    return result;
}
