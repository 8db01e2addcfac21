#pragma once

#include <QMenu>

/// The pictures that were opened last, under numbers.
class RecentFilesMenu : public QMenu
{
    Q_OBJECT

public:
    explicit RecentFilesMenu(QWidget *parent = nullptr);

Q_SIGNALS:
    void chosen(const QString &fileName);

private:
    void fill();
};
