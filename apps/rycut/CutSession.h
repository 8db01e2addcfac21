#pragma once

#include "cutout/CuttingScale.h"
#include "gestures/GesturePlayer.h"
#include "segmentation/RyImageSegmentation.h"

#include <QObject>

/**
 * The host of one segmentation session: gives it a picture and gestures, and waits for its answers.
 *
 * Threads  main thread.
 */
class CutSession : public QObject
{
    Q_OBJECT

public:
    explicit CutSession(const CuttingScale &scale);

    /// The session's mask after the last gesture, in its own format. Null when it was aborted, or
    /// memory was too short; that may throw std::bad_alloc as well. The picture has the cutting
    /// size, gestures are in pixels of the full size. Throws AppError where one cannot be played.
    QImage cut(const QImage &picture, const QList<Gesture> &gestures);
    const RyImageSegmentation &segmentation() const { return m_segmentation; }
    QPolygonF lasso() const { return m_player.lasso(); }

public Q_SLOTS:
    void abort();

Q_SIGNALS:
    void progress(int currentStep, int totalSteps);

private:
    RyImageSegmentation m_segmentation;
    GesturePlayer m_player;
    bool m_hasFailed = false; // for want of memory, or of a thread
};
