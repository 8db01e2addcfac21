#pragma once

#include "RyImageCutterExport.h"

#include <QFileInfo>
#include <QImage>
#include <QMutex>
#include <QThread>

#include <memory>

class RyImage;

/**
 * Edge strength of a picture: a 3 × 3 Sobel operator over colour differences.
 *
 * Input    a picture's YCbCr plane; the difference of two pixels is the sum of their absolute
 *          channel differences, 0 … 765.
 * Output   sobel(): Format_ARGB32 of the picture's size, opaque grey, red = green = blue =
 *          strength 0 … 255. The outermost pixels, the last column but one and the last row but
 *          one are never computed and stay black.
 * Source   Sobel's operator with unsigned colour distances instead of signed differences.
 * Errors   none reported: an empty picture gives a null image, one lower than 4 rows a black
 *          image, both with statistics of 0.
 * Threads  a thread of its own (start(), then wait()), or run() on the caller's; rows fan out over
 *          the global pool. All else is safe at any time: a run keeps the picture that it began
 *          with, and until it has ended there are no results. Time O(w · h).
 */
class RYIMAGECUTTER_EXPORT RyEdgeDetectorSobelColor : public QThread
{
    Q_OBJECT

public:
    RyEdgeDetectorSobelColor();
    ~RyEdgeDetectorSobelColor() override;

    void setup(const RyImage *image); ///< borrowed by the run; inside the library only
    void setup(const QImage &picture, const QFileInfo &file);

    void run() override;

    QImage sobel() const { return results().sobel; }
    /// The median-like strength, 0 … 254, in spite of the name: the last one below which fewer
    /// than half of the inner pixels lie. This is the statistic that region growing is given.
    double mean() const { return results().median; }
    /// The mean strength, truncated; pixels of strength 255 do not count.
    double average() const { return results().average; }

private:
    struct Results
    {
        QImage sobel;
        double average = 0.0;
        double median = 0.0;
    };

    static Results detect(const RyImage &image);
    Results results() const;

    mutable QMutex m_mutex;                 // guards all below
    std::shared_ptr<const RyImage> m_image; // a run shares it
    Results m_results;
};
