#pragma once

#include "background/BackgroundLane.h"

#include <QWidget>

class QToolButton;

/// What is shown while there is no picture: how to get one, and a few to try.
class StartPage : public QWidget
{
    Q_OBJECT

public:
    explicit StartPage(QWidget *parent = nullptr);
    ~StartPage() override;

Q_SIGNALS:
    void openRequested();
    void sampleChosen(const QString &fileName);

private:
    QWidget *createSamples();
    QToolButton *createSample(const QString &name, const QString &title);
    void loadThumbnail(QToolButton *button, const QString &fileName);

    BackgroundLane m_thumbnails;
};
