#pragma once

/// What the program tells its caller; scripts rely on the numbers.
enum class ExitStatus : int {
    Done = 0,
    Usage = 1,
    UnreadableInput = 2,
    EmptyResult = 3,
    CannotWrite = 4,
    NoMemory = 5,
    Interrupted = 128, ///< plus the signal's number, as shells count
};
