#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"
#include "canvas/EdgePreview.h"
#include "cutout/EdgeColors.h"
#include "cutout/EdgeOperations.h"
#include "cutout/MaskImage.h"
#include "cutout/MaskOutline.h"
#include "cutout/SvgOutline.h"
#include "files/Exporter.h"
#include "settings/RyImageCutterSettings.h"
#include "window/EdgePanel.h"
#include "window/ExportDialog.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QUndoStack>

#include <memory>

namespace {

constexpr int reducedLength = 300; // half the sample's

/// Of the mask that is shown, how much of each pixel is object.
QImage alphaOf(const EdgePreview &preview)
{
    return MaskImage::fromSession(
            preview.mask().convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

} // namespace

Q_DECLARE_METATYPE(ExportKind)
Q_DECLARE_METATYPE(CutoutPicture::Options)

/// The edge of a cut, and what leaves the window.
class tst_StudioExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void previewFollowsTheControls_data();
    void previewFollowsTheControls();
    void previewFollowsTheMask();
    void cleanEdgeIsSeenOnBackgrounds_data();
    void cleanEdgeIsSeenOnBackgrounds();
    void sliderIsOneStep();
    void resetAndNewPicture();
    void exports_data();
    void exports();
    void failuresAreExplained_data();
    void failuresAreExplained();
    void cancelledExportLeavesNoFile();
    void failureIsShown();
    void clipboard();
    void nothingToExport();
    void everyControlHasAName();

private:
    void set(const char *control, int value);
    CutoutMask expectedMask() const;
    QImage previewedAlpha() const;
    void chooseOptions(const CutoutPicture::Options &options);
    void chooseFile(const QString &fileName);
    template <typename Dialog>
    Dialog *openDialog() const;

    QTemporaryDir m_folder;
    std::unique_ptr<StudioDriver> m_studio;
};

void tst_StudioExport::init()
{
    RySettings::setFileName(m_folder.filePath(QStringLiteral("settings.ini")));
    m_studio = std::make_unique<StudioDriver>();
}

void tst_StudioExport::cleanup()
{
    RyImageCutterSettings::instance().setMaximalImageLength(
            RyImageCutterSettings::defaultMaximalImageLength);
    m_studio.reset();
}

void tst_StudioExport::set(const char *control, int value)
{
    m_studio->window.findChild<QSpinBox *>(QLatin1StringView(control))->setValue(value);
}

/// The settings done to the session's mask, step by step.
CutoutMask tst_StudioExport::expectedMask() const
{
    Document &document = m_studio->document();
    const QImage mask =
            document.opened().scale.enlargedMask(MaskImage::fromSession(document.mask()));
    return EdgeOperations::apply(mask, document.edgeSettings().edges());
}

QImage tst_StudioExport::previewedAlpha() const
{
    EdgePreview preview(m_studio->document());
    QSignalSpy changes(&preview, &EdgePreview::changed);
    Q_EMIT m_studio->document().edgeSettingsChanged();
    return changes.wait(patienceMs) ? alphaOf(preview) : QImage();
}

template <typename Dialog>
Dialog *tst_StudioExport::openDialog() const
{
    return qobject_cast<Dialog *>(QApplication::activeModalWidget());
}

void tst_StudioExport::chooseOptions(const CutoutPicture::Options &options)
{
    QTRY_VERIFY_WITH_TIMEOUT(openDialog<ExportDialog>(), patienceMs);
    auto *const dialog = openDialog<ExportDialog>();
    dialog->findChild<QCheckBox *>(QStringLiteral("exportCrop"))->setChecked(options.crop);
    if (auto *const clean = dialog->findChild<QCheckBox *>(QStringLiteral("exportClean")))
        clean->setChecked(options.cleanPixels > 0);
    if (auto *const background = dialog->findChild<QComboBox *>(QStringLiteral("exportBackground")))
        background->setCurrentIndex(background->findData(options.background));
    dialog->accept();
}

void tst_StudioExport::chooseFile(const QString &fileName)
{
    QTRY_VERIFY_WITH_TIMEOUT(openDialog<QFileDialog>(), patienceMs);
    auto *const dialog = openDialog<QFileDialog>();
    auto *const line = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    QVERIFY(line);
    QVERIFY(line->text().startsWith(QStringLiteral("coffee-")));
    line->setText(fileName);
    QTest::keyClick(line, Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(!openDialog<QFileDialog>(), patienceMs);
}

void tst_StudioExport::previewFollowsTheControls_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("cuttingLength");
    for (const int length : {RyImageCutterSettings::defaultMaximalImageLength, reducedLength}) {
        QTest::addRow("smooth, cut at %d", length) << QByteArray("edgeSmooth") << 6 << length;
        QTest::addRow("feather, cut at %d", length) << QByteArray("edgeFeather") << 5 << length;
        QTest::addRow("grow, cut at %d", length) << QByteArray("edgeGrow") << 4 << length;
        QTest::addRow("shrink, cut at %d", length) << QByteArray("edgeGrow") << -4 << length;
        QTest::addRow("drop, cut at %d", length) << QByteArray("edgeDrop") << 100000000 << length;
        QTest::addRow("fill, cut at %d", length) << QByteArray("edgeFill") << 100000000 << length;
    }
}

void tst_StudioExport::previewFollowsTheControls()
{
    QFETCH(QByteArray, control);
    QFETCH(int, value);
    QFETCH(int, cuttingLength);
    RyImageCutterSettings::instance().setMaximalImageLength(cuttingLength);
    QVERIFY(m_studio->cutCoffee());
    m_studio->action("invert").trigger(); // the cup becomes a hole, to be filled
    QVERIFY(m_studio->settle());
    const CutoutMask before = expectedMask();
    const QImage seenBefore = m_studio->canvas().grab().toImage();
    set(control.constData(), value);
    QVERIFY(m_studio->settle());
    const CutoutMask after = expectedMask();
    QVERIFY(after.alpha != before.alpha);
    QCOMPARE(previewedAlpha(), after.alpha);
    const QImage seen = m_studio->canvas().grab().toImage();
    QVERIFY(seen != seenBefore);
    set(control.constData(), 0);
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->canvas().grab().toImage(), seenBefore);
}

void tst_StudioExport::previewFollowsTheMask()
{
    QVERIFY(m_studio->cutCoffee());
    set("edgeFeather", 8);
    QVERIFY(m_studio->settle());
    EdgePreview preview(m_studio->document());
    m_studio->document().setEdgeSettings({{.feather = 6}}, QStringLiteral("Feather Edge"));
    m_studio->action("scribble").trigger();
    m_studio->drag({{20, 20}, {60, 40}});
    QVERIFY(m_studio->settle());
    QTRY_VERIFY_WITH_TIMEOUT(preview.isUpToDate(), patienceMs);
    QCOMPARE(alphaOf(preview), expectedMask().alpha);
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QTRY_VERIFY_WITH_TIMEOUT(preview.isUpToDate(), patienceMs);
    QCOMPARE(alphaOf(preview), expectedMask().alpha);
}

void tst_StudioExport::cleanEdgeIsSeenOnBackgrounds_data()
{
    QTest::addColumn<QByteArray>("view");
    QTest::addColumn<bool>("isSeen");
    QTest::addRow("over the picture") << QByteArray("viewOverlay") << false;
    QTest::addRow("outline") << QByteArray("viewOutline") << false;
    QTest::addRow("checkerboard") << QByteArray("viewCheckerboard") << true;
    QTest::addRow("background") << QByteArray("viewBackground") << true;
}

void tst_StudioExport::cleanEdgeIsSeenOnBackgrounds()
{
    QFETCH(QByteArray, view);
    QFETCH(bool, isSeen);
    const auto seen = [this] {
        return m_studio->settle() ? m_studio->canvas().grab().toImage() : QImage();
    };
    QVERIFY(m_studio->cutCoffee());
    m_studio->action("viewOverlay").trigger();
    const QImage overlay = seen();
    m_studio->action(view.constData()).trigger();
    const QImage before = seen();
    m_studio->canvas().setHidesMask(true);
    const QImage picture = seen();
    m_studio->canvas().setHidesMask(false);
    set("edgeClean", 6);
    QCOMPARE(seen() != before, isSeen);
    m_studio->canvas().setHidesMask(true);
    QCOMPARE(seen(), picture); // as it was taken
    m_studio->canvas().setHidesMask(false);
    m_studio->action("viewOverlay").trigger();
    QCOMPARE(seen(), overlay);
    m_studio->action(view.constData()).trigger();
    QCOMPARE(seen() != before, isSeen);
    set("edgeClean", 0);
    QCOMPARE(seen(), before);
}

void tst_StudioExport::sliderIsOneStep()
{
    QVERIFY(m_studio->cutCoffee());
    const int steps = m_studio->document().undoStack()->count();
    auto *const slider = m_studio->window.findChild<QSlider *>(QStringLiteral("edgeFeatherSlider"));
    for (const int value : {1, 4, 9})
        slider->setValue(value);
    QCOMPARE(m_studio->document().edgeSettings().feather, 9);
    QCOMPARE(m_studio->document().undoStack()->count(), steps + 1);
    set("edgeGrow", 120); // beyond the slider's end
    QCOMPARE(m_studio->document().edgeSettings().grow, 120);
    QCOMPARE(m_studio->document().undoStack()->count(), steps + 2);
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().edgeSettings(), EdgeSettings({{.feather = 9}}));
    m_studio->action("undo").trigger();
    QVERIFY(m_studio->settle());
    QCOMPARE(m_studio->document().edgeSettings(), EdgeSettings());
    QCOMPARE(slider->value(), 0);
    m_studio->action("redo").trigger();
    QVERIFY(m_studio->settle());
    QCOMPARE(slider->value(), 9);
    slider->setValue(2); // what was done again is a step of its own
    QCOMPARE(m_studio->document().undoStack()->count(), steps + 2);
}

void tst_StudioExport::resetAndNewPicture()
{
    QVERIFY(m_studio->cutCoffee());
    auto *const reset = m_studio->window.findChild<QAbstractButton *>(QStringLiteral("edgeReset"));
    QVERIFY(!reset->isEnabled());
    set("edgeFeather", 8);
    set("edgeClean", 3);
    QVERIFY(reset->isEnabled());
    reset->click();
    QCOMPARE(m_studio->document().edgeSettings(), EdgeSettings());
    set("edgeSmooth", 8);
    m_studio->document().setSaved();
    QVERIFY(m_studio->open(QStringLiteral(":/samples/chelsea.png")));
    QCOMPARE(m_studio->document().edgeSettings(), EdgeSettings());
    QCOMPARE(m_studio->window.findChild<QSpinBox *>(QStringLiteral("edgeSmooth"))->value(), 0);
}

void tst_StudioExport::exports_data()
{
    using Options = CutoutPicture::Options;
    const QColor green = RyImageCutterSettings::instance().backgroundColors().constFirst();
    QTest::addColumn<ExportKind>("kind");
    QTest::addColumn<Options>("options");
    QTest::addColumn<int>("cuttingLength");
    const int length = RyImageCutterSettings::defaultMaximalImageLength;
    QTest::addRow("cut-out") << ExportKind::Cutout << Options() << length;
    QTest::addRow("cut-out, all options")
            << ExportKind::Cutout << Options{3, true, green} << length;
    QTest::addRow("cut-out, clean and cropped, enlarged")
            << ExportKind::Cutout << Options{3, true, {}} << reducedLength;
    for (const bool crop : {false, true}) {
        const char *const cropped = crop ? "cropped" : "whole";
        QTest::addRow("mask, %s", cropped)
                << ExportKind::Mask << Options{0, crop, {}} << reducedLength;
        QTest::addRow("outline, %s", cropped)
                << ExportKind::Outline << Options{0, crop, {}} << length;
    }
}

void tst_StudioExport::exports()
{
    QFETCH(ExportKind, kind);
    QFETCH(CutoutPicture::Options, options);
    QFETCH(int, cuttingLength);
    RyImageCutterSettings::instance().setMaximalImageLength(cuttingLength);
    QVERIFY(m_studio->cutCoffee());
    set("edgeFeather", 4);
    set("edgeGrow", -2);
    set("edgeClean", 3);
    constexpr std::array actions{"exportCutout", "exportMask", "exportOutline"};
    m_studio->action(actions.at(size_t(kind))).trigger();
    chooseOptions(options);
    const QString name = m_folder.filePath(QString::fromLatin1(QTest::currentDataTag()));
    chooseFile(name); // gets the kind's suffix
    const bool isSvg = kind == ExportKind::Outline;
    QFile file(name + (isSvg ? QStringLiteral(".svg") : QStringLiteral(".png")));
    QTRY_VERIFY_WITH_TIMEOUT(file.exists(), patienceMs);
    QVERIFY(file.open(QIODevice::ReadOnly));

    const CutoutMask mask = expectedMask();
    const QRect box = MaskImage::objectBox(mask.alpha);
    if (isSvg) {
        QCOMPARE(file.readAll(), SvgOutline::filled(MaskOutline::path(mask.object),
                                                    options.crop ? box : mask.alpha.rect()));
        return;
    }
    const QImage expected =
            kind == ExportKind::Mask
                    ? CutoutPicture::cropped(mask.alpha, mask, options)
                    : CutoutPicture::compose(m_studio->document().picture(), mask, options);
    const QImage image = QImage::fromData(file.readAll(), "png");
    QCOMPARE(image.size(), options.crop ? box.size() : m_studio->document().picture().size());
    QCOMPARE(image.hasAlphaChannel(), expected.hasAlphaChannel());
    QCOMPARE(image.isGrayscale(), kind == ExportKind::Mask);
    QCOMPARE(image.convertToFormat(expected.format()), expected);
}

void tst_StudioExport::failuresAreExplained_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("drop");
    const QString readOnly = m_folder.filePath(QStringLiteral("read-only"));
    QVERIFY(QDir().mkpath(readOnly));
    QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::ExeOwner);
    // Nothing is read-only to root but what the system keeps so.
    const bool isObeyed = !QFileInfo(readOnly).isWritable();
    QTest::addRow("read-only folder")
            << (isObeyed ? readOnly : QStringLiteral("/proc")) + QStringLiteral("/cup.png") << 0;
    QTest::addRow("no such folder") << m_folder.filePath(QStringLiteral("none/cup.png")) << 0;
    QTest::addRow("a folder") << m_folder.path() << 0;
    QTest::addRow("a device") << QStringLiteral("/dev/null") << 0;
    QTest::addRow("nothing left") << m_folder.filePath(QStringLiteral("nothing.png")) << 100000000;
}

void tst_StudioExport::failuresAreExplained()
{
    QFETCH(QString, fileName);
    QFETCH(int, drop);
    QVERIFY(m_studio->cutCoffee());
    set("edgeDrop", drop);
    Exporter exporter;
    QSignalSpy failures(&exporter, &Exporter::failed);
    QSignalSpy files(&exporter, &Exporter::written);
    exporter.write(fileName, ExportKind::Cutout, m_studio->document().cutoutSource(), {});
    QVERIFY(exporter.isBusy());
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isBusy(), patienceMs);
    QCOMPARE(failures.count(), 1);
    QVERIFY(failures.first().first().toString().contains(QDir::toNativeSeparators(fileName)));
    QCOMPARE(files.count(), 0);
    QVERIFY(!QFileInfo(fileName).isFile());
}

void tst_StudioExport::cancelledExportLeavesNoFile()
{
    QVERIFY(m_studio->cutCoffee());
    const QString fileName = m_folder.filePath(QStringLiteral("cancelled.png"));
    Exporter exporter;
    QSignalSpy failures(&exporter, &Exporter::failed);
    QSignalSpy files(&exporter, &Exporter::written);
    CutoutSource large = m_studio->document().cutoutSource(); // for seconds, or until cancelled
    const int cuttingLength = large.opened.picture.width();
    large.opened.picture = large.opened.picture.scaled(6000, 4000);
    large.opened.scale = CuttingScale(large.opened.picture.size(), cuttingLength);
    large.edges.smooth = EdgeOptions::mostPixels;
    for (int i = 0; i < 4; ++i) // all others wait for the first
        exporter.write(fileName, ExportKind::Mask, large, {});
    exporter.cancel();
    QVERIFY(!exporter.isBusy());
    const QString next = m_folder.filePath(QStringLiteral("next.png"));
    exporter.write(next, ExportKind::Mask, m_studio->document().cutoutSource(), {});
    QTRY_COMPARE_WITH_TIMEOUT(files.count(), 1, patienceMs);
    QCOMPARE(files.first().first().toString(), next);
    QCOMPARE(failures.count(), 0);
    QVERIFY(QFileInfo::exists(next) && !QFileInfo::exists(fileName));
}

void tst_StudioExport::failureIsShown()
{
    QVERIFY(m_studio->cutCoffee());
    set("edgeDrop", 100000000);
    m_studio->action("copyCutout").trigger();
    QTRY_VERIFY_WITH_TIMEOUT(openDialog<QMessageBox>(), patienceMs);
    QVERIFY(openDialog<QMessageBox>()->text().contains(QStringLiteral("nothing is left")));
    openDialog<QMessageBox>()->accept();
}

void tst_StudioExport::clipboard()
{
    QVERIFY(m_studio->cutCoffee());
    set("edgeFeather", 3);
    QGuiApplication::clipboard()->setText(QStringLiteral("something else"));
    m_studio->action("copyCutout").trigger();
    const auto data = [] { return QGuiApplication::clipboard()->mimeData(); };
    QTRY_VERIFY_WITH_TIMEOUT(data()->hasImage(), patienceMs);
    const QImage expected =
            CutoutPicture::compose(m_studio->document().picture(), expectedMask(),
                                   {.cleanPixels = EdgeColors::usualRimPixels, .crop = true});
    QCOMPARE(qvariant_cast<QImage>(data()->imageData()), expected);
    QCOMPARE(QImage::fromData(data()->data(QStringLiteral("image/png")), "png")
                     .convertToFormat(expected.format()),
             expected);
}

void tst_StudioExport::nothingToExport()
{
    constexpr std::array ids{"exportCutout", "exportMask", "exportOutline", "copyCutout"};
    const auto isEnabled = [this](const char *id) { return m_studio->action(id).isEnabled(); };
    QVERIFY(std::none_of(ids.begin(), ids.end(), isEnabled));
    QVERIFY(m_studio->openCoffee());
    QVERIFY(std::none_of(ids.begin(), ids.end(), isEnabled));
    m_studio->drag(StudioDriver::coffeeLasso());
    QVERIFY(m_studio->settle());
    QVERIFY(std::all_of(ids.begin(), ids.end(), isEnabled));
}

/// And its picture is to be looked at.
void tst_StudioExport::everyControlHasAName()
{
    QVERIFY(m_studio->cutCoffee());
    set("edgeSmooth", 4);
    set("edgeFeather", 12);
    set("edgeGrow", -6);
    m_studio->action("viewCheckerboard").trigger();
    QVERIFY(m_studio->settle());
    const auto check = [](QWidget &parent) {
        const QList<QWidget *> widgets = parent.findChildren<QWidget *>();
        for (const QWidget *const widget : widgets) {
            if (widget->focusPolicy() == Qt::NoFocus ||
                widget->objectName().startsWith(QStringLiteral("qt_")))
                continue; // parts of Qt's own widgets
            const auto *const button = qobject_cast<const QAbstractButton *>(widget);
            QVERIFY2(!widget->accessibleName().isEmpty() || (button && !button->text().isEmpty()),
                     qPrintable(widget->objectName()));
            QVERIFY2(!widget->toolTip().isEmpty() || widget->objectName().isEmpty(),
                     qPrintable(widget->objectName()));
        }
    };
    check(*m_studio->window.findChild<EdgePanel *>());
    QVERIFY(StudioDriver::photograph(m_studio->window, QStringLiteral("edges")));
    for (const char *const id : {"exportCutout", "exportMask", "exportOutline"}) {
        m_studio->action(id).trigger();
        QTRY_VERIFY_WITH_TIMEOUT(openDialog<ExportDialog>(), patienceMs);
        auto *const dialog = openDialog<ExportDialog>();
        check(*dialog);
        QVERIFY(StudioDriver::photograph(*dialog, QString::fromLatin1(id)));
        dialog->reject();
        QTRY_VERIFY_WITH_TIMEOUT(!openDialog<ExportDialog>(), patienceMs);
    }
}

RY_TEST_CLASS(tst_StudioExport, QApplication)
#include "tst_StudioExport.moc"
