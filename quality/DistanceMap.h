#pragma once

#include <QImage>
#include <QList>

/**
 * The distance of every pixel's centre to that of the nearest marked pixel.
 *
 * Input    a mask; what is not 0 is marked.
 * Output   squared Euclidean distances in pixels, exact. Without a marked pixel all are
 *          nothingMarked().
 * Source   the lower envelope of parabolas (Felzenszwalb and Huttenlocher, Theory of Computing 8,
 *          2012), in whole numbers.
 */
class DistanceMap
{
public:
    explicit DistanceMap(const QImage &marked);

    qint64 squaredAt(int x, int y) const { return m_squared[qsizetype(y) * m_size.width() + x]; }
    qint64 greatestSquared() const;
    /// Farther than any two pixels of the picture are from each other.
    qint64 nothingMarked() const;

private:
    void measureColumns(const QImage &marked);
    void measureRow(qint64 *row);

    QSize m_size;
    QList<qint64> m_squared;          // row-major
    QList<qint64> m_column;           // of the row in work: squared distances along columns
    QList<int> m_parabolas, m_starts; // the envelope: their vertices, and where each becomes lowest
};
