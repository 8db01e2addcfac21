#include "window/StatusBar.h"

#include "widgets/ElidedLabel.h"
#include "widgets/ProgressBar.h"
#include "widgets/VectorIcon.h"

#include <QLabel>
#include <QToolButton>

#include <cmath>

StatusBar::StatusBar(QWidget *parent)
    : QStatusBar(parent)
    , m_hint(new ElidedLabel)
    , m_size(new QLabel)
    , m_zoom(new QLabel)
    , m_progress(new ProgressBar)
    , m_cancel(new QToolButton)
{
    m_hint->setAccessibleName(tr("Hint"));
    m_hint->setIndent(6);
    m_size->setAccessibleName(tr("Size of the picture"));
    m_zoom->setAccessibleName(tr("Zoom"));
    m_zoom->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("3200 % ")));
    m_zoom->setAlignment(Qt::AlignCenter);
    m_progress->setAccessibleName(tr("Progress"));
    m_progress->setFixedWidth(180);
    m_cancel->setIcon(VectorIcon::make(VectorIcon::Shape::Cancel));
    m_cancel->setToolTip(tr("Cancel (Esc)"));
    m_cancel->setAccessibleName(tr("Cancel"));
    m_cancel->setAutoRaise(true);
    connect(m_cancel, &QToolButton::clicked, this, &StatusBar::cancelRequested);
    addWidget(m_hint, 1);
    addPermanentWidget(m_progress);
    addPermanentWidget(m_cancel);
    addPermanentWidget(m_size);
    addPermanentWidget(m_zoom);
    showProgressOf({});
}

void StatusBar::setHint(const QString &hint)
{
    m_hint->setText(hint);
    m_hint->setToolTip(hint);
}

void StatusBar::remark(const QString &sentence)
{
    constexpr int remarkMs = 5000;
    showMessage(sentence, remarkMs);
}

void StatusBar::setPictureSize(const QSize &size, const QSize &cuttingSize)
{
    if (size.isEmpty()) {
        m_size->clear();
        return;
    }
    const auto text = [](const QSize &s) { return tr("%1 × %2").arg(s.width()).arg(s.height()); };
    m_size->setText(text(size));
    m_size->setToolTip(size == cuttingSize ? tr("Cut at full size")
                                           : tr("Cut at %1").arg(text(cuttingSize)));
}

void StatusBar::setZoom(double scale)
{
    constexpr double percent = 100.0;
    m_zoom->setText(scale > 0.0 ? tr("%1 %").arg(std::lround(scale * percent)) : QString());
}

void StatusBar::showProgressOf(const QString &what)
{
    m_cancel->setVisible(!what.isEmpty());
    m_progress->setVisible(!what.isEmpty());
    if (m_progress->format() == what)
        return;
    m_progress->setRange(0, 1); // bars without an end show no text
    m_progress->showValue(0);
    m_progress->setFormat(what);
}

void StatusBar::setProgress(int currentStep, int totalSteps)
{
    m_progress->setRange(0, totalSteps);
    m_progress->showValue(currentStep);
}
