#pragma once

#include <QObject>

/// One line on a terminal that shows how far a session is, and vanishes with the object.
class ProgressBar : public QObject
{
    Q_OBJECT

public:
    explicit ProgressBar(bool isVisible);
    ~ProgressBar() override;
    Q_DISABLE_COPY_MOVE(ProgressBar)

public Q_SLOTS:
    void show(int currentStep, int totalSteps);

private:
    const bool m_isVisible;
    int m_shownPercent = -1;
};
