#pragma once

#include "gestures/Gesture.h"

#include <QByteArrayView>

#include <span>

class GestureFields;

/// The words that lines of gestures begin with.
namespace GestureWords {

struct Word
{
    QByteArrayView name;
    QByteArray form; ///< of the whole line, for messages
    Gesture blank;   ///< what the word stands for, before its fields are read
};

std::span<const Word> all();
/// Hands the gesture's fields over in the order in which they follow its word.
void describe(GestureFields &fields, Gesture &gesture);

} // namespace GestureWords
