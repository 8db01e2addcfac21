#pragma once

#include "CutOptions.h"
#include "CutResult.h"
#include "Interruption.h"
#include "OutputFiles.h"

class CutSession;

/// One cut from its inputs to its files.
class CutRun
{
public:
    explicit CutRun(const CutOptions &options);

    /// Failures are thrown as CommandError.
    void execute();

private:
    void readInputs();
    void computeCut();
    QImage play(CutSession &session, const QImage &picture) const;
    void takeResults(const CutSession &session);
    [[noreturn]] void failWithReport(const QString &message);
    void makeFullMask();
    void writeOutputs();
    void requireMemory(const QImage &image) const;

    const CutOptions m_options;
    const Interruption m_interruption;
    OutputFiles m_files;
    CutResult m_result;
};
