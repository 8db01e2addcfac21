#pragma once

#include <QDialog>

class QMenuBar;
class Tool;

/// All actions with their keys, as they are at that moment, and what the tools do.
class HelpSheet : public QDialog
{
    Q_OBJECT

public:
    HelpSheet(const QMenuBar &menus, const QList<Tool *> &tools, QWidget *parent = nullptr);
};
