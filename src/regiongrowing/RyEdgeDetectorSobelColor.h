#pragma once

#include "RyImageCutterExport.h"

#include <QFileInfo>
#include <QImage>
#include <QList>
#include <QThread>

#include <memory>

class RyImage;

/**
 * Edge strength of a picture: a 3 × 3 Sobel operator over colour differences.
 *
 * Input    a picture's YCbCr plane; the difference of two pixels is the sum of their absolute
 *          channel differences, 0 … 765.
 * Output   sobel(): Format_ARGB32 of the picture's size, opaque grey, red = green = blue = strength
 *          0 … 255. The outermost pixels, the last column but one and the last row but one are
 *          never computed and stay black.
 * Source   Sobel's operator with unsigned colour distances instead of signed differences.
 * Errors   none reported: an empty picture gives a null image, one lower than 4 rows a black image,
 *          both with statistics of 0.
 * Threads  a thread of its own (start(), then wait()), or run() on the caller's; rows fan out over
 *          the global pool. Results may be read when it has ended. Time O(w · h).
 */
class RYIMAGECUTTER_EXPORT RyEdgeDetectorSobelColor : public QThread
{
    Q_OBJECT

public:
    RyEdgeDetectorSobelColor();
    ~RyEdgeDetectorSobelColor() override;

    void setup(const RyImage *image); ///< borrowed until the run has ended; inside the library only
    void setup(const QImage &picture, const QFileInfo &file);

    void run() override;

    QImage sobel() const { return m_sobelImage; }
    /// The median-like strength, 0 … 254, in spite of the name: the last one below which fewer than
    /// half of the inner pixels lie. This is the statistic that region growing is given.
    double mean() const { return m_median; }
    /// The mean strength, truncated; pixels of strength 255 do not count.
    double average() const { return m_average; }

private:
    void detect();
    void calculateMedianAndMean(const QList<int> &histogram, qint64 half);

    const RyImage *m_image = nullptr;
    std::unique_ptr<RyImage> m_ownImage; // of setup(QImage, QFileInfo)
    QImage m_sobelImage;
    double m_average = 0.0;
    double m_median = 0.0;
};
