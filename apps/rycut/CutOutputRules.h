#pragma once

#include "CutOptions.h"

#include <array>

/// Which files each output of a cut may go to.
namespace CutOutputRules {

inline constexpr std::array all = {CutOutput::Object,  CutOutput::Mask,     CutOutput::Overlay,
                                   CutOutput::Outline, CutOutput::Contours, CutOutput::Labels,
                                   CutOutput::Session};

QString optionName(CutOutput output);
/// The file that tells the size of raw labels.
QString rawLabelsDescription(const QString &fileName);
/// Throws CommandError where outputs are missing, collide, or name a format that cannot hold them.
void check(const CutOptions &options);

} // namespace CutOutputRules
