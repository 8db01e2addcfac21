#include "cutout/MaskImage.h"

#include <algorithm>

QImage MaskImage::fromSession(const QImage &sessionMask)
{
    constexpr int opaque = 255;
    QImage mask(sessionMask.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < mask.height(); ++y) {
        const auto *const in = reinterpret_cast<const QRgb *>(sessionMask.constScanLine(y));
        std::transform(in, in + mask.width(), mask.scanLine(y),
                       [](QRgb pixel) { return uchar(opaque - qAlpha(pixel)); });
    }
    return mask;
}

qint64 MaskImage::objectPixels(const QImage &mask)
{
    qint64 count = 0;
    for (int y = 0; y < mask.height(); ++y) {
        const uchar *const row = mask.constScanLine(y);
        count += mask.width() - std::count(row, row + mask.width(), uchar(0));
    }
    return count;
}

QRect MaskImage::objectBox(const QImage &mask)
{
    QRect box;
    const auto isObject = [](uchar value) { return value != 0; };
    for (int y = 0; y < mask.height(); ++y) {
        const uchar *const row = mask.constScanLine(y);
        const uchar *const end = row + mask.width();
        const uchar *const first = std::find_if(row, end, isObject);
        if (first == end)
            continue;
        const auto last =
                std::find_if(std::reverse_iterator(end), std::reverse_iterator(first), isObject);
        box |= QRect(int(first - row), y, int(last.base() - first), 1);
    }
    return box;
}
