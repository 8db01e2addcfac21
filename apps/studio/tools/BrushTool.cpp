#include "tools/BrushTool.h"

#include "settings/StudioSettings.h"
#include "tools/RegionHighlight.h"

BrushTool::BrushTool(Document &document, QObject *parent)
    : StrokeTool(document, Document::StrokeKind::Regions,
                 StudioSettings::instance().regionBrushWidth(), parent)
    , m_highlight(document)
{
    connect(&document, &Document::regionsChanged, this, &BrushTool::brushMoved);
    connect(&document, &Document::isCuttingChanged, this, &BrushTool::brushMoved);
}

ToolDescription BrushTool::description() const
{
    return {QStringLiteral("brush"), tr("Region Brush"),
            tr("Paint over regions to add them; with the right button or Alt, to take them away. "
               "[ and ] or Ctrl and the wheel change the size."),
            VectorIcon::Shape::Brush, Qt::Key_B};
}

void BrushTool::brushMoved()
{
    const bool previews = pointer() && !isDrawing() && !document().isCutting();
    const QRectF before = m_highlight.area();
    const QSet<int> regions =
            previews ? document().regionsUnder(*pointer(), brush().width()) : QSet<int>();
    if (!m_highlight.show(regions,
                          takesAway() ? RegionHighlight::takenAway : RegionHighlight::added))
        return;
    for (const QRectF &area : {before, m_highlight.area()})
        if (!area.isNull())
            Q_EMIT overlayChanged(area);
}

void BrushTool::paint(QPainter &painter, const ViewTransform &view) const
{
    m_highlight.paint(painter, view);
    StrokeTool::paint(painter, view);
}
