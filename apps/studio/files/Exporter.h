#pragma once

#include "background/BackgroundLane.h"
#include "cutout/CutoutPicture.h"
#include "document/CutoutSource.h"
#include "files/ExportKind.h"

#include <QByteArray>
#include <QImage>
#include <QObject>
#include <QString>

/**
 * Exports cut-outs beside the event loop, one after the other.
 *
 * Threads  the GUI thread.
 */
class Exporter : public QObject
{
    Q_OBJECT

public:
    explicit Exporter(QObject *parent = nullptr);

    void write(const QString &fileName, ExportKind kind, const CutoutSource &source,
               const CutoutPicture::Options &options);
    /// Answers with made().
    void make(const CutoutSource &source, const CutoutPicture::Options &options);

    bool isBusy() const { return m_lane.isBusy(); }
    void cancel() { m_lane.cancel(); } ///< no files appear any more, and nothing is told

Q_SIGNALS:
    void isBusyChanged(bool isBusy);
    void written(const QString &fileName);
    void made(const QImage &picture, const QByteArray &png);
    void failed(const QString &sentence);

private:
    BackgroundLane m_lane; // two large pictures at once would need twice the memory
};
