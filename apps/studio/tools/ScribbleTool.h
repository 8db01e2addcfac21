#pragma once

#include "tools/StrokeTool.h"

/// Paints pixel by pixel, where regions follow the wrong edge.
class ScribbleTool : public StrokeTool
{
    Q_OBJECT

public:
    explicit ScribbleTool(Document &document, QObject *parent = nullptr);

    ToolDescription description() const override;
};
