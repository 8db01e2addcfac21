#pragma once

#include <QStatusBar>

class QLabel;
class ProgressBar;
class QToolButton;

/// What the current tool does, how far a computation is, the picture's size and the scale.
class StatusBar : public QStatusBar
{
    Q_OBJECT

public:
    explicit StatusBar(QWidget *parent = nullptr);

    void setHint(const QString &hint);
    void remark(const QString &sentence); ///< for a few seconds
    void setPictureSize(const QSize &size, const QSize &cuttingSize);
    void setZoom(double scale);

    /// Of a computation whose steps are not known yet; of none when that is empty.
    void showProgressOf(const QString &what);
    void setProgress(int currentStep, int totalSteps);

Q_SIGNALS:
    void cancelRequested();

private:
    QLabel *const m_hint;
    QLabel *const m_size;
    QLabel *const m_zoom;
    ProgressBar *const m_progress;
    QToolButton *const m_cancel;
};
