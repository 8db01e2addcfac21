#include "ProgressBar.h"

#include <QByteArray>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int barWidth = 30;
constexpr int wholePercent = 100;
constexpr char eraseLine[] = "\r\033[K";

void write(const QByteArray &text)
{
    std::fwrite(text.constData(), 1, std::size_t(text.size()), stderr);
    std::fflush(stderr);
}

} // namespace

ProgressBar::ProgressBar(bool isVisible)
    : m_isVisible(isVisible)
{}

ProgressBar::~ProgressBar()
{
    if (m_shownPercent >= 0)
        write(eraseLine);
}

void ProgressBar::show(int currentStep, int totalSteps)
{
    if (!m_isVisible || totalSteps <= 0)
        return;
    const int percent = std::clamp(wholePercent * currentStep / totalSteps, 0, wholePercent);
    if (percent == m_shownPercent)
        return;
    m_shownPercent = percent;
    const int filled = barWidth * percent / wholePercent;
    QByteArray bar = QByteArray(filled, '=').leftJustified(barWidth, '.');
    if (qEnvironmentVariableIsEmpty("NO_COLOR"))
        bar = "\033[32m" + bar + "\033[0m";
    write(eraseLine + ("cutting [" + bar + "] ") + QByteArray::number(percent) + " %");
}
