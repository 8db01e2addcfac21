#pragma once

#include <QtGlobal>

#include <array>

/// How a point was reached, in one byte: 0 not yet, else the number of the neighbour it is reached
/// from, and one bit more once that is final.
namespace RyScissorsArrival {

constexpr uchar firstStraight = 5; // 1 … 4 are diagonal
constexpr uchar lastDirection = 8;
constexpr uchar isSeed = 9;
constexpr uchar directionMask = 0x0F;
constexpr uchar isFinal = 0x80;

struct Offset
{
    int x;
    int y;
};

/// From a point to the neighbour that it is reached from.
constexpr std::array<Offset, lastDirection + 1> towardsPredecessor{
        {{0, 0}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}, {0, 1}, {1, 0}, {-1, 0}, {0, -1}}};

/// The directions in which the neighbours of a point are reached from it, row by row.
constexpr std::array<uchar, 8> ofNeighbours{1, 5, 2, 6, 7, 3, 8, 4};

} // namespace RyScissorsArrival
