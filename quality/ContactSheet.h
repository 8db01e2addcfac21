#pragma once

#include "CutCase.h"
#include "MaskScore.h"

#include <QList>

/**
 * A picture of all results, for looking: one row a case. First the photograph with the true outline
 * and the lasso, then one cell a method, with its mask's outline and its figures.
 */
class ContactSheet
{
public:
    void beginRow(const CutCase &cutCase);
    /// A method's mask for the row's case.
    void addResult(const QString &method, const QImage &mask, const MaskScore &score);
    QImage drawn() const;

private:
    struct Cell
    {
        QImage picture;
        QString caption;
    };
    using Row = QList<Cell>;

    static int heightOf(const Row &row);

    QList<Row> m_rows;
    QImage m_picture; // of the last row, at the sheet's size
};
