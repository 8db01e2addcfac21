#pragma once

#include "RyConfigItem.h"
#include "tools/ViewTransform.h"

#include <QObject>

class QPainter;
class QWidget;

/// A brush's diameter in pixels of the picture, which is kept in the settings.
class RoundBrush : public QObject
{
    Q_OBJECT

public:
    static constexpr int narrowest = 1;
    static constexpr int widest = 1000;

    /// The item is the settings' own.
    explicit RoundBrush(RyConfigItem<int> &item, QObject *parent = nullptr);
    ~RoundBrush() override;

    int width() const;
    void setWidth(int width);
    /// Wider by about a seventh for each step; narrower for negative ones.
    void grow(double steps);

    /// A slider and a number.
    QWidget *createControls(QWidget *parent);
    void paint(QPainter &painter, const ViewTransform &view, const PicturePoint &centre) const;

Q_SIGNALS:
    void widthChanged(int width);

private:
    RyConfigItem<int> &m_item;
    bool m_isChanged = false;
};
