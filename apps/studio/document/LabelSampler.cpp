#include "document/LabelSampler.h"

#include <algorithm>

LabelSampler::LabelSampler(const QImage &labels, const QSize &pictureSize, double scale)
    : m_labels(labels)
    , m_stepX(labels.width() / (scale * pictureSize.width()))
    , m_stepY(labels.height() / (scale * pictureSize.height()))
{}

/// In the middle of the pixel, at the nearest label for those outside.
int LabelSampler::sample(int position, double step, int end)
{
    return std::clamp(int((position + 0.5) * step), 0, end - 1);
}

QList<int> LabelSampler::columns(int left, int count) const
{
    QList<int> result(count);
    for (int x = 0; x < count; ++x)
        result[x] = sample(left + x, m_stepX, m_labels.width());
    return result;
}

const int *LabelSampler::row(int y) const
{
    return reinterpret_cast<const int *>(
            m_labels.constScanLine(sample(y, m_stepY, m_labels.height())));
}
