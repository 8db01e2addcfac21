#pragma once

struct PictureOptions;

/// What holds for the whole process, set before a command begins.
namespace ProcessSetup {

/// Throws CommandError when the machine lacks the kernel.
void apply(const PictureOptions &options);

} // namespace ProcessSetup
