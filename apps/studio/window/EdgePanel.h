#pragma once

#include "cutout/EdgeSettings.h"

#include <QList>
#include <QWidget>

class Document;
class QGridLayout;
class QPushButton;
class QSlider;
class QSpinBox;

/**
 * Controls for a document's edge settings.
 *
 * Threads  the GUI thread.
 */
class EdgePanel : public QWidget
{
    Q_OBJECT

public:
    /// The document is borrowed.
    explicit EdgePanel(Document &document, QWidget *parent = nullptr);

private:
    struct Description
    {
        const char *id;
        QString label; ///< with its mnemonic
        QString step;  ///< of the history
        QString toolTip;
        QString unit;
        int EdgeSettings::*number;
        int sliderEnd; ///< what sliders are long enough for; 0 for no slider
    };
    struct Control
    {
        int EdgeSettings::*number;
        QSpinBox *box; // the widgets are children
        QSlider *slider;
    };

    static QList<Description> descriptions();
    void add(QGridLayout &layout, const Description &description);
    QSpinBox *createBox(const Description &description);
    QSlider *createSlider(const Description &description, QSpinBox *box);
    void reset();
    void showSettings();

    Document &m_document;
    QList<Control> m_controls;
    QPushButton *const m_reset;
};
