#pragma once

#include "canvas/EdgePreview.h"
#include "canvas/MaskLayer.h"
#include "canvas/TileCache.h"
#include "canvas/ViewMode.h"
#include "tools/ViewTransform.h"

#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <functional>

class Document;
class QGestureEvent;
class QNativeGestureEvent;
class QSinglePointEvent;
class QTabletEvent;
class Tool;
struct PointerEvent;

/**
 * Shows a document's picture and cut at any scale, and hands what pointers do there to a tool.
 *
 * Threads  the GUI thread.
 */
class Canvas : public QWidget
{
    Q_OBJECT

public:
    /// The document is borrowed.
    explicit Canvas(Document &document, QWidget *parent = nullptr);

    void setTool(Tool *tool); ///< borrowed, or null
    /// The key that hides the cut while it is held.
    void setHidingKey(QKeyCombination key) { m_hidingKey = key; }

    ViewMode viewMode() const { return m_tiles.scene().mode; }
    void setViewMode(ViewMode mode);
    void setOverlayColor(const QColor &color);
    void setBackgroundColor(const QColor &color);
    void setShowsContours(bool shows);
    void setHidesMask(bool hides);
    bool hidesMask() const { return m_tiles.scene().hidesMask; }

    const ViewTransform &view() const { return m_view; }
    /// Pixels of the screen for each pixel of the picture; the point stays where it is.
    void zoomTo(double scale, const WidgetPoint &fixedPoint);

    /// True when all that is visible has been drawn as it is now.
    bool isUpToDate() const
    {
        return m_edgePreview.isUpToDate() && m_mask.isUpToDate() && m_tiles.isUpToDate();
    }

    QSize sizeHint() const override { return {900, 620}; }

public Q_SLOTS:
    void zoomIn();
    void zoomOut();
    void zoomToFit(); ///< and stays so while the canvas changes its size
    void zoomToOriginal();

Q_SIGNALS:
    void zoomChanged(double scale);
    void hidesMaskChanged(bool hides);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void showPicture();
    void changeScene(const std::function<void(ViewScene &)> &change);
    ImagePyramid pictureFor(const ViewScene &scene) const;
    void takeEdge();
    void takeMask(const QRect &maskArea);
    void updateTiles(const QRect &scaledArea);
    void updateOverlay(const QRectF &pictureArea);

    double fittingScale() const;
    QSize screenSize() const; // of the canvas
    WidgetPoint middle() const;
    void setView(double scale, const QPointF &screenOrigin);
    /// Brings a point of the picture to one of the canvas.
    void moveView(double scale, const PicturePoint &point, const WidgetPoint &to);
    QPoint insideBounds(const QPointF &screenOrigin) const;

    PointerEvent pointerEvent(const QSinglePointEvent &event) const;
    void press(const QSinglePointEvent &event);
    void move(const QSinglePointEvent &event);
    void release(const QSinglePointEvent &event);
    bool pansWith(const QSinglePointEvent &event) const;
    void pinch(QGestureEvent &event);
    bool nativeGesture(const QNativeGestureEvent &event);
    void keepView();
    void updateCursor();
    void holdHidingKey(bool isHeld);
    QRect toScaled(const QRect &widgetArea) const;
    void prepareTiles(const QRegion &widgetRegion);
    void paintTiles(QPainter &painter, const QRect &widgetArea);

    Document &m_document;
    QPointer<Tool> m_tool;
    EdgePreview m_edgePreview;
    MaskLayer m_mask;
    TileCache m_tiles;
    ViewTransform m_view;
    bool m_fits = true;
    bool m_isCleaned = false; // the edge that was heard of last
    QKeyCombination m_hidingKey = Qt::Key_H;
    bool m_isHidingKeyHeld = false;
    bool m_isSpaceHeld = false;
    bool m_isPanning = false;
    bool m_isPressed = false;    // the tool has heard a press, and will hear its release
    PicturePoint m_pinchedPoint; // between two fingers
    WidgetPoint m_panFrom;
    QPoint m_panOrigin; // the view's, then
};
