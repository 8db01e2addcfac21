#include "window/StartPage.h"

#include "widgets/VectorIcon.h"

#include <QGridLayout>
#include <QImageReader>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace {

constexpr QSize thumbnailSize(168, 126);

QString sampleFile(const QString &name)
{
    return QStringLiteral(":/samples/%1").arg(name);
}

/// The middle of the picture, filling the whole size.
QImage thumbnail(const QString &fileName, double devicePixelRatio)
{
    const QSize wanted = thumbnailSize * devicePixelRatio;
    QImageReader reader(fileName);
    const QImage whole = reader.read();
    if (whole.isNull())
        return {};
    const QImage scaled =
            whole.scaled(wanted, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    QRect middle(QPoint(), wanted);
    middle.moveCenter(scaled.rect().center());
    QImage result = scaled.copy(middle);
    result.setDevicePixelRatio(devicePixelRatio);
    return result;
}

QLabel *centredLabel(const QString &text)
{
    auto *const label = new QLabel(text); // its layout's widget takes it
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

StartPage::StartPage(QWidget *parent)
    : QWidget(parent)
    , m_thumbnails(BackgroundLane::Keeps::All)
{
    setAccessibleName(tr("Start"));
    auto *const title = centredLabel(tr("Cut something out of a photograph"));
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 1.8);
    title->setFont(font);
    auto *const open =
            new QPushButton(VectorIcon::make(VectorIcon::Shape::Open), tr("&Open a Picture…"));
    open->setAccessibleName(tr("Open a picture"));
    open->setMinimumHeight(38);
    open->setMinimumWidth(200);
    open->setDefault(true);
    connect(open, &QPushButton::clicked, this, &StartPage::openRequested);

    auto *const layout = new QVBoxLayout(this);
    layout->addStretch(2);
    layout->addWidget(title);
    layout->addSpacing(4);
    layout->addWidget(centredLabel(tr("You can also drop a picture here, or paste one.")));
    layout->addSpacing(16);
    layout->addWidget(open, 0, Qt::AlignCenter);
    layout->addSpacing(32);
    layout->addWidget(centredLabel(tr("Or try one of these:")));
    layout->addSpacing(6);
    layout->addWidget(createSamples(), 0, Qt::AlignCenter);
    layout->addStretch(3);
}

StartPage::~StartPage()
{
    m_thumbnails.cancel(); // nobody would see them
}

QWidget *StartPage::createSamples()
{
    const std::array<std::pair<QString, QString>, 4> samples{{
            {QStringLiteral("coffee.png"), tr("Coffee")},
            {QStringLiteral("chelsea.png"), tr("Cat")},
            {QStringLiteral("astronaut.png"), tr("Astronaut")},
            {QStringLiteral("rocket.jpg"), tr("Rocket")},
    }};
    auto *const widget = new QWidget;
    auto *const layout = new QHBoxLayout(widget);
    layout->setSpacing(12);
    for (const auto &[name, title] : samples)
        layout->addWidget(createSample(name, title));
    return widget;
}

QToolButton *StartPage::createSample(const QString &name, const QString &title)
{
    auto *const button = new QToolButton; // the layout's widget takes it
    button->setText(title);
    button->setAccessibleName(tr("Open the sample picture “%1”").arg(title));
    button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    button->setIconSize(thumbnailSize);
    button->setAutoRaise(true);
    const QString fileName = sampleFile(name);
    connect(button, &QToolButton::clicked, this,
            [this, fileName] { Q_EMIT sampleChosen(fileName); });
    loadThumbnail(button, fileName);
    return button;
}

void StartPage::loadThumbnail(QToolButton *button, const QString &fileName)
{
    const auto load = [fileName, ratio = devicePixelRatioF()](const std::stop_token &) {
        return thumbnail(fileName, ratio);
    };
    m_thumbnails.run(load, [button](const QImage &image) {
        if (!image.isNull())
            button->setIcon(QIcon(QPixmap::fromImage(image)));
    });
}
