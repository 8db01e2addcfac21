#pragma once

#include <QImage>
#include <QRandomGenerator>

/// Masks to try things on, in Format_Grayscale8.
namespace Masks {

inline QImage filled(const QSize &size, uchar value)
{
    QImage mask(size, QImage::Format_Grayscale8);
    mask.fill(value);
    return mask;
}

/// Of rows, with a / between them, in which # is object.
inline QImage drawn(const QByteArray &text)
{
    const QByteArrayList rows = text.split('/');
    QImage mask = filled({int(rows.first().size()), int(rows.size())}, 0);
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            mask.scanLine(y)[x] = rows.at(y).at(x) == '#' ? 255 : 0;
    return mask;
}

/// Blobs and crumbs; with soft rims or without.
inline QImage random(const QSize &size, bool isSoft, quint32 seed)
{
    QRandomGenerator dice(seed);
    QImage small = filled({std::max(size.width() / 3, 1), std::max(size.height() / 3, 1)}, 0);
    for (int y = 0; y < small.height(); ++y)
        for (int x = 0; x < small.width(); ++x)
            small.scanLine(y)[x] = dice.bounded(2) == 0 ? 0 : 255;
    QImage mask = small.scaled(size, Qt::IgnoreAspectRatio,
                               isSoft ? Qt::SmoothTransformation : Qt::FastTransformation)
                          .convertToFormat(QImage::Format_Grayscale8);
    for (int crumbs = size.width() * size.height() / 20; crumbs > 0; --crumbs)
        mask.scanLine(dice.bounded(size.height()))[dice.bounded(size.width())] =
                isSoft ? uchar(dice.bounded(256)) : uchar(255 * dice.bounded(2));
    return mask;
}

} // namespace Masks
