#include "tools/RoundBrush.h"

#include "settings/StudioSettings.h"
#include "tools/OverlayLine.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QSlider>
#include <QSpinBox>

#include <algorithm>
#include <cmath>

namespace {

constexpr double growthPerStep = 1.15;
constexpr int sliderEnd = 100;
constexpr int sliderWidth = 110;

// The slider goes by ratios: as far from 5 to 10 as from 50 to 100.
int sliderPosition(int width)
{
    return int(std::lround(sliderEnd * std::log(double(width)) / std::log(RoundBrush::widest)));
}

int widthAt(int sliderPosition)
{
    return int(std::lround(std::pow(RoundBrush::widest, double(sliderPosition) / sliderEnd)));
}

} // namespace

RoundBrush::RoundBrush(RyConfigItem<int> &item, QObject *parent)
    : QObject(parent)
    , m_item(item)
{
    connect(&StudioSettings::instance(), &StudioSettings::brushWidthsChanged, this,
            [this] { Q_EMIT widthChanged(width()); });
}

RoundBrush::~RoundBrush()
{
    if (m_isChanged) // once, and not while the slider moves
        StudioSettings::instance().saveSettings();
}

int RoundBrush::width() const
{
    return std::clamp(m_item.value(), narrowest, widest);
}

void RoundBrush::setWidth(int wanted)
{
    const int clamped = std::clamp(wanted, narrowest, widest);
    if (clamped == width())
        return;
    m_item.setValue(clamped);
    m_isChanged = true;
    Q_EMIT widthChanged(clamped);
}

void RoundBrush::grow(double steps)
{
    const int grown = int(std::lround(width() * std::pow(growthPerStep, steps)));
    const int least = steps > 0 ? width() + 1
                                : width() - 1; // rounding would leave narrow brushes as they are
    setWidth(steps > 0 ? std::max(grown, least) : std::min(grown, least));
}

QWidget *RoundBrush::createControls(QWidget *parent)
{
    auto *const controls = new QWidget(parent); // the parent's, as all in it
    auto *const layout = new QHBoxLayout(controls);
    layout->setContentsMargins(6, 0, 6, 0);
    controls->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    auto *const number = new QSpinBox;
    number->setRange(narrowest, widest);
    number->setSuffix(tr(" px"));
    number->setAccessibleName(tr("Brush size"));
    auto *const slider = new QSlider(Qt::Horizontal);
    slider->setRange(0, sliderEnd);
    slider->setFixedWidth(sliderWidth);
    slider->setAccessibleName(tr("Brush size"));
    auto *const label = new QLabel(tr("Si&ze"));
    label->setBuddy(number);
    for (QWidget *const part : {static_cast<QWidget *>(label), static_cast<QWidget *>(slider),
                                static_cast<QWidget *>(number)})
        layout->addWidget(part);
    const auto show = [number, slider](int width) {
        const QSignalBlocker quietNumber(number), quietSlider(slider);
        number->setValue(width);
        if (widthAt(slider->value()) != width)
            slider->setValue(sliderPosition(width));
    };
    show(width());
    connect(this, &RoundBrush::widthChanged, controls, show);
    connect(number, &QSpinBox::valueChanged, this, &RoundBrush::setWidth);
    connect(slider, &QSlider::valueChanged, this,
            [this](int position) { setWidth(widthAt(position)); });
    return controls;
}

void RoundBrush::paint(QPainter &painter, const ViewTransform &view,
                       const PicturePoint &centre) const
{
    constexpr double smallestShown = 1.5;
    const double radius = std::max(smallestShown, width() * view.widgetScale() / 2.0);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(OverlayLine::rimColor, 2.6));
    painter.drawEllipse(view.toWidget(centre), radius, radius);
    painter.setPen(QPen(Qt::white, 1.2));
    painter.drawEllipse(view.toWidget(centre), radius, radius);
}
