#include "tools/LassoTool.h"

#include "document/Document.h"
#include "tools/OverlayLine.h"

#include <QKeyEvent>
#include <QLineF>
#include <QPainter>

#include <utility>

namespace {

constexpr double closingRadius = 10.0; // pixels of the canvas
constexpr double dragDistance = 4.0;   // below that a press is a click
constexpr qsizetype fewestPoints = 3;

double lengthBetween(const QPointF &a, const QPointF &b)
{
    return QLineF(a, b).length();
}

/// Encloses both; never null.
QRectF between(const QPointF &a, const QPointF &b)
{
    return QRectF(a, b).normalized().adjusted(-0.5, -0.5, 0.5, 0.5);
}

} // namespace

LassoTool::LassoTool(Document &document, QObject *parent)
    : Tool(document, parent)
{
    connect(&document, &Document::isCuttingChanged, this, [this](bool isCutting) {
        if (!isCutting)
            m_beingCut.clear();
        Q_EMIT overlayChanged({});
    });
}

ToolDescription LassoTool::description() const
{
    return {QStringLiteral("lasso"), tr("Lasso"),
            tr("Draw a line round the object, or click from point to point; double-click or Enter "
               "closes it, Escape takes the last point back."),
            VectorIcon::Shape::Lasso, Qt::Key_L};
}

void LassoTool::press(const PointerEvent &event)
{
    if (event.button != Qt::LeftButton || !document().hasPicture())
        return;
    if (wouldClose(event)) {
        close();
        return;
    }
    m_parts.append(m_points.size());
    m_points.append(event.position);
    m_undone.clear();
    m_pointer = event.position;
    m_pressedOnWidget = event.widgetPosition;
    m_isPressed = true;
    m_isDragging = false;
    changed();
}

void LassoTool::move(const PointerEvent &event)
{
    if (!m_isPressed)
        return;
    m_pointer = event.position;
    if (!m_isDragging && lengthBetween(event.widgetPosition, m_pressedOnWidget) < dragDistance)
        return;
    m_isDragging = true;
    const QPointF last = m_points.last();
    m_points.append(event.position);
    Q_EMIT overlayChanged(between(last, event.position));
}

void LassoTool::release(const PointerEvent &)
{
    if (!std::exchange(m_isPressed, false))
        return;
    const bool isOneLine = m_isDragging && m_parts.size() == 1;
    m_isDragging = false;
    if (isOneLine)
        close();
}

void LassoTool::doubleClick(const PointerEvent &event)
{
    if (event.button == Qt::LeftButton && m_points.size() >= fewestPoints)
        close();
    else
        press(event);
}

void LassoTool::hover(const PointerEvent &event)
{
    const PicturePoint before = std::exchange(m_pointer, event.position);
    if (m_points.isEmpty())
        return;
    for (const QPointF &end : QPolygonF{before, event.position, m_points.first()})
        Q_EMIT overlayChanged(between(m_points.last(), end));
}

bool LassoTool::keyPress(const QKeyEvent &event)
{
    const bool closes = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (closes && m_points.size() >= fewestPoints)
        close();
    if (event.key() == Qt::Key_Backspace && !m_points.isEmpty())
        undo();
    return closes || event.key() == Qt::Key_Backspace;
}

bool LassoTool::wouldClose(const PointerEvent &event) const
{
    return m_points.size() >= fewestPoints &&
           lengthBetween(event.position, m_points.first()) * event.widgetScale < closingRadius;
}

void LassoTool::close()
{
    const QPolygonF lasso = std::exchange(m_points, {});
    const QRectF box = lasso.boundingRect();
    cancel();
    if (lasso.size() < fewestPoints || box.width() < 1.0 || box.height() < 1.0) {
        Q_EMIT message(tr("The lasso encloses nothing."));
        return;
    }
    document().cutLasso(lasso);
    m_beingCut = lasso;
    changed();
}

QString LassoTool::undoText() const
{
    return m_parts.isEmpty() ? QString() : tr("Lasso Point");
}

QString LassoTool::redoText() const
{
    return m_undone.isEmpty() ? QString() : tr("Lasso Point");
}

void LassoTool::undo()
{
    if (m_parts.isEmpty())
        return;
    const qsizetype first = m_parts.takeLast();
    m_undone.append(m_points.mid(first));
    m_points.resize(first);
    m_isPressed = m_isDragging = false;
    changed();
}

void LassoTool::redo()
{
    if (m_undone.isEmpty())
        return;
    m_parts.append(m_points.size());
    m_points += m_undone.takeLast();
    changed();
}

bool LassoTool::escape()
{
    if (m_points.isEmpty())
        return false;
    undo();
    if (m_points.isEmpty())
        cancel();
    return true;
}

void LassoTool::cancel()
{
    m_points.clear();
    m_parts.clear();
    m_undone.clear();
    m_isPressed = m_isDragging = false;
    changed();
}

void LassoTool::changed()
{
    Q_EMIT unfinishedGestureChanged();
    Q_EMIT overlayChanged({});
}

void LassoTool::paint(QPainter &painter, const ViewTransform &view) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    if (!m_points.isEmpty())
        paintOpen(painter, view);
    if (!m_beingCut.isEmpty()) {
        QPolygonF line = view.pictureToWidget().map(m_beingCut);
        line.append(line.first());
        OverlayLine::draw(painter, line, Qt::DashLine);
    }
}

void LassoTool::paintOpen(QPainter &painter, const ViewTransform &view) const
{
    const QPolygonF line = view.pictureToWidget().map(m_points);
    const WidgetPoint pointer = view.toWidget(m_pointer);
    OverlayLine::draw(painter, line, Qt::SolidLine);
    if (m_isDragging && m_parts.size() == 1)
        return;
    OverlayLine::draw(painter, {line.last(), pointer}, Qt::DotLine);
    painter.setPen(QPen(OverlayLine::rimColor, 1.0));
    for (const qsizetype part : m_parts) {
        const bool closes = part == 0 && m_points.size() >= fewestPoints &&
                            lengthBetween(line.first(), pointer) < closingRadius;
        painter.setBrush(closes ? QColor(81, 207, 102) : QColor(Qt::white));
        const double radius = closes ? 5.5 : 3.5;
        painter.drawEllipse(line.at(part), radius, radius);
    }
}
