#pragma once

#include "background/BackgroundLane.h"
#include "document/ImagePyramid.h"

#include <QImage>
#include <QObject>
#include <QRect>

/**
 * The cut's mask as the canvas draws it. Masks are taken in beside the event loop; of those that
 * arrive meanwhile the newest counts.
 *
 * Threads  the GUI thread.
 */
class MaskLayer : public QObject
{
    Q_OBJECT

public:
    explicit MaskLayer(QObject *parent = nullptr);

    /// As sessions send it, or in Format_Alpha8; null without a cut.
    void setMask(const QImage &mask);
    const ImagePyramid &pyramid() const { return m_pyramid; }
    /// True when the last mask has been taken in.
    bool isUpToDate() const { return !m_lane.isBusy(); }

Q_SIGNALS:
    void changed(const QRect &area); ///< in pixels of the mask

private:
    struct Result
    {
        ImagePyramid pyramid;
        QRect changedArea;
    };

    Result takeIn(const QImage &mask);

    ImagePyramid m_pyramid;
    ImagePyramid m_latest; // the lane's: what the next mask differs from
    BackgroundLane m_lane; // last: its work uses that
};
