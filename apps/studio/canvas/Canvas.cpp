#include "canvas/Canvas.h"

#include "document/Document.h"
#include "tools/Tool.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double largestScale = 32.0;
constexpr double smallestPictureSide = 64.0; // pixels of the screen, when zoomed out
constexpr double zoomStep = 1.25;
constexpr int fitMargin = 12; // pixels of the canvas round a picture that fits

bool showsBackground(ViewMode mode)
{
    return mode == ViewMode::Checkerboard || mode == ViewMode::Background;
}

} // namespace

Canvas::Canvas(Document &document, QWidget *parent)
    : QWidget(parent)
    , m_document(document)
    , m_edgePreview(document)
{
    setAccessibleName(tr("Picture"));
    setAccessibleDescription(tr("The picture with its cut, on which the tools work"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setTabletTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    grabGesture(Qt::PinchGesture);
    setMinimumSize(200, 150);
    connect(&m_tiles, &TileCache::changed, this, &Canvas::updateTiles);
    connect(&m_mask, &MaskLayer::changed, this, &Canvas::takeMask);
    connect(&document, &Document::pictureChanged, this, &Canvas::showPicture);
    connect(&m_edgePreview, &EdgePreview::changed, this, &Canvas::takeEdge);
    connect(&document, &Document::regionsChanged, this, [this] {
        changeScene([this](ViewScene &scene) { scene.labels = m_document.labels(); });
    });
}

void Canvas::showPicture()
{
    changeScene([this](ViewScene &scene) {
        scene.picture = m_document.opened().levels;
        scene.labels = m_document.labels();
        scene.mask = {};
    });
    zoomToFit();
    updateCursor();
}

void Canvas::setTool(Tool *tool)
{
    if (m_tool)
        m_tool->disconnect(this);
    m_tool = tool;
    m_isPressed = false;
    if (tool)
        connect(tool, &Tool::overlayChanged, this, &Canvas::updateOverlay);
    updateCursor();
    update();
}

void Canvas::setViewMode(ViewMode mode)
{
    m_edgePreview.setShowsColors(showsBackground(mode));
    changeScene([this, mode](ViewScene &scene) {
        scene.mode = mode;
        scene.picture = pictureFor(scene);
    });
}

void Canvas::setOverlayColor(const QColor &color)
{
    changeScene([color](ViewScene &scene) { scene.overlayColor = color; });
}

void Canvas::setBackgroundColor(const QColor &color)
{
    changeScene([color](ViewScene &scene) { scene.backgroundColor = color; });
}

void Canvas::setShowsContours(bool shows)
{
    changeScene([shows](ViewScene &scene) { scene.showsContours = shows; });
}

void Canvas::setHidesMask(bool hides)
{
    if (hidesMask() == hides)
        return;
    changeScene([this, hides](ViewScene &scene) {
        scene.hidesMask = hides;
        scene.picture = pictureFor(scene);
    });
    Q_EMIT hidesMaskChanged(hides);
}

void Canvas::changeScene(const std::function<void(ViewScene &)> &change)
{
    ViewScene scene = m_tiles.scene();
    change(scene);
    m_tiles.setScene(scene);
}

/// With a clean edge where one is to be seen: on a new background.
ImagePyramid Canvas::pictureFor(const ViewScene &scene) const
{
    const ImagePyramid cleaned = m_edgePreview.colors();
    const bool isCleaned = !cleaned.isNull() && showsBackground(scene.mode) && !scene.hidesMask;
    return isCleaned ? cleaned : m_document.opened().levels;
}

void Canvas::takeEdge()
{
    const bool wasCleaned = std::exchange(m_isCleaned, !m_edgePreview.colors().isNull());
    if (wasCleaned || m_isCleaned) // else only what the mask changes is drawn anew
        changeScene([this](ViewScene &scene) { scene.picture = pictureFor(scene); });
    m_mask.setMask(m_edgePreview.mask());
}

void Canvas::takeMask(const QRect &maskArea)
{
    ViewScene scene = m_tiles.scene();
    const bool wasNull = scene.mask.isNull();
    scene.mask = m_mask.pyramid();
    if (wasNull || scene.mask.isNull()) {
        m_tiles.setScene(scene);
        return;
    }
    const QSizeF picture = m_document.picture().size();
    const QSizeF mask = scene.mask.size();
    m_tiles.setScene(scene, QTransform::fromScale(picture.width() / mask.width(),
                                                  picture.height() / mask.height())
                                    .mapRect(QRectF(maskArea)));
}

void Canvas::updateTiles(const QRect &scaledArea)
{
    const double ratio = m_view.devicePixelRatio;
    const QRectF onWidget(QPointF(scaledArea.topLeft() + m_view.origin) / ratio,
                          QSizeF(scaledArea.size()) / ratio);
    update(onWidget.toAlignedRect());
}

void Canvas::updateOverlay(const QRectF &pictureArea)
{
    constexpr int margin = 8; // lines and handles are wider than what they mark
    if (pictureArea.isNull())
        update();
    else
        update(m_view.toWidget(pictureArea)
                       .toAlignedRect()
                       .adjusted(-margin, -margin, margin, margin));
}

void Canvas::paintEvent(QPaintEvent *event)
{
    if (m_view.devicePixelRatio != devicePixelRatioF())
        keepView(); // the window is on another screen
    QPainter painter(this);
    if (m_document.hasPicture())
        prepareTiles(event->region());
    const QColor surround = palette().color(QPalette::Window).darker(115);
    for (const QRect &area : event->region()) {
        painter.setClipRect(area);
        painter.fillRect(area, surround);
        if (m_document.hasPicture())
            paintTiles(painter, area);
    }
    painter.setClipRegion(event->region()); // which also tells tools how much they have to draw
    if (m_tool && m_document.hasPicture())
        m_tool->paint(painter, m_view);
}

/// In pixels of the picture as it is scaled.
QRect Canvas::toScaled(const QRect &widgetArea) const
{
    const double ratio = m_view.devicePixelRatio;
    const QRectF onScreen(QPointF(widgetArea.topLeft()) * ratio, QSizeF(widgetArea.size()) * ratio);
    return onScreen.toAlignedRect().translated(-m_view.origin);
}

/// For all areas at once: each of them may not take the time of a frame.
void Canvas::prepareTiles(const QRegion &widgetRegion)
{
    QList<QRect> areas;
    for (const QRect &area : widgetRegion)
        areas.append(toScaled(area));
    m_tiles.prepare(areas);
}

void Canvas::paintTiles(QPainter &painter, const QRect &widgetArea)
{
    const double ratio = m_view.devicePixelRatio;
    painter.save();
    painter.scale(1.0 / ratio, 1.0 / ratio);
    painter.translate(m_view.origin);
    m_tiles.paint(painter, toScaled(widgetArea));
    painter.restore();
}

QSize Canvas::screenSize() const
{
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

double Canvas::fittingScale() const
{
    const QSizeF picture = m_document.picture().size();
    const QSizeF room = QSizeF(size() - 2 * QSize(fitMargin, fitMargin)) * devicePixelRatioF();
    const double fitting =
            std::min(room.width() / picture.width(), room.height() / picture.height());
    const double most = 2.0 * devicePixelRatioF(); // small pictures are not blown up beyond that
    return std::clamp(fitting, smallestPictureSide / std::max(picture.width(), picture.height()),
                      most);
}

void Canvas::zoomToFit()
{
    m_fits = true;
    if (m_document.hasPicture())
        setView(fittingScale(), {});
}

WidgetPoint Canvas::middle() const
{
    return WidgetPoint(QRectF(rect()).center());
}

void Canvas::zoomToOriginal()
{
    zoomTo(1.0, middle());
}

void Canvas::zoomIn()
{
    zoomTo(m_view.scale * zoomStep, middle());
}

void Canvas::zoomOut()
{
    zoomTo(m_view.scale / zoomStep, middle());
}

void Canvas::zoomTo(double scale, const WidgetPoint &fixedPoint)
{
    moveView(scale, m_view.toPicture(fixedPoint), fixedPoint);
}

void Canvas::moveView(double scale, const PicturePoint &point, const WidgetPoint &to)
{
    if (!m_document.hasPicture())
        return;
    m_fits = false;
    const QSize picture = m_document.picture().size();
    const double least =
            std::min(1.0, smallestPictureSide / std::max(picture.width(), picture.height()));
    const double clamped = std::clamp(scale, least, largestScale);
    setView(clamped, to * m_view.devicePixelRatio - point * clamped);
}

void Canvas::setView(double scale, const QPointF &screenOrigin)
{
    if (m_tiles.scene().devicePixelRatio != devicePixelRatioF()) // also of another screen
        changeScene([this](ViewScene &scene) { scene.devicePixelRatio = devicePixelRatioF(); });
    const bool hasZoomed = scale != m_view.scale;
    m_view.scale = scale;
    m_view.devicePixelRatio = devicePixelRatioF();
    m_view.origin = insideBounds(screenOrigin);
    m_tiles.setScale(scale);
    m_tiles.setViewport(QRect(-m_view.origin, screenSize()));
    update();
    if (hasZoomed)
        Q_EMIT zoomChanged(scale);
}

/// A picture that fits is centred; another one may be moved until its border is in the middle.
QPoint Canvas::insideBounds(const QPointF &screenOrigin) const
{
    const QSizeF picture = QSizeF(m_document.picture().size()) * m_view.scale;
    const QSize room = screenSize();
    const auto bounded = [](double wanted, double length, int space) {
        if (length <= space)
            return int(std::lround((space - length) / 2.0));
        return int(std::lround(std::clamp(wanted, space / 2.0 - length, space / 2.0)));
    };
    return {bounded(screenOrigin.x(), picture.width(), room.width()),
            bounded(screenOrigin.y(), picture.height(), room.height())};
}

void Canvas::resizeEvent(QResizeEvent *)
{
    keepView();
}

void Canvas::keepView()
{
    if (m_fits)
        zoomToFit();
    else
        setView(m_view.scale, m_view.origin);
}
