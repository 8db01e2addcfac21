#pragma once

#include <QLabel>

/// A line of text that ends in dots where there is no room for all of it, which its tool tip
/// tells.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override; ///< no text keeps a window wide

protected:
    void paintEvent(QPaintEvent *event) override;
};
