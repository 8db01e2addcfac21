#include "tools/ScissorsTool.h"

#include "tools/OverlayLine.h"

#include <QPainter>

namespace {

constexpr QColor closingColor{81, 207, 102};
constexpr QColor nearColor{255, 212, 59};
constexpr double nodeSize = 3.5; // radius, in pixels of the canvas
constexpr double markedSize = 5.5;

/// Not known to follow an edge: a guess, or somebody's own line.
void drawThin(QPainter &painter, const QPolygonF &line)
{
    OverlayLine::draw(painter, line, Qt::DotLine);
}

} // namespace

void ScissorsTool::paint(QPainter &painter, const ViewTransform &view) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    const QTransform pictureToWidget = view.pictureToWidget();
    const QTransform cutToWidget = m_pictureToCut.inverted() * pictureToWidget;
    if (!m_beingUsed.isEmpty()) {
        QPolygonF line = pictureToWidget.map(m_beingUsed);
        line.append(line.first());
        OverlayLine::draw(painter, line, Qt::SolidLine);
    }
    paintStretches(painter, cutToWidget);
    paintNodes(painter, cutToWidget);
}

void ScissorsTool::paintStretches(QPainter &painter, const QTransform &cutToWidget) const
{
    for (const WirePath::Stretch &stretch : m_editor.path().stretches()) {
        const QPolygonF line = cutToWidget.map(stretch.line);
        if (stretch.isKnown)
            OverlayLine::draw(painter, line, Qt::SolidLine);
        else
            drawThin(painter, line);
    }
    const WireEditor::Lead &lead = m_editor.lead();
    if (!lead.wire.isEmpty())
        OverlayLine::draw(painter, cutToWidget.map(lead.wire), Qt::SolidLine);
    if (!lead.guess.isEmpty())
        drawThin(painter, cutToWidget.map(lead.guess));
}

void ScissorsTool::paintNodes(QPainter &painter, const QTransform &cutToWidget) const
{
    const WirePath &path = m_editor.path();
    painter.setPen(QPen(OverlayLine::rimColor, 1.0));
    if (m_insertion) {
        painter.setBrush(nearColor);
        painter.drawEllipse(cutToWidget.map(*m_insertion), nodeSize, nodeSize);
    }
    for (qsizetype i = 0; i < path.nodes().size(); ++i) {
        const bool isMarked = i == m_markedNode;
        const bool closes = i == 0 && path.canClose();
        painter.setBrush(isMarked ? (closes ? closingColor : nearColor) : QColor(Qt::white));
        const double size = isMarked ? markedSize : nodeSize;
        painter.drawEllipse(cutToWidget.map(path.nodes().at(i)), size, size);
    }
}
