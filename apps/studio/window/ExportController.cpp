#include "window/ExportController.h"

#include "document/Document.h"
#include "files/PicturesFolder.h"
#include "window/ExportDialog.h"
#include "window/NamedAction.h"

#include <QAction>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>

using namespace Qt::StringLiterals;

namespace {

struct FileKind
{
    QString ending; ///< of the suggested name
    QString suffix;
    QString filter;
};

FileKind fileKind(ExportKind kind)
{
    const QString png = ExportController::tr("PNG pictures (*.png)");
    switch (kind) {
    case ExportKind::Cutout:
        return {u"-cutout"_s, u"png"_s, png};
    case ExportKind::Mask:
        return {u"-mask"_s, u"png"_s, png};
    case ExportKind::Outline:
        return {u"-outline"_s, u"svg"_s, ExportController::tr("SVG drawings (*.svg)")};
    }
    return {};
}

} // namespace

ExportController::ExportController(const Document &document, QWidget *window)
    : QObject(window)
    , m_document(document)
    , m_window(window)
    , m_copy(NamedAction::create(this, u"copyCutout"_s, tr("Cop&y Cut-out"), QKeySequence::Copy))
{
    const auto add = [this](const QString &id, const QString &text, const QKeySequence &shortcut,
                            ExportKind kind) {
        QAction *const action = NamedAction::create(this, id, text, shortcut);
        m_exportActions.append(action);
        connect(action, &QAction::triggered, this, [this, kind] { askForOptions(kind); });
    };
    add(u"exportCutout"_s, tr("&Export Cut-out…"), QKeySequence(Qt::CTRL | Qt::Key_E),
        ExportKind::Cutout);
    add(u"exportMask"_s, tr("Export &Mask…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E),
        ExportKind::Mask);
    add(u"exportOutline"_s, tr("Export Out&line…"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_E),
        ExportKind::Outline);
    connect(m_copy, &QAction::triggered, this, &ExportController::copy);
    connect(&m_exporter, &Exporter::isBusyChanged, this, &ExportController::isBusyChanged);
    connect(&m_exporter, &Exporter::failed, this, &ExportController::failed);
    connect(&m_exporter, &Exporter::made, this, &ExportController::putOnClipboard);
    connect(&m_exporter, &Exporter::written, this, [this](const QString &fileName) {
        Q_EMIT done(tr("Exported to %1").arg(QDir::toNativeSeparators(fileName)));
    });
}

CutoutPicture::Options ExportController::suggestedOptions() const
{
    return {.cleanPixels = m_document.edgeSettings().cleanPixels(),
            .crop = m_crops,
            .background = m_background};
}

void ExportController::askForOptions(ExportKind kind)
{
    auto *const dialog = new ExportDialog(kind, suggestedOptions(), m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog, kind] {
        const CutoutPicture::Options options = dialog->options();
        m_crops = options.crop;
        if (kind == ExportKind::Cutout)
            m_background = options.background;
        askForFile(kind, options);
    });
    dialog->open();
}

void ExportController::askForFile(ExportKind kind, const CutoutPicture::Options &options)
{
    const FileKind file = fileKind(kind);
    auto *const dialog = new QFileDialog(m_window, tr("Export To"), {}, file.filter);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(file.suffix);
    const QFileInfo suggestion(suggestedFile(kind));
    dialog->setDirectory(suggestion.path());
    dialog->selectFile(suggestion.fileName());
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, kind, options](const QString &fileName) {
                m_folder = QFileInfo(fileName).absolutePath();
                m_exporter.write(fileName, kind, m_document.cutoutSource(), options);
            });
    dialog->open();
}

QString ExportController::suggestedFile(ExportKind kind) const
{
    const OpenedPicture &opened = m_document.opened();
    const FileKind file = fileKind(kind);
    const QString folder = m_folder.isEmpty() ? PicturesFolder::around(opened.fileName) : m_folder;
    return folder + u'/' + QFileInfo(opened.title).completeBaseName() + file.ending + u'.' +
           file.suffix;
}

/// Other programs want the object alone, whatever it was exported with.
void ExportController::copy()
{
    CutoutPicture::Options options = suggestedOptions();
    options.crop = true;
    options.background = QColor();
    m_exporter.make(m_document.cutoutSource(), options);
}

/// As a PNG as well, so that nobody waits for one to be made when another program asks for it, and
/// no program gets the colours multiplied by their alpha.
void ExportController::putOnClipboard(const QImage &picture, const QByteArray &png)
{
    auto *const data = new QMimeData; // the clipboard takes it
    data->setImageData(picture);
    data->setData(u"image/png"_s, png);
    QGuiApplication::clipboard()->setMimeData(data);
    Q_EMIT done(tr("The cut-out is on the clipboard."));
}
