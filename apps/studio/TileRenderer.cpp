#include "TileRenderer.h"

#include "LabelSampler.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int checkerSide = 10; // pixels of the screen
constexpr double fewestPixelsToShowSquares = 3.0;
constexpr int halfOpaque = 128;
constexpr QRgb outlineInside = qRgb(255, 255, 255);
constexpr QRgb outlineOutside = qRgb(20, 20, 20);
constexpr QRgb contourColor = qRgba(255, 255, 255, 110);

/// One part of a scene at one scale.
class Tile
{
public:
    Tile(const ViewScene &scene, const QRect &area, double scale)
        : m_scene(scene)
        , m_area(area)
        , m_scale(scale)
    {}

    QImage render() const
    {
        QImage tile(m_area.size(), QImage::Format_RGB32);
        if (tile.isNull())
            return tile;
        QPainter painter(&tile);
        const bool hasMask = !m_scene.mask.isNull() && !m_scene.hidesMask;
        if (hasMask)
            drawCut(painter);
        else
            drawWholePicture(painter);
        if (m_scene.showsContours && !m_scene.labels.isNull())
            painter.drawImage(0, 0, contours());
        return tile;
    }

private:
    void drawCut(QPainter &painter) const
    {
        switch (m_scene.mode) {
        case ViewMode::Overlay:
            drawWholePicture(painter);
            painter.drawImage(0, 0, tintedMask(m_scene.overlayColor));
            break;
        case ViewMode::Outline:
            drawWholePicture(painter);
            painter.drawImage(0, 0, outline());
            break;
        case ViewMode::Checkerboard:
            drawCheckerboard(painter);
            painter.drawImage(0, 0, object());
            break;
        case ViewMode::BlackAndWhite:
            painter.fillRect(painter.viewport(), Qt::white);
            painter.drawImage(0, 0, tintedMask(Qt::black));
            break;
        case ViewMode::Background:
            painter.fillRect(painter.viewport(), m_scene.backgroundColor);
            painter.drawImage(0, 0, object());
            break;
        }
    }

    void drawWholePicture(QPainter &painter) const
    {
        if (m_scene.picture.picture().hasAlphaChannel())
            drawCheckerboard(painter);
        drawPyramid(painter, m_scene.picture);
    }

    /// A pyramid of another size than the picture's is stretched over it.
    void drawPyramid(QPainter &painter, const ImagePyramid &pyramid) const
    {
        const QSizeF picture = m_scene.picture.size();
        const double scaleX = m_scale * picture.width() / pyramid.size().width();
        const double scaleY = m_scale * picture.height() / pyramid.size().height();
        const ImagePyramid::Level level = pyramid.levelFor(std::max(scaleX, scaleY));
        painter.save();
        painter.setRenderHint(QPainter::SmoothPixmapTransform, m_scale < fewestPixelsToShowSquares);
        painter.translate(-m_area.topLeft());
        painter.scale(scaleX * level.shrinking, scaleY * level.shrinking);
        painter.drawImage(0, 0, level.image);
        painter.restore();
    }

    void drawCheckerboard(QPainter &painter) const
    {
        const QColor dark(190, 190, 190), light(235, 235, 235);
        painter.fillRect(painter.viewport(), light);
        const int firstColumn = m_area.left() / checkerSide, firstRow = m_area.top() / checkerSide;
        for (int row = firstRow; row * checkerSide <= m_area.bottom(); ++row)
            for (int column = firstColumn; column * checkerSide <= m_area.right(); ++column)
                if ((row + column) % 2 != 0)
                    painter.fillRect(column * checkerSide - m_area.left(),
                                     row * checkerSide - m_area.top(), checkerSide, checkerSide,
                                     dark);
    }

    QImage empty() const
    {
        QImage layer(m_area.size(), QImage::Format_ARGB32_Premultiplied);
        layer.fill(Qt::transparent);
        return layer;
    }

    QImage tintedMask(const QColor &color) const
    {
        QImage layer = empty();
        QPainter painter(&layer);
        drawPyramid(painter, m_scene.mask);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(layer.rect(), color);
        return layer;
    }

    QImage object() const
    {
        QImage layer = empty();
        QPainter painter(&layer);
        drawPyramid(painter, m_scene.picture);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        drawPyramid(painter, m_scene.mask);
        return layer;
    }

    /// A white line along the object's inner side and a dark one along its outer side, so that one
    /// of them is seen on any picture.
    QImage outline() const
    {
        // One pixel more on each side, as neighbours decide.
        const Tile wider(m_scene, m_area.adjusted(-1, -1, 1, 1), m_scale);
        const QImage mask = wider.tintedMask(Qt::black);
        QImage layer = empty();
        const auto isObject = [&mask](int x, int y) {
            const auto *const row = reinterpret_cast<const QRgb *>(mask.constScanLine(y));
            return qAlpha(row[x]) < halfOpaque;
        };
        for (int y = 0; y < layer.height(); ++y) {
            auto *const out = reinterpret_cast<QRgb *>(layer.scanLine(y));
            for (int x = 0; x < layer.width(); ++x) {
                const bool here = isObject(x + 1, y + 1);
                if (isObject(x, y + 1) != here || isObject(x + 2, y + 1) != here ||
                    isObject(x + 1, y) != here || isObject(x + 1, y + 2) != here)
                    out[x] = here ? outlineInside : outlineOutside;
            }
        }
        return layer;
    }

    /// Lines where the label to the right or below is another one, a pixel of the screen wide.
    QImage contours() const
    {
        const LabelSampler labels(m_scene.labels, m_scene.picture.size(), m_scale);
        const QList<int> columns = labels.columns(m_area.left(), m_area.width() + 1);
        QImage layer = empty();
        for (int y = 0; y < layer.height(); ++y) {
            const int *const here = labels.row(m_area.top() + y);
            const int *const below = labels.row(m_area.top() + y + 1);
            auto *const out = reinterpret_cast<QRgb *>(layer.scanLine(y));
            for (int x = 0; x < layer.width(); ++x) {
                const int label = here[columns[x]];
                if (label != here[columns[x + 1]] || label != below[columns[x]])
                    out[x] = qPremultiply(contourColor);
            }
        }
        return layer;
    }

    const ViewScene &m_scene;
    const QRect m_area;
    const double m_scale;
};

} // namespace

QImage TileRenderer::render(const ViewScene &scene, const QRect &area, double scale)
{
    return Tile(scene, area, scale).render();
}
