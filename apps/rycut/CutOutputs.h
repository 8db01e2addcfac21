#pragma once

#include "CutOptions.h"
#include "OutputKind.h"

#include <span>

struct CutResult;

/// What a cut can be asked to write, each with all that belongs to it.
namespace CutOutputs {

using Kind = OutputKind<CutOutput, CutOptions, CutResult>;

std::span<const Kind> all();

/// Adds the file that tells the size of raw labels, where these are asked for.
void addCompanions(QMap<CutOutput, QString> &outputs);

} // namespace CutOutputs
