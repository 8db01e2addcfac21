#pragma once

#include "cutout/CutoutPicture.h"
#include "files/ExportKind.h"

#include <QColor>
#include <QDialog>

class QCheckBox;
class QComboBox;
class QFormLayout;

/// Asks how something is to be exported.
class ExportDialog : public QDialog
{
    Q_OBJECT

public:
    /// Starts with the options; a rim of 0 offers the usual one.
    ExportDialog(ExportKind kind, const CutoutPicture::Options &options, QWidget *parent = nullptr);

    CutoutPicture::Options options() const;

private:
    void addCutoutOptions(QFormLayout &layout, const CutoutPicture::Options &options);
    void addBackground(int index, const QColor &color);
    void selectBackground(const QColor &color);
    void chooseBackground();

    const ExportKind m_kind;
    const int m_rimPixels;
    QCheckBox *const m_crop; // the widgets are children
    QCheckBox *m_clean = nullptr;
    QComboBox *m_background = nullptr;
    QColor m_lastBackground; // what is back when no other one is chosen
};
