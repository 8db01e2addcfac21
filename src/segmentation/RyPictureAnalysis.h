#pragma once

#include "image/RyImage.h"

#include <QMutex>

#include <memory>
#include <optional>

/**
 * What all lassos on one picture share: its colour planes and its edge picture, computed once.
 *
 * Errors   an empty picture gives null planes; image() throws std::bad_alloc, and tries again at
 *          its next call.
 * Threads  safe from every thread; image() computes at its first call and blocks others meanwhile,
 *          so it is called from the thread pool, never from the host's thread.
 */
class RyPictureAnalysis
{
public:
    struct Edges
    {
        QImage sobel;
        double statistic = 0.0; ///< RyEdgeDetectorSobelColor::mean()
    };

    RyPictureAnalysis(const QImage &picture, const QFileInfo &file);

    /// Lives as long as this object.
    const RyImage &image();

    std::optional<Edges> edges() const;
    void setEdges(const Edges &edges);

private:
    mutable QMutex m_mutex; // guards all below
    QImage m_picture;       // given back once the planes are built, which share it
    QFileInfo m_file;
    std::unique_ptr<const RyImage> m_image;
    std::optional<Edges> m_edges;
};
