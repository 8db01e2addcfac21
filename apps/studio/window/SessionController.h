#pragma once

#include "files/Autosave.h"
#include "files/SessionOpener.h"
#include "files/SessionSaver.h"

#include <QMessageBox>
#include <QObject>
#include <QString>

class Document;
class QAction;
class QWidget;

/**
 * Where a window's work is kept: opens and saves sessions, asks before unsaved work goes, offers
 * what a crash has left.
 *
 * Threads  the GUI thread.
 */
class SessionController : public QObject
{
    Q_OBJECT

public:
    /// Both are borrowed; the window is for dialogs.
    SessionController(Document &document, QWidget *window);

    QAction *saveAction() const { return m_save; }
    QAction *saveAsAction() const { return m_saveAs; }

    /// Answers with pictureOpened() or failed(), later.
    void open(const QString &fileName);
    bool isOpening() const { return m_opener.isOpening(); }
    void cancel() { m_opener.cancel(); }

    /// The session's file; empty before there is one.
    QString fileName() const { return m_fileName; }
    /// Answers with saved() or failed(). False when it has failed already.
    bool saveTo(const QString &fileName);

    /// Asks whether unsaved work shall be saved or thrown away, and saves it. False when it has to
    /// stay.
    bool mayDiscardChanges();
    /// The same once what was to come instead is there: asks about what was done since.
    bool mayDiscardLaterChanges();
    /// Offers what programs have left that did not end in an orderly way; true when some of it is
    /// being opened. The file, if any, is what is opened else.
    bool offerToRestore(const QString &otherFile = {});

Q_SIGNALS:
    void isOpeningChanged(bool isOpening);
    /// Who hears it hands the picture to the document; then the session is played there.
    void pictureOpened(const OpenedPicture &picture);
    void saved(const QString &fileName);
    void failed(const QString &sentence);

private:
    bool save();
    bool saveAs();
    bool mayDiscardOnRequest();
    bool saveAndWait();
    QString suggestedFile() const;
    void finishSaving(quint64 number, const SessionFile::Saved &result);
    void play(const OpenedPicture &picture, const QList<ReplayStep> &steps,
              const EdgeSettings &edges);
    void endReplay(bool isComplete);
    QMessageBox::StandardButton askWhetherToRestore(const QString &session,
                                                    const QString &otherFile);
    void askForPicture();
    void askAboutDifference();

    Document &m_document;
    QWidget *const m_window;
    QAction *const m_save; // children
    QAction *const m_saveAs;
    QString m_fileName;
    quint64 m_revision = 0; // of the document; counts all its changes
    quint64 m_discardableRevision = 0;
    quint64 m_lastSave = 0;      // the saver's number, of this picture; 0 for none
    quint64 m_savedRevision = 0; // that it writes
    QString m_playedFile;        // the session that is played
    EdgeSettings m_playedEdges;  // at its end
    bool m_isAsking = false;
    Autosave m_autosave;
    SessionOpener m_opener;
    SessionSaver m_saver;
};
