#pragma once

#include "CaseFolder.h"
#include "ContactSheet.h"
#include "CutMethod.h"
#include "Measurement.h"
#include "QualityOptions.h"

/// Cuts every case with every method, one after the other, and writes what it measured.
class QualityRun
{
public:
    explicit QualityRun(const QualityOptions &options);

    void execute();

private:
    void measureKind(const QString &kind);
    void measureCase(const CutCase &cutCase, ContactSheet &sheet);
    Cut fastestCut(const CutMethod &method, const CutCase &cutCase) const;
    QString sheetFile(const QString &kind) const;

    QualityOptions m_options;
    CaseFolder m_folder;
    QList<CutMethod> m_methods;
    QList<Measurement> m_measurements;
};
