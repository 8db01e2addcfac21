#pragma once

#include "tools/RegionHighlight.h"
#include "tools/Tool.h"

#include <optional>

/// Moves the region under the pointer to its other side.
class ClickTool : public Tool
{
    Q_OBJECT

public:
    explicit ClickTool(Document &document, QObject *parent = nullptr);

    ToolDescription description() const override;
    QCursor cursor() const override { return Qt::PointingHandCursor; }

    void press(const PointerEvent &event) override;
    void release(const PointerEvent &event) override;
    void abandonPress() override { m_pressed.reset(); }
    void hover(const PointerEvent &event) override;
    void leave() override;
    void paint(QPainter &painter, const ViewTransform &view) const override;

private:
    void highlight(const QSet<int> &regions);

    RegionHighlight m_highlight;
    std::optional<PicturePoint> m_pressed; // until the button is released
};
