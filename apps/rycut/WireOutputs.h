#pragma once

#include "OutputKind.h"
#include "WireOptions.h"

#include <span>

struct WireResult;

/// What a wire can be asked to write, each with all that belongs to it.
namespace WireOutputs {

using Kind = OutputKind<WireOutput, WireOptions, WireResult>;

std::span<const Kind> all();

/// Says that an option makes no sense for a wire that is open.
[[noreturn]] void throwNeedsInside(const QString &option);

} // namespace WireOutputs
