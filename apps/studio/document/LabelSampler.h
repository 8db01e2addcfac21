#pragma once

#include <QImage>
#include <QList>
#include <QSize>

/// Which region lies under which pixel of the picture as it is scaled for the screen.
class LabelSampler
{
public:
    /// The scale says how many of these each pixel of the picture has, per side.
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
