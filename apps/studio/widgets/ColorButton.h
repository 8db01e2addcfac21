#pragma once

#include <QColor>
#include <QPushButton>

/// Shows a colour, and asks for another one.
class ColorButton : public QPushButton
{
    Q_OBJECT

public:
    /// The name is for people who do not see the colour.
    ColorButton(const QString &name, const QColor &color, bool mayBeTranslucent,
                QWidget *parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor &color);

private:
    void choose();

    const QString m_name;
    const bool m_mayBeTranslucent;
    QColor m_color;
};
