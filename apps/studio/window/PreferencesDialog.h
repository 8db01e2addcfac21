#pragma once

#include <QDialog>
#include <QMap>

class ColorButton;
class QDialogButtonBox;
class QKeySequenceEdit;
class QLabel;
class QLineEdit;
class QSpinBox;
class ShortcutMap;

/// What a person sets once for all pictures. Nothing changes before it is accepted.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    /// The shortcuts are borrowed.
    explicit PreferencesDialog(ShortcutMap &shortcuts, QWidget *parent = nullptr);

    void accept() override;

private:
    QWidget *createCuttingPage();
    QWidget *createViewPage();
    QWidget *createShortcutPage();
    QWidget *createDebugFolder();
    QWidget *createBackgroundColors();
    QSpinBox *createBrushWidth(const QString &id, const QString &name, int width);
    QKeySequenceEdit *createKeyEdit(const QString &id, const QString &name,
                                    const QKeySequence &key);
    void restoreOwnKeys();
    void findConflicts();

    ShortcutMap &m_shortcuts;
    QSpinBox *m_longestSide = nullptr; // the widgets are children
    QLineEdit *m_debugFolder = nullptr;
    ColorButton *m_maskColor = nullptr;
    QList<ColorButton *> m_backgroundColors;
    QSpinBox *m_regionBrush = nullptr;
    QSpinBox *m_pixelBrush = nullptr;
    QMap<QString, QKeySequenceEdit *> m_keys; // by names of actions
    QLabel *m_conflict = nullptr;
    QDialogButtonBox *m_buttons;
};
