#include "tools/ToolSet.h"

#include "tools/BrushTool.h"
#include "tools/ClickTool.h"
#include "tools/LassoTool.h"
#include "tools/ScissorsTool.h"
#include "tools/ScribbleTool.h"

ToolSet::ToolSet(Document &document, QObject *parent)
    : QObject(parent)
{
    add<LassoTool>(document);
    add<ScissorsTool>(document);
    add<BrushTool>(document);
    add<ClickTool>(document);
    add<ScribbleTool>(document);
    m_current = m_tools.first();
}

void ToolSet::setCurrent(Tool *tool)
{
    if (tool == m_current)
        return;
    m_current->cancel();
    m_current->leave();
    m_current = tool;
    Q_EMIT currentChanged(tool);
}
