#pragma once

#include "tools/Tool.h"

#include <QList>
#include <QPolygonF>

/// Draws a lasso, with the button held or from click to click, and has its inside cut out.
class LassoTool : public Tool
{
    Q_OBJECT

public:
    explicit LassoTool(Document &document, QObject *parent = nullptr);

    ToolDescription description() const override;

    void press(const PointerEvent &event) override;
    void move(const PointerEvent &event) override;
    void release(const PointerEvent &event) override;
    void doubleClick(const PointerEvent &event) override;
    void hover(const PointerEvent &event) override;
    bool keyPress(const QKeyEvent &event) override;
    void paint(QPainter &painter, const ViewTransform &view) const override;

    bool hasUnfinishedGesture() const override
    {
        return !m_points.isEmpty() || !m_undone.isEmpty();
    }
    QString undoText() const override;
    QString redoText() const override;
    void undo() override;
    void redo() override;
    bool escape() override;
    void cancel() override;

private:
    bool wouldClose(const PointerEvent &event) const;
    void close();
    void changed();
    void paintOpen(QPainter &painter, const ViewTransform &view) const;

    QPolygonF m_points;
    QList<qsizetype> m_parts;  // where each click or drag begins
    QList<QPolygonF> m_undone; // parts that were taken back, the first of them last
    QPolygonF m_beingCut;      // shown until the cut is there
    PicturePoint m_pointer;
    WidgetPoint m_pressedOnWidget;
    bool m_isDragging = false;
    bool m_isPressed = false;
};
