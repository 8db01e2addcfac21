#include "cutout/MaskOutline.h"

#include "cutout/MaskImage.h"

#include <new>
#include <vector>

namespace {

/// Walks round the object with its pixels on the right hand.
class EdgeWalk
{
public:
    EdgeWalk(const QImage &mask, const QRect &box)
        : m_topLeft(box.topLeft() - QPoint(1, 1))
        , m_mask(mask.copy(box.adjusted(-1, -1, 1, 1))) // 0 where it reaches beyond the mask
        , m_isWalked(size_t(m_mask.width()) * size_t(m_mask.height()))
    {
        if (m_mask.isNull())
            throw std::bad_alloc();
    }

    QPainterPath path()
    {
        for (int y = 1; y < m_mask.height(); ++y) {
            const uchar *const row = m_mask.constScanLine(y);
            const uchar *const above = m_mask.constScanLine(y - 1);
            for (int x = 0; x < m_mask.width(); ++x) {
                // Every closed edge passes the top side of some pixel.
                if (isObject(row[x]) && !isObject(above[x]) && !m_isWalked[index({x, y})])
                    walk({x, y});
            }
        }
        return m_path;
    }

private:
    static bool isObject(uchar value) { return value >= MaskImage::half; }
    bool isObject(const QPoint &pixel) const
    {
        return isObject(m_mask.constScanLine(pixel.y())[pixel.x()]);
    }
    size_t index(const QPoint &pixel) const
    {
        return size_t(pixel.y()) * size_t(m_mask.width()) + size_t(pixel.x());
    }

    void walk(const QPoint &start);
    QPoint turned(const QPoint &corner, const QPoint &direction) const;

    const QPoint m_topLeft;       // of m_mask, in the whole mask
    const QImage m_mask;          // the object with background all round it
    std::vector<bool> m_isWalked; // the top side of every pixel
    QPainterPath m_path;
};

QPoint toTheRight(const QPoint &direction)
{
    return {-direction.y(), direction.x()};
}

/// Where the edge goes on from a corner that is reached in a direction. Left before straight on, so
/// that pixels which meet at a corner stay together.
QPoint EdgeWalk::turned(const QPoint &corner, const QPoint &direction) const
{
    // The pixel to the right ahead; its left neighbour is a step to the left away.
    const QPoint right = toTheRight(direction);
    const QPoint sum = direction + right;
    const QPoint ahead = corner + QPoint(sum.x() < 0 ? -1 : 0, sum.y() < 0 ? -1 : 0);
    const QPoint leftAhead = ahead - right;
    if (isObject(leftAhead))
        return -right;
    return isObject(ahead) ? direction : right;
}

void EdgeWalk::walk(const QPoint &start)
{
    const QPoint alongTheTop(1, 0);
    QPoint corner = start;
    QPoint direction = alongTheTop;
    m_path.moveTo(m_topLeft + start);
    for (;;) {
        if (direction == alongTheTop)
            m_isWalked[index(corner)] = true;
        corner += direction;
        const QPoint next = turned(corner, direction);
        if (corner == start && next == alongTheTop)
            break;
        if (next != direction)
            m_path.lineTo(m_topLeft + corner);
        direction = next;
    }
    m_path.closeSubpath();
}

} // namespace

QPainterPath MaskOutline::path(const QImage &mask)
{
    const QRect box = MaskImage::objectBox(mask);
    return box.isEmpty() ? QPainterPath() : EdgeWalk(mask, box).path();
}
