#include "cutout/EdgeOptions.h"

#include "cutout/EdgeTable.h"

#include <algorithm>

bool EdgeOptions::isValid() const
{
    const EdgeSettings settings{*this};
    const auto rows = EdgeTable::rows();
    return std::all_of(rows.begin(), rows.end(), [&](const EdgeTable::Row &row) {
        const int number = settings.*row.number;
        return number >= row.least && number <= row.most;
    });
}
