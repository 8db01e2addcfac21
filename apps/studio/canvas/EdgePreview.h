#pragma once

#include "background/BackgroundLane.h"
#include "cutout/EdgeOptions.h"
#include "document/ImagePyramid.h"

#include <QImage>
#include <QObject>
#include <QTimer>

class Document;
struct CutoutSource;

/**
 * The mask as a document's edge settings change it, and the colours along it, made beside the
 * event loop. Work for settings that have changed is given up; of masks that arrive meanwhile, as
 * they do during a stroke, the newest follows when the last one is done.
 *
 * Threads  the GUI thread.
 */
class EdgePreview : public QObject
{
    Q_OBJECT

public:
    /// The document is borrowed.
    explicit EdgePreview(const Document &document, QObject *parent = nullptr);

    /// Opaque where the background is. At the picture's size and in Format_Alpha8, or the
    /// session's own when nothing changes it; null without a cut.
    QImage mask() const { return m_edge.mask; }
    /// The picture with a clean edge, where that was asked for and differs; else null.
    ImagePyramid colors() const { return m_edge.colors; }
    /// Colours take time as well, and only some views show them.
    void setShowsColors(bool shows);
    bool isUpToDate() const { return !m_lane.isBusy() && !m_delay.isActive(); }

Q_SIGNALS:
    void changed(); ///< mask or colours

private:
    struct Edge
    {
        QImage mask;
        ImagePyramid colors;
    };

    static Edge edited(const CutoutSource &source, int rimPixels, const std::stop_token &stop);
    int rimPixels() const;
    bool isNeeded() const;
    void takeMask();
    void takeSettings();
    void giveUp();
    void start();
    void show(const Edge &edge);

    const Document &m_document;
    Edge m_edge;
    bool m_showsColors = false;
    EdgeOptions m_edges; // last heard of
    int m_rim = 0;       // of what is being made, or was
    QTimer m_delay;      // several changes at once are answered once
    BackgroundLane m_lane;
};
