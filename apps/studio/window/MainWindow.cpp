#include "window/MainWindow.h"

#include "canvas/Canvas.h"
#include "files/PicturesFolder.h"
#include "settings/StudioSettings.h"
#include "settings/WindowSettings.h"
#include "window/StartPage.h"
#include "window/StatusBar.h"

#include <QAction>
#include <QActionGroup>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QStackedWidget>
#include <QToolBar>

namespace {

/// As file dialogs take them: "Pictures (*.png *.jpg)".
QString pictureFilter()
{
    QStringList patterns;
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    for (const QByteArray &format : formats)
        patterns.append(QStringLiteral("*.") + QString::fromLatin1(format));
    patterns.append(u'*' + SessionFile::suffix);
    return MainWindow::tr("Pictures and sessions (%1)").arg(patterns.join(u' ')) +
           QStringLiteral(";;") + MainWindow::tr("All files (*)");
}

/// Empty where there is none that can be opened.
QString fileOf(const QMimeData &source)
{
    return source.urls().value(0).toLocalFile();
}

bool hasPicture(const QMimeData *source)
{
    return source && (!fileOf(*source).isEmpty() || source->hasImage());
}

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_tools(m_document)
    , m_undoActions(m_document, m_tools)
    , m_exports(m_document, this)
    , m_sessions(m_document, this)
    , m_canvas(new Canvas(m_document))
    , m_startPage(new StartPage)
    , m_pages(new QStackedWidget)
    , m_statusBar(new StatusBar)
    , m_toolActions(new QActionGroup(this))
    , m_viewModes(new QActionGroup(this))
{
    m_pages->addWidget(m_startPage);
    m_pages->addWidget(m_canvas);
    setCentralWidget(m_pages);
    setStatusBar(m_statusBar);
    setAcceptDrops(true);
    createFileMenu();
    createEditMenu();
    createToolMenu();
    createCutMenu();
    createViewMenu();
    createHelpMenu();
    createToolBars();
    connectDocument();
    connectExports();
    connectPreferences();
    connect(m_startPage, &StartPage::openRequested, this, &MainWindow::chooseFile);
    connect(m_startPage, &StartPage::sampleChosen, this, &MainWindow::openFile);
    connect(&m_tools, &ToolSet::currentChanged, this, &MainWindow::showTool);
    connect(m_canvas, &Canvas::zoomChanged, m_statusBar, &StatusBar::setZoom);
    connect(m_statusBar, &StatusBar::cancelRequested, this, &MainWindow::cancel);
    for (const Tool *const tool : m_tools.tools())
        connect(tool, &Tool::message, m_statusBar, &StatusBar::remark);
    showTool(m_tools.current());
    updateActions();
    updateTitle();
    for (QWidget *const widget : std::as_const(m_workWidgets))
        widget->hide();
    resize(1180, 780);
    if (restoreGeometry(WindowSettings::instance().geometry()))
        moveOntoAScreen();
}

MainWindow::~MainWindow()
{
    m_document.disconnect();
    delete takeCentralWidget(); // before the document, on which the canvas works
}

void MainWindow::connectDocument()
{
    connect(&m_loader, &PictureLoader::loaded, this, [this](const OpenedPicture &picture) {
        if (m_sessions.mayDiscardLaterChanges())
            showPicture(picture);
    });
    connect(&m_loader, &PictureLoader::failed, this, &MainWindow::complain);
    connect(&m_loader, &PictureLoader::isLoadingChanged, this, &MainWindow::updateActions);
    connect(&m_document, &Document::failed, this, &MainWindow::complain);
    connect(&m_document, &Document::remarked, m_statusBar, &StatusBar::remark);
    connect(&m_document, &Document::maskChanged, this, &MainWindow::updateActions);
    connect(&m_document, &Document::progress, this, [this](int currentStep, int totalSteps) {
        if (!m_document.isReplaying()) // which counts other steps
            m_statusBar->setProgress(currentStep, totalSteps);
    });
    connect(&m_document, &Document::isCuttingChanged, this, &MainWindow::updateActions);
    connectSessions();
    connect(&m_document, &Document::isModifiedChanged, this, &MainWindow::updateTitle);
}

void MainWindow::connectExports()
{
    connect(&m_exports, &ExportController::failed, this, &MainWindow::complain);
    connect(&m_exports, &ExportController::isBusyChanged, this, &MainWindow::updateActions);
    connect(&m_exports, &ExportController::done, this, [this](const QString &sentence) {
        constexpr int messageMs = 5000;
        m_statusBar->showMessage(sentence, messageMs);
    });
}

void MainWindow::connectSessions()
{
    connect(&m_sessions, &SessionController::failed, this, &MainWindow::complain);
    connect(&m_sessions, &SessionController::pictureOpened, this, &MainWindow::showPicture);
    connect(&m_sessions, &SessionController::isOpeningChanged, this, &MainWindow::updateActions);
    connect(&m_sessions, &SessionController::saved, this, [this](const QString &fileName) {
        constexpr int messageMs = 5000;
        m_statusBar->showMessage(tr("Saved as %1").arg(QDir::toNativeSeparators(fileName)),
                                 messageMs);
        updateTitle();
    });
    connect(&m_document, &Document::replayProgress, this, [this](int currentStep, int totalSteps) {
        updateActions();
        m_statusBar->setProgress(currentStep, totalSteps);
    });
    connect(&m_document, &Document::replayEnded, this, &MainWindow::updateActions);
}

void MainWindow::begin(const QString &fileName)
{
    const QFileInfo file(fileName);
    const bool isRestoring = m_sessions.offerToRestore(file.fileName());
    if (isRestoring && file.isFile())
        StudioSettings::instance().addRecentFile(file.absoluteFilePath());
    else if (!isRestoring && !fileName.isEmpty())
        openFile(fileName);
}

void MainWindow::openFile(const QString &fileName)
{
    if (!m_sessions.mayDiscardChanges())
        return;
    m_loader.cancel();
    m_sessions.cancel();
    if (SessionFile::isSession(fileName)) {
        m_sessions.open(fileName);
        return;
    }
    m_loader.setLongestSide(StudioSettings::longestSideForCutting());
    m_loader.load(fileName);
}

void MainWindow::chooseFile()
{
    const QString folder = PicturesFolder::around(m_document.opened().fileName);
    const QString fileName =
            QFileDialog::getOpenFileName(this, tr("Open a Picture"), folder, pictureFilter());
    if (!fileName.isEmpty())
        openFile(fileName);
}

void MainWindow::paste()
{
    if (!openMimeData(QGuiApplication::clipboard()->mimeData()))
        m_statusBar->remark(tr("There is no picture to paste."));
}

/// In a later turn, since a question may come up, and the program that something was dragged from
/// waits until the drop is handled.
bool MainWindow::openMimeData(const QMimeData *source)
{
    if (!hasPicture(source))
        return false;
    const QString file = fileOf(*source);
    const QImage image = file.isEmpty() ? qvariant_cast<QImage>(source->imageData()) : QImage();
    if (file.isEmpty() && image.isNull())
        return false;
    const auto open = [this, file, image] { image.isNull() ? openFile(file) : openImage(image); };
    QMetaObject::invokeMethod(this, open, Qt::QueuedConnection);
    return true;
}

void MainWindow::openImage(const QImage &image)
{
    if (!m_sessions.mayDiscardChanges())
        return;
    m_sessions.cancel();
    m_loader.setLongestSide(StudioSettings::longestSideForCutting());
    m_loader.load(image);
}

void MainWindow::showPicture(const OpenedPicture &picture)
{
    m_tools.current()->cancel();
    if (!m_document.hasPicture()) {
        m_pages->removeWidget(m_startPage); // its width would be the least that the window can have
        showWorkWidgets();
    }
    m_document.setPicture(picture);
    m_pages->setCurrentWidget(m_canvas);
    m_canvas->setFocus();
    m_statusBar->setPictureSize(picture.picture.size(), picture.cuttingPicture.size());
    if (PicturesFolder::isPutByPeople(picture.fileName))
        StudioSettings::instance().addRecentFile(picture.fileName);
    m_tools.setCurrent(m_tools.tools().first()); // every cut begins with a lasso
    updateActions();
    updateTitle();
}

void MainWindow::showTool(Tool *tool)
{
    m_canvas->setTool(tool);
    m_statusBar->setHint(m_document.hasPicture() ? tool->description().hint : QString());
    m_toolActions->actions().at(m_tools.tools().indexOf(tool))->setChecked(true);
    if (m_toolOptions) {
        m_optionsBar->removeAction(m_toolOptions);
        m_toolOptions->deleteLater();
        m_toolOptions = nullptr;
    }
    if (QWidget *const options = tool->createOptions(m_optionsBar)) {
        m_toolOptions = m_optionsBar->addWidget(options);
        returnKeysFrom(*options);
    }
}

/// Once something is chosen or entered there, keys are for the tool again.
void MainWindow::returnKeysFrom(const QWidget &options)
{
    const auto takeFocus = [this] { m_canvas->setFocus(); };
    for (const QComboBox *const choice : options.findChildren<QComboBox *>())
        connect(choice, &QComboBox::activated, m_canvas, takeFocus);
    for (const QLineEdit *const line : options.findChildren<QLineEdit *>())
        connect(line, &QLineEdit::returnPressed, m_canvas, takeFocus);
}

void MainWindow::cancel()
{
    if (m_tools.current()->escape())
        return;
    m_loader.cancel();
    m_exports.cancel();
    m_sessions.cancel();
    m_document.cancel();
}

void MainWindow::complain(const QString &sentence)
{
    auto *const box = new QMessageBox(QMessageBox::Warning, tr("RyCut Studio"), sentence,
                                      QMessageBox::Ok, this); // deletes itself
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void MainWindow::updateActions()
{
    for (QAction *const action : m_pictureActions)
        action->setEnabled(m_document.hasPicture());
    for (QAction *const action : m_cutActions)
        action->setEnabled(m_document.hasCut() && !m_document.isCutting() &&
                           !m_document.isReplaying());
    m_canvas->setEnabled(!m_document.isReplaying());
    if (m_document.hasPicture())
        m_statusBar->setHint(m_tools.current()->description().hint);
    m_statusBar->showProgressOf(whatIsUnderWay());
}

/// Of several things, what changes the picture that is seen comes first.
QString MainWindow::whatIsUnderWay() const
{
    if (m_document.isReplaying())
        return tr("Restoring step %v of %m");
    if (m_document.isCutting())
        return tr("Cutting %p %");
    if (m_loader.isLoading() || m_sessions.isOpening())
        return tr("Opening…");
    return m_exports.isBusy() ? tr("Exporting…") : QString();
}

void MainWindow::updateTitle()
{
    setWindowModified(m_document.isModified());
    setWindowTitle(m_document.hasPicture()
                           ? tr("%1[*] — RyCut Studio").arg(m_document.opened().title)
                           : tr("RyCut Studio"));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(m_sessions.mayDiscardChanges());
    if (event->isAccepted())
        rememberWindow();
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (hasPicture(event->mimeData()))
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    if (openMimeData(event->mimeData()))
        event->acceptProposedAction();
}
