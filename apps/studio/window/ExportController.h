#pragma once

#include "files/ExportKind.h"
#include "files/Exporter.h"

#include <QColor>
#include <QList>
#include <QObject>
#include <QString>

class Document;
class ExportDialog;
class QAction;
class QKeySequence;
class QWidget;

/**
 * What leaves a window: asks how and where to, and exports it beside the event loop.
 *
 * Threads  the GUI thread.
 */
class ExportController : public QObject
{
    Q_OBJECT

public:
    /// Both are borrowed; the window is for dialogs.
    ExportController(const Document &document, QWidget *window);

    QList<QAction *> exportActions() const { return m_exportActions; }
    QAction *copyAction() const { return m_copy; }

    bool isBusy() const { return m_exporter.isBusy(); }
    void cancel() { m_exporter.cancel(); }

Q_SIGNALS:
    void isBusyChanged(bool isBusy);
    void done(const QString &sentence);
    void failed(const QString &sentence);

private:
    CutoutPicture::Options suggestedOptions() const;
    void askForOptions(ExportKind kind);
    void askForFile(ExportKind kind, const CutoutPicture::Options &options);
    QString suggestedFile(ExportKind kind) const;
    void copy();
    void putOnClipboard(const QImage &picture, const QByteArray &png);

    const Document &m_document;
    QWidget *const m_window;
    QList<QAction *> m_exportActions; // children, as the next one
    QAction *m_copy;
    bool m_crops = false; // as chosen the last time
    QColor m_background;  // as chosen the last time
    QString m_folder;     // of the last export
    Exporter m_exporter;
};
