#include "tools/StrokeTool.h"

#include <QKeyEvent>
#include <QPainter>

StrokeTool::StrokeTool(Document &document, Document::StrokeKind kind, RyConfigItem<int> &width,
                       QObject *parent)
    : Tool(document, parent)
    , m_kind(kind)
    , m_brush(width)
{
    connect(&m_brush, &RoundBrush::widthChanged, this, [this] {
        brushMoved();
        Q_EMIT overlayChanged({});
    });
}

QWidget *StrokeTool::createOptions(QWidget *parent)
{
    return m_brush.createControls(parent);
}

void StrokeTool::press(const PointerEvent &event)
{
    if (m_isDrawing || (event.button != Qt::LeftButton && event.button != Qt::RightButton))
        return;
    setPointer(event);
    if (!document().hasCut()) {
        Q_EMIT message(tr("Draw a lasso round the object first."));
        return;
    }
    if (document().isCutting())
        return;
    m_takesAway = event.button == Qt::RightButton || m_takesAway;
    document().beginStroke({m_kind, double(m_brush.width()), !m_takesAway}, event.position);
    setDrawing(true);
}

void StrokeTool::move(const PointerEvent &event)
{
    if (m_isDrawing)
        document().continueStroke({event.position});
    setPointer(event);
}

void StrokeTool::release(const PointerEvent &event)
{
    if (!m_isDrawing)
        return;
    document().endStroke();
    setDrawing(false);
    setPointer(event);
}

void StrokeTool::hover(const PointerEvent &event)
{
    setPointer(event);
}

void StrokeTool::leave()
{
    const QRectF before = brushArea();
    m_pointer.reset();
    updateBrush(before);
}

bool StrokeTool::keyPress(const QKeyEvent &event)
{
    if (event.key() != Qt::Key_BracketLeft && event.key() != Qt::Key_BracketRight)
        return false;
    m_brush.grow(event.key() == Qt::Key_BracketRight ? 1.0 : -1.0);
    return true;
}

bool StrokeTool::wheel(double steps, Qt::KeyboardModifiers modifiers)
{
    if (!modifiers.testFlag(Qt::ControlModifier))
        return false;
    m_brush.grow(steps);
    return true;
}

void StrokeTool::paint(QPainter &painter, const ViewTransform &view) const
{
    if (m_pointer)
        m_brush.paint(painter, view, *m_pointer);
}

QString StrokeTool::undoText() const
{
    return m_isDrawing ? tr("Stroke") : QString();
}

/// What has been drawn so far becomes a step that can be done again.
void StrokeTool::undo()
{
    if (!m_isDrawing)
        return;
    setDrawing(false);
    document().undo();
}

bool StrokeTool::escape()
{
    if (!m_isDrawing)
        return false;
    cancel();
    return true;
}

void StrokeTool::cancel()
{
    if (!m_isDrawing)
        return;
    document().abandonStroke();
    setDrawing(false);
}

void StrokeTool::setPointer(const PointerEvent &event)
{
    const QRectF before = brushArea();
    m_pointer = event.position;
    if (!m_isDrawing)
        m_takesAway = event.isEraser || event.modifiers.testFlag(Qt::AltModifier);
    updateBrush(before);
}

void StrokeTool::setDrawing(bool isDrawing)
{
    m_isDrawing = isDrawing;
    brushMoved();
    Q_EMIT unfinishedGestureChanged();
    Q_EMIT overlayChanged(brushArea());
}

QRectF StrokeTool::brushArea() const
{
    if (!m_pointer)
        return {};
    const double radius = m_brush.width() / 2.0;
    return {*m_pointer - QPointF(radius, radius), QSizeF(m_brush.width(), m_brush.width())};
}

void StrokeTool::updateBrush(const QRectF &areaBefore)
{
    brushMoved();
    for (const QRectF &area : {areaBefore, brushArea()})
        if (!area.isNull())
            Q_EMIT overlayChanged(area);
}
