#pragma once

#include "CutOptions.h"
#include "OutputFile.h"

#include <map>
#include <memory>
#include <vector>

class Interruption;
struct CutResult;

/// All files of one cut. They are opened with the object, before the work, and appear together.
class CutFiles
{
public:
    explicit CutFiles(const CutOptions &options);

    /// Adds the time that this takes to the result's.
    void write(CutResult &result, const Interruption &interruption);
    /// After the others, so that it can tell how long they took.
    void writeReport(const CutResult &result);

    /// Makes all of them visible, or the report alone; returns the names of files.
    QStringList commitAll();
    void commitReport();

private:
    void write(CutOutput output, const CutResult &result);
    void writeLabels(OutputFile &file, const QImage &labels);
    QByteArray outline(const CutResult &result) const;

    const CutOptions m_options;
    std::map<CutOutput, OutputFile> m_files;
    std::unique_ptr<OutputFile> m_labelsDescription;
    std::unique_ptr<OutputFile> m_report;
};
