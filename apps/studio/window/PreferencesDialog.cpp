#include "window/PreferencesDialog.h"

#include "settings/RyImageCutterSettings.h"
#include "settings/StudioSettings.h"
#include "tools/RoundBrush.h"
#include "widgets/ColorButton.h"
#include "window/ShortcutMap.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include <array>

namespace {

constexpr int mostPixels = 100000; // of a picture's side
/// Actions with these keys would take them from the canvas and its tools.
constexpr std::array keysOfTools{Qt::Key_Space,       Qt::Key_Return, Qt::Key_Enter,
                                 Qt::Key_Backspace,   Qt::Key_Delete, Qt::Key_BracketLeft,
                                 Qt::Key_BracketRight};

QLabel *note(const QString &text)
{
    auto *const label = new QLabel(text); // a layout takes it
    label->setWordWrap(true);
    return label;
}

/// One press is enough: of several ones the last counts.
QKeySequence chosenKey(const QKeySequenceEdit &edit)
{
    const QKeySequence keys = edit.keySequence();
    return keys.count() > 1 ? QKeySequence(keys[uint(keys.count() - 1)]) : keys;
}

} // namespace

PreferencesDialog::PreferencesDialog(ShortcutMap &shortcuts, QWidget *parent)
    : QDialog(parent)
    , m_shortcuts(shortcuts)
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel))
{
    setObjectName(QStringLiteral("preferences"));
    setWindowTitle(tr("Preferences"));
    auto *const pages = new QTabWidget;
    pages->setAccessibleName(tr("Preferences"));
    pages->addTab(createCuttingPage(), tr("&Cutting"));
    pages->addTab(createViewPage(), tr("&View and Brushes"));
    pages->addTab(createShortcutPage(), tr("&Shortcuts"));
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(pages);
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &PreferencesDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &PreferencesDialog::reject);
    findConflicts();
    resize(520, 460);
}

QWidget *PreferencesDialog::createCuttingPage()
{
    m_longestSide = new QSpinBox;
    m_longestSide->setObjectName(QStringLiteral("longestSide"));
    m_longestSide->setAccessibleName(tr("Longest side for cutting"));
    m_longestSide->setRange(1, mostPixels);
    m_longestSide->setSuffix(tr(" px"));
    m_longestSide->setValue(StudioSettings::longestSideForCutting());
    auto *const page = new QWidget;
    auto *const form = new QFormLayout(page);
    form->addRow(tr("&Longest side for cutting:"), m_longestSide);
    form->addRow(note(tr("Larger pictures are reduced to it while they are cut, which is faster. "
                         "It counts from the next picture on.")));
    form->addRow(tr("&Debug folder:"), createDebugFolder());
    form->addRow(note(tr("Where diagnostic output goes.")));
    return page;
}

QWidget *PreferencesDialog::createDebugFolder()
{
    m_debugFolder = new QLineEdit(RyImageCutterSettings::instance().debugFolder());
    m_debugFolder->setObjectName(QStringLiteral("debugFolder"));
    m_debugFolder->setAccessibleName(tr("Debug folder"));
    auto *const browse = new QPushButton(tr("&Browse…"));
    browse->setAccessibleName(tr("Choose the debug folder"));
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString folder =
                QFileDialog::getExistingDirectory(this, tr("Debug Folder"), m_debugFolder->text());
        if (!folder.isEmpty())
            m_debugFolder->setText(folder);
    });
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(m_debugFolder);
    layout->addWidget(browse);
    row->setFocusProxy(m_debugFolder);
    return row;
}

QWidget *PreferencesDialog::createViewPage()
{
    StudioSettings &settings = StudioSettings::instance();
    m_maskColor = new ColorButton(tr("Colour over the background"), settings.maskColor(), true);
    m_maskColor->setObjectName(QStringLiteral("maskColor"));
    m_regionBrush = createBrushWidth(QStringLiteral("regionBrush"), tr("Size of the brush"),
                                     settings.regionBrushWidth().value());
    m_pixelBrush = createBrushWidth(QStringLiteral("pixelBrush"), tr("Size of the scribble"),
                                    settings.pixelBrushWidth().value());
    auto *const page = new QWidget;
    auto *const form = new QFormLayout(page);
    form->addRow(tr("Colour over the &background:"), m_maskColor);
    form->addRow(tr("Background colours to choose from:"), createBackgroundColors());
    form->addRow(tr("Size of the b&rush:"), m_regionBrush);
    form->addRow(tr("Size of the &scribble:"), m_pixelBrush);
    return page;
}

QWidget *PreferencesDialog::createBackgroundColors()
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    const QList<QColor> colors = RyImageCutterSettings::instance().backgroundColors();
    for (const QColor &color : colors) {
        const int number = int(m_backgroundColors.size()) + 1;
        auto *const button = new ColorButton(tr("Background colour %1").arg(number), color, true);
        button->setObjectName(QStringLiteral("backgroundColor%1").arg(number));
        layout->addWidget(button);
        m_backgroundColors.append(button);
    }
    layout->addStretch();
    return row;
}

QSpinBox *PreferencesDialog::createBrushWidth(const QString &id, const QString &name, int width)
{
    auto *const number = new QSpinBox;
    number->setObjectName(id);
    number->setAccessibleName(name);
    number->setRange(RoundBrush::narrowest, RoundBrush::widest);
    number->setSuffix(tr(" px"));
    number->setValue(width);
    return number;
}

QWidget *PreferencesDialog::createShortcutPage()
{
    auto *const list = new QWidget;
    auto *const form = new QFormLayout(list);
    for (const QAction *const action : m_shortcuts.actions()) {
        QKeySequenceEdit *const edit =
                createKeyEdit(action->objectName(), action->iconText(), action->shortcut());
        form->addRow(action->iconText() + u':', edit);
    }
    auto *const area = new QScrollArea;
    area->setAccessibleName(tr("Shortcuts"));
    area->setWidget(list);
    area->setWidgetResizable(true);
    m_conflict = new QLabel;
    m_conflict->setObjectName(QStringLiteral("conflict"));
    m_conflict->setWordWrap(true);
    auto *const restore = new QPushButton(tr("&Restore Defaults"));
    connect(restore, &QPushButton::clicked, this, &PreferencesDialog::restoreOwnKeys);
    auto *const page = new QWidget;
    auto *const layout = new QVBoxLayout(page);
    layout->addWidget(area);
    layout->addWidget(m_conflict);
    layout->addWidget(restore, 0, Qt::AlignLeft);
    return page;
}

QKeySequenceEdit *PreferencesDialog::createKeyEdit(const QString &id, const QString &name,
                                                   const QKeySequence &key)
{
    auto *const edit = new QKeySequenceEdit(key);
    edit->setObjectName(QStringLiteral("key_") + id);
    edit->setAccessibleName(tr("Shortcut of %1").arg(name));
    edit->setClearButtonEnabled(true);
    for (QLineEdit *const line : edit->findChildren<QLineEdit *>())
        line->setAccessibleName(edit->accessibleName());
    connect(edit, &QKeySequenceEdit::keySequenceChanged, this, [this, edit] {
        edit->setKeySequence(chosenKey(*edit));
        findConflicts();
    });
    m_keys.insert(id, edit);
    return edit;
}

void PreferencesDialog::restoreOwnKeys()
{
    for (const QAction *const action : m_shortcuts.actions())
        m_keys.value(action->objectName())->setKeySequence(m_shortcuts.ownKey(action));
}

void PreferencesDialog::findConflicts()
{
    QMap<QKeySequence, QString> users; // names of actions by keys
    for (const Qt::Key key : keysOfTools)
        users.insert(key, tr("Tools"));
    QString conflict;
    for (const QAction *const action : m_shortcuts.actions()) {
        const QKeySequence chosen = chosenKey(*m_keys.value(action->objectName()));
        for (const QKeySequence &key : m_shortcuts.keysWith(action, chosen)) {
            if (!key.isEmpty() && users.contains(key))
                conflict = tr("%1 is used for both “%2” and “%3”.")
                                   .arg(key.toString(QKeySequence::NativeText), users.value(key),
                                        action->iconText());
            users.insert(key, action->iconText());
        }
    }
    m_conflict->setText(conflict);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(conflict.isEmpty());
}

void PreferencesDialog::accept()
{
    findConflicts(); // an edit tells of a key a second after it was pressed
    if (!m_conflict->text().isEmpty())
        return;
    RyImageCutterSettings &library = RyImageCutterSettings::instance();
    library.setMaximalImageLength(m_longestSide->value());
    library.setDebugFolder(m_debugFolder->text());
    const QList<QColor> colors = library.backgroundColors();
    for (qsizetype i = 0; i < m_backgroundColors.size(); ++i)
        if (m_backgroundColors.at(i)->color() != colors.at(i))
            library.setBackgroundColors(int(i), m_backgroundColors.at(i)->color());
    StudioSettings &settings = StudioSettings::instance();
    settings.setMaskColor(m_maskColor->color());
    settings.setBrushWidths(m_regionBrush->value(), m_pixelBrush->value());
    QMap<QString, QKeySequence> keys;
    for (auto it = m_keys.begin(); it != m_keys.end(); ++it)
        keys.insert(it.key(), chosenKey(*it.value()));
    m_shortcuts.setKeys(keys);
    QDialog::accept();
}
