#pragma once

#include "cutout/EdgeTable.h"

#include <map>
#include <optional>

/// What a command line or a session file tells of an edge, and what it leaves open.
class EdgeChoices
{
public:
    static EdgeChoices of(const EdgeSettings &settings); ///< what is 0 is left open

    void choose(const EdgeTable::Row &row, int number) { m_numbers[&row] = number; }
    std::optional<int> chosen(const EdgeTable::Row &row) const;

    /// These, and those of the others where nothing is told here.
    EdgeChoices over(const EdgeChoices &others) const;
    EdgeSettings settings() const; ///< 0 for what is left open
    /// For soft edges the usual rim when nothing else is told.
    int cleanPixels() const;

private:
    std::map<const EdgeTable::Row *, int> m_numbers; // keys are rows of EdgeTable
};
