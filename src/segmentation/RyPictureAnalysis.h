#pragma once

#include "image/RyImage.h"
#include "segmentation/RyPreparedLasso.h"

#include <QMutex>

#include <memory>
#include <optional>

class RyGraphCut;

/**
 * What all cuts of one picture share: its colour planes and its edge picture, computed once, and
 * what graph cuts know of the newest lasso.
 *
 * Errors   an empty picture gives null planes; image() and graphCut() throw std::bad_alloc, and try
 *          again at their next call.
 * Threads  safe from every thread; image() computes at its first call and blocks others meanwhile,
 *          and graphCut() takes its time, so both are called from the thread pool or a session's
 *          thread, never from the host's.
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

    /// As it was given.
    const QImage &picture() const { return m_picture; }
    /// Lives as long as this object.
    const RyImage &image();

    std::optional<Edges> edges() const;
    void setEdges(const Edges &edges);

    /// Judges what a lasso holds, unless that is known. Null for a lasso that covers no pixel.
    std::shared_ptr<const RyGraphCut> graphCut(const RyPreparedLasso &lasso);
    /// Gives the memory of the graph cut back. Any thread; does not wait.
    void forgetGraphCut();

private:
    const QImage m_picture;
    const QFileInfo m_file;

    mutable QMutex m_mutex; // guards these two; held while planes are computed
    std::unique_ptr<const RyImage> m_image;
    std::optional<Edges> m_edges;

    QMutex m_graphCutMutex;  // guards these two; never held for long, as the host's thread takes it
    RyPreparedLasso m_lasso; // of the graph cut
    std::shared_ptr<const RyGraphCut> m_graphCut;
};
