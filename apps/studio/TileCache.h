#pragma once

#include "ViewScene.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPoint>
#include <QRectF>
#include <QThreadPool>

#include <memory>

class QPainter;

/**
 * A scene, drawn in tiles as far as it is looked at. Tiles are made within the time that a frame
 * has, and beside the event loop when that is over; until then the last ones are shown.
 *
 * Threads  the GUI thread.
 */
class TileCache : public QObject
{
    Q_OBJECT

public:
    explicit TileCache(QObject *parent = nullptr);
    ~TileCache() override;

    const ViewScene &scene() const { return *m_scene; }
    /// Only what lies within the area looks different from before; in pixels of the picture.
    void setScene(const ViewScene &scene, const QRectF &changedArea);
    /// Everything looks different.
    void setScene(const ViewScene &scene);
    /// Pixels of the screen that a pixel of the picture has, per side.
    void setScale(double scale);

    /// What is looked at, in pixels of the screen counted from the picture's corner.
    void setViewport(const QRect &viewport) { m_viewport = viewport; }

    /// A part of the viewport; the painter's pixels are the screen's. What is not ready is asked for,
    /// and announced by changed().
    void paint(QPainter &painter, const QRect &area);
    /// True when all of the viewport has been drawn as it is now.
    bool isUpToDate() const;

Q_SIGNALS:
    void changed(const QRect &area); ///< in the viewport's pixels

private:
    static constexpr int side = 256;

    struct Tile
    {
        QImage image; ///< null until it has been drawn for the first time
        quint64 wanted = 1;
        quint64 drawn = 0;     ///< up to date when it is what is wanted
        quint64 requested = 0; ///< being drawn
    };
    using Tiles = QHash<QPoint, Tile>; // by column and row

    QRect rectOf(const QPoint &place) const;
    QRect sceneRect() const;
    static QList<QPoint> placesIn(const QRect &area);
    void paintTile(QPainter &painter, const QPoint &place, bool hasTime);
    void paintPlaceholder(QPainter &painter, const QRect &rect) const;
    void request(const QPoint &place, Tile &tile);
    void take(const QPoint &place, quint64 version, double scale, const QImage &image);
    void forgetOldTiles();

    std::shared_ptr<const ViewScene> m_scene; // tiles that are being drawn share it
    double m_scale = 1.0;
    Tiles m_tiles;
    Tiles m_formerTiles; // of another scale, shown until there are new ones
    double m_formerScale = 1.0;
    quint64 m_version = 1;
    QRect m_viewport;
    QThreadPool m_pool; // last: its tasks end before anything else goes
};
