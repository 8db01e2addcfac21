#include "tools/ClickTool.h"

#include "document/Document.h"

#include <utility>

namespace {

constexpr QColor highlightColor{255, 212, 59, 120};

} // namespace

ClickTool::ClickTool(Document &document, QObject *parent)
    : Tool(document, parent)
    , m_highlight(document)
{
    connect(&document, &Document::regionsChanged, this, &ClickTool::leave);
}

ToolDescription ClickTool::description() const
{
    return {QStringLiteral("click"), tr("Click"),
            tr("Click a region to move it to the other side: object or background."),
            VectorIcon::Shape::Click, Qt::Key_C};
}

void ClickTool::press(const PointerEvent &event)
{
    if (event.button == Qt::LeftButton)
        m_pressed = event.position;
}

/// Where it was pressed, since hands move a little before they release.
void ClickTool::release(const PointerEvent &)
{
    const auto point = std::exchange(m_pressed, std::nullopt);
    if (point && document().hasCut())
        document().toggleRegion(*point);
    else if (point)
        Q_EMIT message(tr("Draw a lasso round the object first."));
}

void ClickTool::hover(const PointerEvent &event)
{
    highlight(document().regionsUnder(event.position, 1.0));
}

void ClickTool::leave()
{
    highlight({});
}

void ClickTool::highlight(const QSet<int> &regions)
{
    const QRectF before = m_highlight.area();
    if (!m_highlight.show(regions, highlightColor))
        return;
    for (const QRectF &area : {before, m_highlight.area()})
        if (!area.isNull())
            Q_EMIT overlayChanged(area);
}

void ClickTool::paint(QPainter &painter, const ViewTransform &view) const
{
    m_highlight.paint(painter, view);
}
