#pragma once

#include "cutout/CutoutPicture.h"
#include "document/CutoutSource.h"
#include "files/ExportKind.h"

#include <QByteArray>
#include <QImage>
#include <QObject>
#include <QString>
#include <QThreadPool>

#include <functional>
#include <stop_token>

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
    ~Exporter() override; ///< what has begun is finished first

    void write(const QString &fileName, ExportKind kind, const CutoutSource &source,
               const CutoutPicture::Options &options);
    /// Answers with made().
    void make(const CutoutSource &source, const CutoutPicture::Options &options);

    bool isBusy() const { return m_tasks > 0; }
    void cancel(); ///< no files appear any more, and nothing is told

Q_SIGNALS:
    void isBusyChanged(bool isBusy);
    void written(const QString &fileName);
    void made(const QImage &picture, const QByteArray &png);
    void failed(const QString &sentence);

private:
    /// Does the work on another thread, and returns what then tells of it in the GUI thread.
    using Task = std::function<std::function<void()>(const std::stop_token &)>;
    using Sentence = std::function<QString(const QString &reason)>;

    void start(const Task &task, const Sentence &failure);
    void finish(const std::stop_token &stop, const std::function<void()> &tell);

    int m_tasks = 0;
    std::stop_source m_stop;
    QThreadPool m_pool; // last: its tasks end before anything else goes
};
