#pragma once

#include "canvas/ViewScene.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QPoint>
#include <QRectF>
#include <QThreadPool>
#include <QWaitCondition>

#include <memory>

class QPainter;

/**
 * A scene, drawn in tiles as far as it is looked at. Tiles are made beside the event loop; a paint
 * waits for those it needs as long as a frame may take, and shows the last ones after that.
 *
 * Threads  the GUI thread. It draws no tile itself: Qt's painter divides what it fills among the
 *          global thread pool and waits for it, and while a cut keeps all processors busy nothing
 *          bounds that wait.
 */
class TileCache : public QObject
{
    Q_OBJECT

public:
    explicit TileCache(QObject *parent = nullptr);
    ~TileCache() override;

    const ViewScene &scene() const { return *m_scene; }
    /// Only what lies within this area of the picture looks different from before.
    void setScene(const ViewScene &scene, const QRectF &pictureArea);
    /// Everything looks different.
    void setScene(const ViewScene &scene);
    /// Pixels of the screen that a pixel of the picture has, per side.
    void setScale(double scale);

    /// What is looked at, in pixels of the picture as it is scaled: the screen's, counted from the
    /// picture's corner.
    void setViewport(const QRect &scaledArea) { m_viewport = scaledArea; }

    /// Asks for what is not ready of these parts of the viewport, and waits for it as long as a
    /// frame may take. What comes later is announced by changed().
    void prepare(const QList<QRect> &scaledAreas);
    /// One of the parts; the painter's pixels are the screen's.
    void paint(QPainter &painter, const QRect &scaledArea);
    /// True when all of the viewport has been drawn as it is now.
    bool isUpToDate() const;

Q_SIGNALS:
    void changed(const QRect &scaledArea);

private:
    static constexpr int side = 256;

    struct Tile
    {
        QImage image;            ///< null until it has been drawn for the first time
        quint64 wanted = 0;      ///< a version of the scene
        quint64 drawn = 0;       ///< up to date when it is what is wanted
        quint64 requested = 0;   ///< being drawn
        bool isShownOld = false; ///< on the screen, there is less than what has been drawn
    };
    struct DrawnTile
    {
        QPoint place;
        quint64 version = 0;
        double scale = 1.0;
        QImage image;
    };
    using Tiles = QHash<QPoint, Tile>; // by column and row

    QRect rectOf(const QPoint &place) const;
    QRect scaledRect() const; // of the whole picture
    static QList<QPoint> placesIn(const QRect &scaledArea);
    bool isUpToDate(const QList<QPoint> &places) const;
    void paintTile(QPainter &painter, const QPoint &place);
    void paintPlaceholder(QPainter &painter, const QRect &rect) const;
    Tile &tileAt(const QPoint &place);
    void request(const QPoint &place);
    void waitFor(const QList<QPoint> &places);
    void takeDrawn();
    void take(const DrawnTile &drawn);
    void forgetOldTiles();

    std::shared_ptr<const ViewScene> m_scene; // tiles that are being drawn share it
    double m_scale = 1.0;
    Tiles m_tiles;
    Tiles m_formerTiles; // of another scale, shown until there are new ones
    double m_formerScale = 1.0;
    quint64 m_version = 1;
    QRect m_viewport;
    QMutex m_mutex;            // guards m_drawn
    QWaitCondition m_hasDrawn; // predicate: m_drawn is not empty
    QList<DrawnTile> m_drawn;  // by the pool, and not taken yet
    QThreadPool m_pool;        // last: its tasks end before anything else goes
};
