#pragma once

#include <QtGlobal>

/// Which side of a cut a pixel or cell is on, one byte each.
enum class RyCutSide : quint8 { Undecided = 0, Background = 1, Object = 2 };
