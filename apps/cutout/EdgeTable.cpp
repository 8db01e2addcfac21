#include "cutout/EdgeTable.h"

#include "cutout/EdgeColors.h"

#include <QList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QList<EdgeTable::Row> table()
{
    constexpr int length = EdgeOptions::mostPixels, area = EdgeOptions::mostArea,
                  rim = EdgeColors::mostRimPixels;
    return {{"drop", "pixels", u"Drop pieces of the object with fewer pixels."_s,
             &EdgeSettings::drop, 0, area},
            {"fill", "pixels", u"Fill holes with fewer pixels."_s, &EdgeSettings::fill, 0, area},
            {"smooth", "radius", u"Round the edge, up to %1."_s.arg(length), &EdgeSettings::smooth,
             0, length},
            {"grow", "pixels", u"Move the edge outwards; below 0 inwards, to ±%1."_s.arg(length),
             &EdgeSettings::grow, -length, length},
            {"feather", "radius", u"Soften the edge so far to either side, up to %1."_s.arg(length),
             &EdgeSettings::feather, 0, length},
            {"clean", "pixels",
             u"Take the colours of the object's rim, so wide, from further inside, so that none of "
             "the background shows; up to %1, 0 for never. Default: %2 with --feather, else 0."_s
                     .arg(rim)
                     .arg(EdgeColors::usualRimPixels),
             &EdgeSettings::clean, 0, rim}};
}

} // namespace

std::span<const EdgeTable::Row> EdgeTable::rows()
{
    static const QList<Row> rows = table();
    return rows;
}

const EdgeTable::Row &EdgeTable::row(int EdgeSettings::*number)
{
    return *std::find_if(rows().begin(), rows().end(),
                         [number](const Row &row) { return row.number == number; });
}
