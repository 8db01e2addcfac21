#include "window/ExportDialog.h"

#include "cutout/EdgeColors.h"
#include "settings/RyImageCutterSettings.h"
#include "widgets/ColorIcon.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>

namespace {

QString title(ExportKind kind)
{
    switch (kind) {
    case ExportKind::Cutout:
        return ExportDialog::tr("Export Cut-out");
    case ExportKind::Mask:
        return ExportDialog::tr("Export Mask");
    case ExportKind::Outline:
        return ExportDialog::tr("Export Outline");
    }
    return {};
}

QString explanation(ExportKind kind)
{
    switch (kind) {
    case ExportKind::Cutout:
        return ExportDialog::tr("The object at the picture's full size, as a PNG file.");
    case ExportKind::Mask:
        return ExportDialog::tr("White where the object is, as a grey PNG file.");
    case ExportKind::Outline:
        return ExportDialog::tr("The object's outline with its holes, as an SVG file.");
    }
    return {};
}

} // namespace

ExportDialog::ExportDialog(ExportKind kind, const CutoutPicture::Options &options, QWidget *parent)
    : QDialog(parent)
    , m_kind(kind)
    , m_rimPixels(options.cleanPixels > 0 ? options.cleanPixels : EdgeColors::usualRimPixels)
    , m_crop(new QCheckBox(tr("C&rop to the object")))
{
    setWindowTitle(title(kind));
    auto *const layout = new QFormLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addRow(new QLabel(explanation(kind)));
    m_crop->setObjectName(QStringLiteral("exportCrop"));
    m_crop->setAccessibleName(tr("Crop to the object"));
    m_crop->setToolTip(tr("The file is as large as the object instead of the whole picture"));
    m_crop->setChecked(options.crop);
    layout->addRow(m_crop);
    if (kind == ExportKind::Cutout)
        addCutoutOptions(*layout, options);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    QPushButton *const choose =
            buttons->addButton(tr("Choose &File…"), QDialogButtonBox::AcceptRole);
    choose->setObjectName(QStringLiteral("exportChooseFile"));
    choose->setToolTip(tr("Asks for the file's name, and exports"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addRow(buttons);
    choose->setDefault(
            true); // once it is in the dialog, or the key that accepts would press Cancel
    choose->setFocus();
}

void ExportDialog::addCutoutOptions(QFormLayout &layout, const CutoutPicture::Options &options)
{
    m_clean = new QCheckBox(tr("C&lean edge colours (%1 px)").arg(m_rimPixels), this);
    m_clean->setObjectName(QStringLiteral("exportClean"));
    m_clean->setAccessibleName(tr("Clean edge colours"));
    m_clean->setToolTip(tr("Takes the colours of the object's rim from further inside, so that "
                           "nothing of the old background shows"));
    m_clean->setChecked(options.cleanPixels > 0);
    layout.addRow(m_clean);
    m_background = new QComboBox(this);
    m_background->setObjectName(QStringLiteral("exportBackground"));
    m_background->setAccessibleName(tr("Background"));
    m_background->setToolTip(tr("What lies behind the object"));
    m_background->addItem(tr("Transparent"), QColor());
    const QList<QColor> colors = RyImageCutterSettings::instance().backgroundColors();
    for (const QColor &color : colors) {
        if (color.isValid())
            addBackground(m_background->count(), color);
    }
    m_background->addItem(tr("Another colour…"));
    selectBackground(options.background);
    connect(m_background, &QComboBox::activated, this, [this](int index) {
        if (index == m_background->count() - 1)
            chooseBackground();
        else
            m_lastBackground = this->options().background;
    });
    layout.addRow(tr("&Background:"), m_background);
}

void ExportDialog::addBackground(int index, const QColor &color)
{
    m_background->insertItem(index, ColorIcon::make(color), ColorIcon::name(color), color);
}

void ExportDialog::selectBackground(const QColor &color)
{
    m_lastBackground = color;
    const int last = m_background->count() - 1; // the entry that asks for a colour
    if (m_background->findData(color) < 0)
        addBackground(last, color);
    m_background->setCurrentIndex(m_background->findData(color));
}

void ExportDialog::chooseBackground()
{
    auto *const dialog = new QColorDialog(
            m_lastBackground.isValid() ? m_lastBackground : QColor(Qt::white), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QColorDialog::DontUseNativeDialog);
    connect(dialog, &QColorDialog::colorSelected, this, &ExportDialog::selectBackground);
    connect(dialog, &QDialog::rejected, this, [this] { selectBackground(m_lastBackground); });
    dialog->open();
}

CutoutPicture::Options ExportDialog::options() const
{
    CutoutPicture::Options options;
    options.crop = m_crop->isChecked();
    if (m_kind == ExportKind::Cutout) {
        options.cleanPixels = m_clean->isChecked() ? m_rimPixels : 0;
        options.background = m_background->currentData().value<QColor>();
    }
    return options;
}
