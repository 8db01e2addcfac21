#pragma once

#include "tools/RegionHighlight.h"
#include "tools/StrokeTool.h"

/// Moves whole regions to one side, and shows beforehand which ones.
class BrushTool : public StrokeTool
{
    Q_OBJECT

public:
    explicit BrushTool(Document &document, QObject *parent = nullptr);

    ToolDescription description() const override;
    void paint(QPainter &painter, const ViewTransform &view) const override;

protected:
    void brushMoved() override;

private:
    RegionHighlight m_highlight;
};
