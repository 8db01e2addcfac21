#pragma once

#include "document/ImagePyramid.h"

#include <QFuture>
#include <QImage>
#include <QObject>
#include <QRect>

#include <optional>

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
    ~MaskLayer() override;

    /// As sessions send it, or in Format_Alpha8; null without a cut.
    void setMask(const QImage &mask);
    const ImagePyramid &pyramid() const { return m_pyramid; }
    /// True when the last mask has been taken in.
    bool isUpToDate() const { return !m_isWorking; }

Q_SIGNALS:
    void changed(const QRect &area); ///< in pixels of the mask

private:
    struct Result
    {
        ImagePyramid pyramid;
        QRect changedArea;
    };

    static Result takenIn(ImagePyramid pyramid, const QImage &mask);
    void start(const QImage &mask);
    void finish(const Result &result);

    ImagePyramid m_pyramid;
    std::optional<QImage> m_next;
    bool m_isWorking = false;
    QFuture<void> m_work;
};
