#include "tools/ScribbleTool.h"

#include "settings/StudioSettings.h"

ScribbleTool::ScribbleTool(Document &document, QObject *parent)
    : StrokeTool(document, Document::StrokeKind::Pixels,
                 StudioSettings::instance().pixelBrushWidth(), parent)
{}

ToolDescription ScribbleTool::description() const
{
    return {QStringLiteral("scribble"), tr("Scribble"),
            tr("Paint pixels to add them; with the right button or Alt, to take them away. "
               "[ and ] or Ctrl and the wheel change the size."),
            VectorIcon::Shape::Scribble, Qt::Key_S};
}
