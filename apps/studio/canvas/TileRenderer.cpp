#include "canvas/TileRenderer.h"

#include "document/LabelSampler.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int checkerSide = 9; // pixels of the widget
constexpr double fewestPixelsToShowSquares = 3.0;
constexpr int halfOpaque = 128;
constexpr QRgb outlineInside = qRgb(255, 255, 255);
constexpr QRgb outlineOutside = qRgb(20, 20, 20);
constexpr QRgb contourColor = qRgba(255, 255, 255, 110);

/// One part of a scene at one scale.
class Tile
{
public:
    Tile(const ViewScene &scene, const QRect &scaledArea, double scale)
        : m_scene(scene)
        , m_area(scaledArea)
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
            drawWholePicture(painter); // a translucent background lets it show
            painter.drawImage(0, 0, tintedMask(m_scene.backgroundColor));
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
        const int side = checkerSide * lineWidth();
        for (int row = m_area.top() / side; row * side <= m_area.bottom(); ++row)
            for (int column = m_area.left() / side; column * side <= m_area.right(); ++column)
                if ((row + column) % 2 != 0)
                    painter.fillRect(column * side - m_area.left(), row * side - m_area.top(), side,
                                     side, dark);
    }

    /// Pixels of the screen.
    int lineWidth() const { return std::max(1, int(std::lround(m_scene.devicePixelRatio))); }

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
        const int reach = lineWidth(); // neighbours this far away decide
        const Tile wider(m_scene, m_area.adjusted(-reach, -reach, reach, reach), m_scale);
        const QImage mask = wider.tintedMask(Qt::black);
        const QRect inside =
                wider.pictureRect(); // beyond it there is neither object nor background
        const auto isObject = [&](int x, int y) {
            const int row = std::clamp(y + reach, inside.top(), inside.bottom());
            const int column = std::clamp(x + reach, inside.left(), inside.right());
            return qAlpha(reinterpret_cast<const QRgb *>(mask.constScanLine(row))[column]) <
                   halfOpaque;
        };
        QImage layer = empty();
        for (int y = 0; y < layer.height(); ++y) {
            auto *const out = reinterpret_cast<QRgb *>(layer.scanLine(y));
            for (int x = 0; x < layer.width(); ++x) {
                const bool here = isObject(x, y);
                bool isBorder = false;
                for (int d = 1; d <= reach; ++d)
                    isBorder = isBorder || isObject(x - d, y) != here ||
                               isObject(x + d, y) != here || isObject(x, y - d) != here ||
                               isObject(x, y + d) != here;
                if (isBorder)
                    out[x] = here ? outlineInside : outlineOutside;
            }
        }
        return layer;
    }

    /// In pixels of the tile.
    QRect pictureRect() const
    {
        const QSizeF size = QSizeF(m_scene.picture.size()) * m_scale;
        return QRect(-m_area.topLeft(), size.toSize().expandedTo({1, 1})) &
               QRect(QPoint(), m_area.size());
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
    const QRect m_area; // of the scaled picture
    const double m_scale;
};

} // namespace

QImage TileRenderer::render(const ViewScene &scene, const QRect &scaledArea, double scale)
{
    return Tile(scene, scaledArea, scale).render();
}
