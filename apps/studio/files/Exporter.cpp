#include "files/Exporter.h"

#include "cutout/PictureEncoder.h"
#include "files/CutoutExport.h"
#include "files/ExportError.h"

#include <QBuffer>
#include <QDir>

#include <new>

Exporter::Exporter(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1); // two large pictures at once would need twice the memory
}

Exporter::~Exporter()
{
    m_pool.waitForDone();
}

void Exporter::write(const QString &fileName, ExportKind kind, const CutoutSource &source,
                     const CutoutPicture::Options &options)
{
    const auto task = [=, this](const std::stop_token &stop) {
        CutoutExport::write(fileName, kind, source, options, stop);
        return [this, fileName] { Q_EMIT written(fileName); };
    };
    start(task, [fileName](const QString &reason) {
        return tr("“%1” cannot be exported: %2.").arg(QDir::toNativeSeparators(fileName), reason);
    });
}

void Exporter::make(const CutoutSource &source, const CutoutPicture::Options &options)
{
    const auto task = [=, this](const std::stop_token &stop) {
        const QImage picture = CutoutExport::picture(source, options, stop);
        QBuffer png;
        png.open(QIODevice::WriteOnly);
        const QString problem = PictureEncoder::encode(png, picture, "png");
        if (!problem.isEmpty())
            throw ExportError(problem);
        return [this, picture, bytes = png.data()] { Q_EMIT made(picture, bytes); };
    };
    start(task, [](const QString &reason) {
        return tr("The cut-out cannot be copied: %1.").arg(reason);
    });
}

void Exporter::start(const Task &task, const Sentence &failure)
{
    if (++m_tasks == 1)
        Q_EMIT isBusyChanged(true);
    m_pool.start([this, task, failure, stop = m_stop.get_token()] {
        const auto fail = [&](const QString &reason) {
            finish(stop, [this, sentence = failure(reason)] { Q_EMIT failed(sentence); });
        };
        try {
            finish(stop, task(stop));
        } catch (const ExportError &error) {
            fail(error.reason());
        } catch (const std::bad_alloc &) {
            fail(tr("there is too little memory"));
        }
    });
}

/// Any thread.
void Exporter::finish(const std::stop_token &stop, const std::function<void()> &tell)
{
    const auto deliver = [this, stop, tell] {
        if (stop.stop_requested())
            return;
        if (--m_tasks == 0)
            Q_EMIT isBusyChanged(false);
        tell();
    };
    QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
}

void Exporter::cancel()
{
    m_stop.request_stop();
    m_stop = {};
    if (m_tasks == 0)
        return;
    m_tasks = 0;
    Q_EMIT isBusyChanged(false);
}
