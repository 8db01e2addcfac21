#pragma once

#include "OutputFile.h"
#include "WireOptions.h"

#include <map>
#include <memory>

class Interruption;
struct WireResult;

/// All files of one wire. They are opened with the object, before the work, and appear together.
class WireFiles
{
public:
    explicit WireFiles(const WireOptions &options);

    /// Adds the time that this takes to the result's, and writes the report in the end.
    void write(WireResult &result, const Interruption &interruption);
    /// Makes all of them visible; returns the names of files.
    QStringList commit();

private:
    void write(WireOutput output, OutputFile &file, const WireResult &result) const;

    /// With the object outlined as well where its edge is not the wire.
    QImage overlay(const WireResult &result) const;

    const WireOptions m_options;
    std::map<WireOutput, OutputFile> m_files;
    std::unique_ptr<OutputFile> m_report;
};
