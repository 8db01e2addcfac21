#pragma once

struct CutOptions;
struct CutResult;
class Interruption;

/// What a cut starts from: the picture, and what is to be done to it.
namespace CutInputs {

/// Fills in picture, session and scale. Throws CommandError where an input cannot be read, or where
/// gestures were made on another picture.
void read(CutResult &result, const CutOptions &options, const Interruption &interruption);

} // namespace CutInputs
