#include "segmentation/RyStrokeCoverage.h"

#include "RyImageMemory.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyStroke.h"

#include <QPainter>

#include <algorithm>
#include <cstring>
#include <new>

namespace {

/// The first byte that is not zero, or the end. Most of a stroke's rectangle is not covered, so
/// eight bytes at once are looked at.
const uchar *findCovered(const uchar *from, const uchar *end)
{
    for (; end - from >= qsizetype(sizeof(quint64)); from += sizeof(quint64)) {
        quint64 bytes;
        std::memcpy(&bytes, from, sizeof bytes);
        if (bytes != 0)
            break;
    }
    return std::find_if(from, end, [](uchar byte) { return byte != 0; });
}

} // namespace

void RyStrokeCoverage::forEachRun(const RyStroke &stroke, const QSize &picture,
                                  const VisitRun &visit)
{
    prepare(picture);
    if (m_covered.isNull())
        return;
    QImage covered; // lost, and made anew, if visiting fails before all is zero again
    covered.swap(m_covered);
    {
        QPainter painter(&covered);
        stroke.fill(painter);
    }
    // The painter rounds in its own way, by less than a pixel.
    const QRect rect =
            RyLasso::boundingRect(stroke.boundingRect()).adjusted(-2, -2, 2, 2) & covered.rect();
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        uchar *const row = covered.scanLine(y);
        const uchar *const end = row + rect.right() + 1;
        for (const uchar *from = findCovered(row + rect.left(), end); from != end;) {
            const uchar *const to = std::find(from, end, 0);
            visit(y, int(from - row), int(to - row));
            std::fill(row + (from - row), row + (to - row), 0);
            from = findCovered(to, end);
        }
    }
    m_covered.swap(covered);
}

QPainterPath RyStrokeCoverage::outline(const RyStroke &stroke, const QSize &picture)
{
    if (stroke.pathCount() < 2)
        return stroke.firstPath();
    QPainterPath path;
    forEachRun(stroke, picture,
               [&path](int y, int left, int right) { path.addRect(left, y, right - left, 1); });
    return path;
}

void RyStrokeCoverage::prepare(const QSize &picture)
{
    if (m_covered.size() == picture)
        return;
    m_covered = QImage();
    m_covered = RyImageMemory::image(picture, QImage::Format_Grayscale8);
    m_covered.fill(0);
    if (m_covered.isNull() && !picture.isEmpty())
        throw std::bad_alloc();
}
