#include "canvas/Canvas.h"

#include "document/Document.h"
#include "tools/Tool.h"

#include <QGestureEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QTabletEvent>
#include <QWheelEvent>

#include <cmath>
#include <utility>

namespace {

constexpr double wheelStepAngle = 120.0; // eighths of a degree, as mice count
constexpr double zoomPerStep = 1.25;

} // namespace

bool Canvas::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Gesture:
        pinch(static_cast<QGestureEvent &>(*event));
        return true;
    case QEvent::NativeGesture:
        return nativeGesture(static_cast<QNativeGestureEvent &>(*event)) || QWidget::event(event);
    case QEvent::ShortcutOverride: // a shortcut would not tell when the key is released
        if (static_cast<QKeyEvent *>(event)->keyCombination() == m_hidingKey)
            event->accept();
        return QWidget::event(event);
    default:
        return QWidget::event(event);
    }
}

PointerEvent Canvas::pointerEvent(const QSinglePointEvent &event) const
{
    const WidgetPoint point(event.position());
    return {.position = m_view.toPicture(point),
            .widgetPosition = point,
            .button = event.button(),
            .modifiers = event.modifiers(),
            .widgetScale = m_view.widgetScale(),
            .isEraser = event.pointerType() == QPointingDevice::PointerType::Eraser};
}

bool Canvas::pansWith(const QSinglePointEvent &event) const
{
    return event.button() == Qt::MiddleButton ||
           (m_isSpaceHeld && event.button() == Qt::LeftButton);
}

void Canvas::press(const QSinglePointEvent &event)
{
    if (!m_isPressed && pansWith(event)) {
        m_isPanning = true;
        m_panFrom = WidgetPoint(event.position());
        m_panOrigin = m_view.origin;
        updateCursor();
    } else if (m_tool && !m_isPanning) {
        m_isPressed = true;
        m_tool->press(pointerEvent(event));
    }
}

void Canvas::move(const QSinglePointEvent &event)
{
    if (m_isPanning) {
        m_fits = false;
        setView(m_view.scale,
                m_panOrigin + (event.position() - m_panFrom) * m_view.devicePixelRatio);
    } else if (m_tool && event.buttons() == Qt::NoButton) {
        m_tool->hover(pointerEvent(event));
    } else if (m_tool && m_isPressed) {
        m_tool->move(pointerEvent(event));
    }
}

void Canvas::release(const QSinglePointEvent &event)
{
    if (m_isPanning) {
        m_isPanning = false;
        updateCursor();
    } else if (m_tool && m_isPressed && event.buttons() == Qt::NoButton) {
        m_isPressed = false;
        m_tool->release(pointerEvent(event));
    }
}

void Canvas::mousePressEvent(QMouseEvent *event)
{
    press(*event);
}

void Canvas::mouseMoveEvent(QMouseEvent *event)
{
    move(*event);
}

void Canvas::mouseReleaseEvent(QMouseEvent *event)
{
    release(*event);
}

void Canvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!m_tool || pansWith(*event)) {
        press(*event);
        return;
    }
    m_isPressed = true;
    m_tool->doubleClick(pointerEvent(*event));
}

/// Accepted, or Qt would send a mouse event with a whole number for each.
void Canvas::tabletEvent(QTabletEvent *event)
{
    if (event->type() == QEvent::TabletPress)
        press(*event);
    else if (event->type() == QEvent::TabletMove)
        move(*event);
    else if (event->type() == QEvent::TabletRelease)
        release(*event);
    event->accept();
}

void Canvas::wheelEvent(QWheelEvent *event)
{
    const QPoint angle = event->angleDelta(); // with Alt, some systems turn it
    const double steps = (angle.y() != 0 ? angle.y() : angle.x()) / wheelStepAngle;
    if (steps != 0.0 && !(m_tool && m_tool->wheel(steps, event->modifiers())))
        zoomTo(m_view.scale * std::pow(zoomPerStep, steps), WidgetPoint(event->position()));
    event->accept();
}

void Canvas::pinch(QGestureEvent &event)
{
    const auto *const gesture = static_cast<QPinchGesture *>(event.gesture(Qt::PinchGesture));
    if (!gesture)
        return;
    event.accept();
    if (std::exchange(m_isPressed, false) && m_tool)
        m_tool->abandonPress(); // the first finger was there before the second one
    const WidgetPoint centre(mapFromGlobal(gesture->centerPoint()));
    if (gesture->state() == Qt::GestureStarted)
        m_pinchedPoint = m_view.toPicture(centre);
    const bool hasZoomed = gesture->changeFlags().testFlag(QPinchGesture::ScaleFactorChanged);
    moveView(m_view.scale * (hasZoomed ? gesture->scaleFactor() : 1.0), m_pinchedPoint, centre);
}

bool Canvas::nativeGesture(const QNativeGestureEvent &event)
{
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    zoomTo(m_view.scale * (1.0 + event.value()), WidgetPoint(event.position()));
    return true;
}

void Canvas::leaveEvent(QEvent *)
{
    if (m_tool)
        m_tool->leave();
}

void Canvas::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space) {
        m_isSpaceHeld = true;
        updateCursor();
    } else if (event->keyCombination() == m_hidingKey) {
        if (!event->isAutoRepeat())
            holdHidingKey(true);
    } else if (!m_tool || !m_tool->keyPress(*event)) {
        QWidget::keyPressEvent(event);
    }
}

void Canvas::keyReleaseEvent(QKeyEvent *event)
{
    if (event->isAutoRepeat())
        return;
    if (event->key() == Qt::Key_Space) {
        m_isSpaceHeld = false;
        updateCursor();
    } else if (event->key() == m_hidingKey.key()) { // with or without its modifiers
        holdHidingKey(false);
    } else if (!m_tool || !m_tool->keyRelease(*event)) {
        QWidget::keyReleaseEvent(event);
    }
}

/// Their release would go to another widget.
void Canvas::focusOutEvent(QFocusEvent *event)
{
    m_isSpaceHeld = false;
    holdHidingKey(false);
    updateCursor();
    QWidget::focusOutEvent(event);
}

/// Without the key, the cut stays hidden until it is shown again.
void Canvas::holdHidingKey(bool isHeld)
{
    if (std::exchange(m_isHidingKeyHeld, isHeld) != isHeld)
        setHidesMask(isHeld);
}

void Canvas::updateCursor()
{
    if (!m_document.hasPicture())
        unsetCursor();
    else if (m_isPanning)
        setCursor(Qt::ClosedHandCursor);
    else if (m_isSpaceHeld)
        setCursor(Qt::OpenHandCursor);
    else if (m_tool)
        setCursor(m_tool->cursor());
}
