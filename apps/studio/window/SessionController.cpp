#include "window/SessionController.h"

#include "document/Document.h"
#include "files/PicturesFolder.h"
#include "files/StateFolder.h"
#include "settings/StudioSettings.h"
#include "window/NamedAction.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QScopedValueRollback>
#include <QUndoStack>

using namespace Qt::StringLiterals;

SessionController::SessionController(Document &document, QWidget *window)
    : m_document(document)
    , m_window(window)
    , m_save(NamedAction::create(this, u"save"_s, tr("&Save Session"), QKeySequence::Save))
    , m_saveAs(NamedAction::create(this, u"saveAs"_s, tr("Save Session &As…"),
                                   QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)))
    , m_autosave(document)
{
    connect(m_save, &QAction::triggered, this, &SessionController::save);
    connect(m_saveAs, &QAction::triggered, this, &SessionController::saveAs);
    connect(&document, &Document::pictureChanged, this, [this] {
        m_fileName.clear();
        m_lastSave = 0;
    });
    const auto count = [this] { ++m_revision; };
    connect(document.undoStack(), &QUndoStack::indexChanged, this, count);
    connect(&document, &Document::edgeSettingsChanged, this, count); // a slider changes a step
    connect(&document, &Document::replayEnded, this, &SessionController::endReplay);
    connect(&m_saver, &SessionSaver::saved, this, &SessionController::finishSaving);
    connect(&m_saver, &SessionSaver::failed, this,
            [this](quint64, const QString &sentence) { Q_EMIT failed(sentence); });
    connect(&m_opener, &SessionOpener::isOpeningChanged, this,
            &SessionController::isOpeningChanged);
    connect(&m_opener, &SessionOpener::failed, this, &SessionController::failed);
    connect(&m_opener, &SessionOpener::opened, this, &SessionController::play);
    connect(&m_opener, &SessionOpener::pictureNeeded, this, &SessionController::askForPicture);
    connect(&m_opener, &SessionOpener::pictureDiffers, this,
            &SessionController::askAboutDifference);
}

void SessionController::open(const QString &fileName)
{
    m_opener.open(QFileInfo(fileName).absoluteFilePath(), StudioSettings::longestSideForCutting());
}

void SessionController::play(const OpenedPicture &picture, const QList<ReplayStep> &steps,
                             const EdgeSettings &edges)
{
    if (!mayDiscardLaterChanges())
        return;
    Q_EMIT pictureOpened(picture);
    m_playedFile = m_opener.fileName();
    m_playedEdges = edges; // set at the end: no edge is edited for masks that soon change
    if (steps.isEmpty())
        endReplay(true);
    else
        m_document.replay(steps);
}

void SessionController::endReplay(bool isComplete)
{
    if (!isComplete)
        return; // saving this half of it would overwrite the file
    m_document.setEdgeSettings(m_playedEdges, tr("Edge as Saved"));
    if (StateFolder::holds(m_playedFile)) {
        m_document.setUnsaved();
        m_autosave.continueWith(m_playedFile);
    } else {
        m_fileName = m_playedFile;
        m_document.setSaved();
    }
}

bool SessionController::save()
{
    if (m_fileName.isEmpty())
        return saveAs();
    return saveTo(m_fileName);
}

bool SessionController::saveAs()
{
    QFileDialog dialog(m_window, tr("Save the Session"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(SessionFile::suffix.mid(1));
    dialog.setNameFilter(tr("Sessions (*%1)").arg(SessionFile::suffix));
    if (!m_fileName.isEmpty())
        dialog.selectFile(m_fileName);
    else
        dialog.selectFile(suggestedFile());
    connect(&m_document, &Document::pictureChanged, &dialog, &QDialog::reject);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    return saveTo(dialog.selectedFiles().first());
}

/// Beside the picture, where people can put it.
QString SessionController::suggestedFile() const
{
    const OpenedPicture &opened = m_document.opened();
    return PicturesFolder::around(opened.fileName) + u'/' +
           QFileInfo(opened.title).completeBaseName() + SessionFile::suffix;
}

bool SessionController::saveTo(const QString &fileName)
{
    if (StateFolder::holds(fileName)) {
        Q_EMIT failed(
                tr("“%1” is where unsaved work is kept, and cleared by itself. Please save the "
                   "session in another folder.")
                        .arg(QDir::toNativeSeparators(StateFolder::path())));
        return false;
    }
    m_savedRevision = m_revision;
    m_lastSave = m_saver.save(QFileInfo(fileName).absoluteFilePath(), m_document.gestures(),
                              m_document.edgeSettings(), m_document.opened());
    return true;
}

/// Only the newest save of the present picture counts.
void SessionController::finishSaving(quint64 number, const SessionFile::Saved &result)
{
    if (number == m_lastSave) {
        m_fileName = result.fileName;
        m_document.setPictureFile(result.pictureFile, result.pictureSha256);
        if (m_revision == m_savedRevision)
            m_document.setSaved();
    }
    Q_EMIT saved(result.fileName);
}

bool SessionController::mayDiscardChanges()
{
    const bool isKept = !m_document.isModified() || m_document.isReplaying(); // from a file
    if (!isKept && !mayDiscardOnRequest())
        return false;
    m_discardableRevision = m_revision;
    return true;
}

bool SessionController::mayDiscardLaterChanges()
{
    return m_revision == m_discardableRevision || mayDiscardChanges();
}

bool SessionController::mayDiscardOnRequest()
{
    if (m_isAsking)
        return false;
    const QScopedValueRollback asking(m_isAsking, true);
    QMessageBox::StandardButtons buttons = QMessageBox::Discard | QMessageBox::Cancel;
    if (m_document.hasCut())
        buttons |= QMessageBox::Save;
    QMessageBox box(
            QMessageBox::Warning, tr("Unsaved Changes"),
            tr("The cut of “%1” has changed. Save the changes?").arg(m_document.opened().title),
            buttons, m_window);
    box.setDefaultButton(m_document.hasCut() ? QMessageBox::Save : QMessageBox::Cancel);
    connect(&m_document, &Document::pictureChanged, &box, &QDialog::reject);
    const int answer = box.exec();
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && saveAndWait());
}

/// Events are processed meanwhile.
bool SessionController::saveAndWait()
{
    if (!save())
        return false;
    QEventLoop loop;
    const auto quitAfterTheLast = [&] {
        if (!m_saver.isSaving())
            loop.quit();
    };
    connect(this, &SessionController::saved, &loop, quitAfterTheLast);
    connect(this, &SessionController::failed, &loop, quitAfterTheLast);
    loop.exec();
    return !m_document.isModified();
}

void SessionController::askForPicture()
{
    const QString fileName =
            QFileDialog::getOpenFileName(m_window, tr("Which Picture Does the Session Belong To?"),
                                         QFileInfo(m_opener.fileName()).absolutePath());
    if (fileName.isEmpty())
        m_opener.cancel();
    else
        m_opener.takePicture(fileName);
}

void SessionController::askAboutDifference()
{
    const auto answer = QMessageBox::question(
            m_window, tr("Another Picture"),
            tr("The session was made on another picture, or this one has changed since. Use it all "
               "the same?"));
    if (answer == QMessageBox::Yes)
        m_opener.accept();
    else
        m_opener.cancel();
}

QMessageBox::StandardButton SessionController::askWhetherToRestore(const QString &session,
                                                                   const QString &otherFile)
{
    const QString when =
            QLocale().toString(QFileInfo(session).lastModified(), QLocale::ShortFormat);
    const QString picture = SessionFile::pictureFile(session);
    const QString cut = picture.isEmpty()
                                ? tr("A cut")
                                : tr("A cut of “%1”").arg(PictureLoader::titleOf(picture));
    QMessageBox box(QMessageBox::Question, tr("Restore a Cut"),
                    tr("RyCut Studio ended unexpectedly. %1 was kept that had not been saved, "
                       "as it was on %2. Restore it?")
                            .arg(cut, when),
                    QMessageBox::Yes | QMessageBox::Discard | QMessageBox::Cancel, m_window);
    box.setDefaultButton(QMessageBox::Yes);
    box.button(QMessageBox::Yes)->setText(tr("&Restore"));
    box.button(QMessageBox::Cancel)->setText(tr("Not &Now"));
    if (!otherFile.isEmpty())
        box.setInformativeText(tr("“%1” is opened unless you restore the cut; then it waits under "
                                  "Open Recent. Not Now keeps the cut for the next start.")
                                       .arg(otherFile));
    return QMessageBox::StandardButton(box.exec());
}

bool SessionController::offerToRestore(const QString &otherFile)
{
    const QStringList sessions = m_autosave.takeOver();
    for (const QString &session : sessions) {
        const auto answer = askWhetherToRestore(session, otherFile);
        if (answer == QMessageBox::Cancel)
            return false; // the next start offers what is left
        if (answer == QMessageBox::Yes) {
            m_opener.open(session, StudioSettings::longestSideForCutting());
            return true;
        }
        m_autosave.remove(session);
    }
    return false;
}
