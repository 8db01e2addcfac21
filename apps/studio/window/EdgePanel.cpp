#include "window/EdgePanel.h"

#include "cutout/EdgeTable.h"
#include "document/Document.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>

#include <algorithm>
#include <utility>

EdgePanel::EdgePanel(Document &document, QWidget *parent)
    : QWidget(parent)
    , m_document(document)
    , m_reset(new QPushButton(tr("&Reset Edge"), this))
{
    auto *const layout = new QGridLayout(this);
    layout->setColumnStretch(0, 1);
    const QList<Description> all = descriptions();
    for (const Description &description : all)
        add(*layout, description);
    m_reset->setObjectName(QStringLiteral("edgeReset"));
    m_reset->setAccessibleName(tr("Reset edge"));
    m_reset->setToolTip(tr("Leaves the edge as the tools have made it"));
    connect(m_reset, &QPushButton::clicked, this, &EdgePanel::reset);
    layout->addWidget(m_reset, layout->rowCount(), 0, 1, 2);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed); // more room would stay empty
    setMaximumHeight(sizeHint().height());
    connect(&document, &Document::edgeSettingsChanged, this, &EdgePanel::showSettings);
    showSettings();
}

QList<EdgePanel::Description> EdgePanel::descriptions()
{
    constexpr int sliderEnd = 30; // few edges need more, and a pixel each can be aimed at
    const QString pixels = tr(" px");
    return {{"edgeSmooth", tr("S&mooth"), tr("Smooth Edge"),
             tr("Rounds corners about as large as this radius"), pixels, &EdgeSettings::smooth,
             sliderEnd},
            {"edgeFeather", tr("Fe&ather"), tr("Feather Edge"),
             tr("Softens the edge so far to either side"), pixels, &EdgeSettings::feather,
             sliderEnd},
            {"edgeGrow", tr("Gro&w or shrink"), tr("Grow or Shrink"),
             tr("Moves the edge outwards; below 0: inwards"), pixels, &EdgeSettings::grow,
             sliderEnd},
            {"edgeDrop", tr("Drop spec&ks"), tr("Drop Specks"),
             tr("Pieces of the object with fewer pixels vanish"), tr(" px²"), &EdgeSettings::drop,
             0},
            {"edgeFill", tr("Fill h&oles"), tr("Fill Holes"),
             tr("Holes in the object with fewer pixels are closed"), tr(" px²"),
             &EdgeSettings::fill, 0},
            {"edgeClean", tr("C&lean colours"), tr("Clean Edge Colours"),
             tr("How wide a rim of the object gets its colours from further inside on a new "
                "background, when it is exported or copied, so that nothing of the old one shows"),
             pixels, &EdgeSettings::clean, 0}};
}

void EdgePanel::add(QGridLayout &layout, const Description &description)
{
    QSpinBox *const box = createBox(description);
    auto *const label = new QLabel(description.label, this);
    label->setBuddy(box);
    label->setToolTip(description.toolTip);
    const int row = layout.rowCount();
    layout.addWidget(label, row, 0);
    layout.addWidget(box, row, 1);
    QSlider *const slider = description.sliderEnd > 0 ? createSlider(description, box) : nullptr;
    if (slider)
        layout.addWidget(slider, row + 1, 0, 1, 2);
    m_controls.append({description.number, box, slider});
}

QSpinBox *EdgePanel::createBox(const Description &description)
{
    auto *const box = new QSpinBox(this);
    box->setObjectName(QString::fromLatin1(description.id));
    const EdgeTable::Row &row = EdgeTable::row(description.number);
    box->setRange(row.least, row.most);
    box->setSuffix(description.unit);
    box->setAccessibleName(description.step);
    box->setAccessibleDescription(description.toolTip);
    box->setToolTip(description.toolTip);
    box->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType); // areas go from specks to gaps
    connect(box, &QSpinBox::valueChanged, this,
            [this, number = description.number, step = description.step](int value) {
                EdgeSettings settings = m_document.edgeSettings();
                settings.*number = value;
                m_document.setEdgeSettings(settings, step);
            });
    return box;
}

QSlider *EdgePanel::createSlider(const Description &description, QSpinBox *box)
{
    auto *const slider = new QSlider(Qt::Horizontal, this);
    slider->setObjectName(box->objectName() + QStringLiteral("Slider"));
    slider->setRange(std::max(box->minimum(), -description.sliderEnd), description.sliderEnd);
    slider->setAccessibleName(description.step);
    slider->setToolTip(description.toolTip);
    connect(slider, &QSlider::valueChanged, box, &QSpinBox::setValue);
    return slider;
}

void EdgePanel::reset()
{
    m_document.setEdgeSettings({}, tr("Reset Edge"));
}

/// Larger numbers than a slider has stay what they are.
void EdgePanel::showSettings()
{
    const EdgeSettings &settings = m_document.edgeSettings();
    for (const Control &control : std::as_const(m_controls)) {
        const QSignalBlocker boxBlocker(control.box);
        control.box->setValue(settings.*control.number);
        if (!control.slider)
            continue;
        const QSignalBlocker sliderBlocker(control.slider);
        control.slider->setValue(settings.*control.number);
    }
    m_reset->setEnabled(settings != EdgeSettings());
}
