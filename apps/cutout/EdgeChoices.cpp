#include "cutout/EdgeChoices.h"

#include "cutout/EdgeColors.h"

EdgeChoices EdgeChoices::of(const EdgeSettings &settings)
{
    EdgeChoices choices;
    for (const EdgeTable::Row &row : EdgeTable::rows()) {
        if (const int number = settings.*row.number; number != 0)
            choices.choose(row, number);
    }
    return choices;
}

std::optional<int> EdgeChoices::chosen(const EdgeTable::Row &row) const
{
    const auto number = m_numbers.find(&row);
    return number == m_numbers.end() ? std::nullopt : std::optional(number->second);
}

EdgeChoices EdgeChoices::over(const EdgeChoices &others) const
{
    EdgeChoices result = *this;
    result.m_numbers.insert(others.m_numbers.begin(), others.m_numbers.end());
    return result;
}

EdgeSettings EdgeChoices::settings() const
{
    EdgeSettings settings;
    for (const auto &[row, number] : m_numbers)
        settings.*row->number = number;
    return settings;
}

int EdgeChoices::cleanPixels() const
{
    const bool isSoft = settings().feather > 0;
    return chosen(EdgeTable::row(&EdgeSettings::clean))
            .value_or(isSoft ? EdgeColors::usualRimPixels : 0);
}
