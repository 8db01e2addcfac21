#pragma once

#include "cutout/EdgeOptions.h"
#include "document/ImagePyramid.h"

#include <QImage>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <stop_token>

class Document;

/**
 * The mask as a document's edge settings change it, and the colours along it, made beside the event
 * loop. Work for settings that have changed is given up; of masks that arrive meanwhile, as they do
 * during a stroke, the newest follows when the last one is done.
 *
 * Threads  the GUI thread.
 */
class EdgePreview : public QObject
{
    Q_OBJECT

public:
    /// The document is borrowed.
    explicit EdgePreview(const Document &document, QObject *parent = nullptr);
    ~EdgePreview() override;

    /// Opaque where the background is. At the picture's size and in Format_Alpha8, or the session's
    /// own when nothing changes it; null without a cut.
    QImage mask() const { return m_mask; }
    /// The picture with a clean edge, where that was asked for and differs; else null.
    ImagePyramid colours() const { return m_colours; }
    /// Colours take time as well, and only some views show them.
    void setShowsColours(bool shows);
    bool isUpToDate() const { return !m_isWorking && !m_delay.isActive(); }

Q_SIGNALS:
    void changed(); ///< mask or colours

private:
    int rimPixels() const;
    bool isNeeded() const;
    void takeMask();
    void takeSettings();
    void giveUp();
    void start();
    void finish(quint64 request, const QImage &mask, const ImagePyramid &colours);
    void show(const QImage &mask, const ImagePyramid &colours);

    const Document &m_document;
    QImage m_mask;
    ImagePyramid m_colours;
    bool m_showsColours = false;
    EdgeOptions m_edges; // last heard of
    int m_rim = 0;       // of what is being made, or was
    QTimer m_delay;      // several changes at once are answered once
    quint64 m_request = 0;
    bool m_isWorking = false;
    bool m_isOutdated = false; // what is worked on
    std::stop_source m_stop;
    QThreadPool m_pool; // last: its tasks end before anything else goes
};
