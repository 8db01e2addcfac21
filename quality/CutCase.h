#pragma once

#include <QImage>
#include <QPolygonF>
#include <QString>

/// A photograph with its true mask, and one hand's lasso.
struct CutCase
{
    QString name;
    bool isWholeThing = true; ///< what a person would cut out, not a part of something
    QString kind;             ///< of the lasso: "ordinary", "uneven", "tight", "loose"
    QImage picture;           ///< Format_ARGB32, as sessions use it without conversion
    QImage truth;             ///< as in Masks
    QPolygonF lasso;          ///< in picture pixels

    /// As if the photograph had been taken at another size.
    CutCase scaled(double factor) const;
};
