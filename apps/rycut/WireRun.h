#pragma once

#include "Interruption.h"
#include "OutputFiles.h"
#include "WireOptions.h"
#include "WireResult.h"

class WireTracer;

/// One wire from its inputs to its files.
class WireRun
{
public:
    explicit WireRun(const WireOptions &options);

    /// Failures are thrown as CommandError.
    void execute();

private:
    void readInputs();
    void layWire();
    QImage costPicture() const;
    void layStretches(WireTracer &tracer);
    void takeResults(const WireTracer &tracer);
    void fillInside();
    void writeOutputs();

    const WireOptions m_options;
    const Interruption m_interruption;
    OutputFiles m_files;
    WireResult m_result;
};
