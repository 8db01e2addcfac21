#pragma once

#include "CutCase.h"

#include <QList>
#include <QStringList>

/**
 * A folder of photographs to measure cuts with:
 *
 *     cases.csv          a line with the columns' names, "case" and "kind" (whole or part) among
 *                        them, then a line a case
 *     CASE/picture.jpg   CASE/truth.png (light where the object is, the picture's size)
 *     CASE/lasso.txt     and lasso-uneven.txt, lasso-tight.txt, lasso-loose.txt: one vertex "x y" a
 *                        line, in picture pixels; a lasso closes itself
 *
 * Errors   thrown as AppError, with the name of the file.
 */
class CaseFolder
{
public:
    explicit CaseFolder(const QString &path);

    static QStringList kinds(); ///< of lassos
    static QString layout();    ///< for people

    QStringList caseNames() const;
    CutCase read(const QString &caseName, const QString &kind) const;

private:
    struct Entry
    {
        QString name;
        bool isWholeThing = true;
    };

    void readList();

    QString m_path;
    QList<Entry> m_entries;
};
