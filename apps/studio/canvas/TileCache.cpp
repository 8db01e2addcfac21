#include "canvas/TileCache.h"

#include "canvas/TileRenderer.h"

#include <QDeadlineTimer>
#include <QMutexLocker>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto frameBudget = 8ms;    // half a frame: the other half puts it on the screen
constexpr qsizetype mostTiles = 400; // 100 MB

} // namespace

TileCache::TileCache(QObject *parent)
    : QObject(parent)
    , m_scene(std::make_shared<ViewScene>())
{}

TileCache::~TileCache()
{
    m_pool.clear();
    m_pool.waitForDone();
}

void TileCache::setScene(const ViewScene &scene)
{
    m_scene = std::make_shared<ViewScene>(scene);
    ++m_version;
    for (Tile &tile : m_tiles)
        tile.wanted = m_version;
    m_formerTiles.clear();
    Q_EMIT changed(scaledRect());
}

void TileCache::setScene(const ViewScene &scene, const QRectF &pictureArea)
{
    m_scene = std::make_shared<ViewScene>(scene);
    if (pictureArea.isEmpty())
        return;
    constexpr int margin = 3; // smooth drawing and outlines look at neighbours
    const QRect scaledArea = QRectF(pictureArea.topLeft() * m_scale, pictureArea.size() * m_scale)
                                     .toAlignedRect()
                                     .adjusted(-margin, -margin, margin, margin);
    ++m_version;
    for (auto tile = m_tiles.begin(); tile != m_tiles.end(); ++tile)
        if (rectOf(tile.key()).intersects(scaledArea))
            tile->wanted = m_version;
    m_formerTiles.clear();
    Q_EMIT changed(scaledArea);
}

void TileCache::setScale(double scale)
{
    if (scale == m_scale)
        return;
    if (std::any_of(m_tiles.cbegin(), m_tiles.cend(),
                    [](const Tile &tile) { return !tile.image.isNull(); })) {
        m_formerTiles = std::exchange(m_tiles, {});
        m_formerScale = m_scale;
    }
    m_tiles.clear();
    m_scale = scale;
    m_pool.clear();
}

/// Of a pixel of the screen that is covered in part, its middle decides, as it does in painting.
QRect TileCache::scaledRect() const
{
    const QSizeF size = QSizeF(m_scene->picture.size()) * m_scale;
    return {QPoint(), size.toSize().expandedTo({1, 1})};
}

QRect TileCache::rectOf(const QPoint &place) const
{
    return QRect(place * side, QSize(side, side)) & scaledRect();
}

QList<QPoint> TileCache::placesIn(const QRect &scaledArea)
{
    QList<QPoint> places;
    for (int row = scaledArea.top() / side; row * side <= scaledArea.bottom(); ++row)
        for (int column = scaledArea.left() / side; column * side <= scaledArea.right(); ++column)
            places.append({column, row});
    return places;
}

bool TileCache::isUpToDate() const
{
    return isUpToDate(placesIn(m_viewport & scaledRect()));
}

bool TileCache::isUpToDate(const QList<QPoint> &places) const
{
    return std::all_of(places.begin(), places.end(), [this](const QPoint &place) {
        const auto tile = m_tiles.find(place);
        return tile != m_tiles.end() && tile->drawn == tile->wanted;
    });
}

void TileCache::prepare(const QList<QRect> &scaledAreas)
{
    QList<QPoint> places;
    for (const QRect &area : scaledAreas)
        places += placesIn(area & scaledRect());
    waitFor(places);
}

void TileCache::paint(QPainter &painter, const QRect &scaledArea)
{
    for (const QPoint &place : placesIn(scaledArea & scaledRect()))
        paintTile(painter, place);
    if (!m_formerTiles.isEmpty() && isUpToDate())
        m_formerTiles.clear();
    forgetOldTiles();
}

/// A new tile wants the present scene, not drawings of earlier ones that are still on their way.
TileCache::Tile &TileCache::tileAt(const QPoint &place)
{
    const auto tile = m_tiles.find(place);
    return tile != m_tiles.end() ? *tile
                                 : *m_tiles.insert(place, Tile{.image = {}, .wanted = m_version});
}

void TileCache::request(const QPoint &place)
{
    Tile &tile = tileAt(place);
    if (tile.drawn == tile.wanted || tile.requested > tile.drawn)
        return; // one at a time, or strokes would leave threads that are busy ever further behind
    tile.requested = tile.wanted;
    m_pool.start([this, scene = m_scene, rect = rectOf(place), place, scale = m_scale,
                  version = tile.wanted] {
        const QImage image = TileRenderer::render(*scene, rect, scale);
        const QMutexLocker lock(&m_mutex);
        m_drawn.append({place, version, scale, image});
        m_hasDrawn.wakeOne();
        QMetaObject::invokeMethod(this, &TileCache::takeDrawn, Qt::QueuedConnection);
    });
}

void TileCache::waitFor(const QList<QPoint> &places)
{
    const QDeadlineTimer frameEnd(frameBudget, Qt::PreciseTimer);
    while (true) {
        takeDrawn();
        for (const QPoint &place : places)
            request(place);
        if (isUpToDate(places) || frameEnd.hasExpired())
            return;
        QMutexLocker lock(&m_mutex);
        while (m_drawn.isEmpty() && m_hasDrawn.wait(&m_mutex, frameEnd)) {
        }
    }
}

void TileCache::takeDrawn()
{
    QList<DrawnTile> drawn;
    {
        const QMutexLocker lock(&m_mutex);
        drawn.swap(m_drawn);
    }
    for (const DrawnTile &tile : std::as_const(drawn))
        take(tile);
}

void TileCache::take(const DrawnTile &drawn)
{
    const auto tile = m_tiles.find(drawn.place);
    if (drawn.scale != m_scale || tile == m_tiles.end() || drawn.version <= tile->drawn)
        return; // nobody asks for it any more
    tile->image = drawn.image;
    tile->drawn = drawn.version;
    if (std::exchange(tile->isShownOld, false))
        Q_EMIT changed(rectOf(drawn.place));
}

void TileCache::paintTile(QPainter &painter, const QPoint &place)
{
    const QRect rect = rectOf(place);
    Tile &tile = tileAt(place);
    tile.isShownOld = tile.isShownOld || tile.drawn != tile.wanted;
    if (tile.image.isNull())
        paintPlaceholder(painter, rect);
    else
        painter.drawImage(rect.topLeft(), tile.image);
}

/// The tiles of the last scale, over a coarse picture where there are none.
void TileCache::paintPlaceholder(QPainter &painter, const QRect &rect) const
{
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    const ImagePyramid::Level level = m_scene->picture.levelFor(m_scale / 2.0);
    painter.save();
    painter.scale(m_scale * level.shrinking, m_scale * level.shrinking);
    painter.drawImage(0, 0, level.image);
    painter.restore();
    const double growth = m_scale / m_formerScale;
    painter.scale(growth, growth);
    const QRectF wanted(QPointF(rect.topLeft()) / growth, QSizeF(rect.size()) / growth);
    for (auto tile = m_formerTiles.cbegin(); tile != m_formerTiles.cend(); ++tile)
        if (!tile->image.isNull() &&
            wanted.intersects(QRectF(tile.key() * side, QSize(side, side))))
            painter.drawImage(tile.key() * side, tile->image);
    painter.restore();
}

void TileCache::forgetOldTiles()
{
    if (m_tiles.size() <= mostTiles)
        return;
    m_tiles.removeIf([this](const Tiles::iterator &tile) {
        return !rectOf(tile.key()).intersects(m_viewport);
    });
}
