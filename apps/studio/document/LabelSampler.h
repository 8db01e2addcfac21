#pragma once

#include <QImage>
#include <QList>
#include <QSize>

/// The regions as the screen sees them: which one lies under which of its pixels, counted from the
/// picture's corner.
class LabelSampler
{
public:
    /// The scale says how many pixels of the screen a pixel of the picture has.
    LabelSampler(const QImage &labels, const QSize &pictureSize, double scale);

    /// Where in a row of labels each of the columns from left on finds its own.
    QList<int> columns(int left, int count) const;
    const int *row(int y) const;

private:
    static int sample(int position, double step, int end);

    QImage m_labels;
    double m_stepX; // labels for each pixel of the screen
    double m_stepY;
};
