#pragma once

#include "document/Document.h"
#include "tools/RoundBrush.h"
#include "tools/Tool.h"

#include <optional>

/// Strokes with a round brush: the left button adds to the object, the right one, Alt or a pen's
/// eraser takes away.
class StrokeTool : public Tool
{
    Q_OBJECT

public:
    QCursor cursor() const override { return Qt::BlankCursor; } // the brush itself is shown
    QWidget *createOptions(QWidget *parent) override;

    void press(const PointerEvent &event) override;
    void move(const PointerEvent &event) override;
    void release(const PointerEvent &event) override;
    void hover(const PointerEvent &event) override;
    void leave() override;
    bool keyPress(const QKeyEvent &event) override;
    bool wheel(double steps, Qt::KeyboardModifiers modifiers) override;
    void paint(QPainter &painter, const ViewTransform &view) const override;

    bool hasUnfinishedGesture() const override { return m_isDrawing; }
    QString undoText() const override;
    void undo() override;
    bool escape() override;
    void cancel() override;

protected:
    StrokeTool(Document &document, Document::StrokeKind kind, RyConfigItem<int> &width,
               QObject *parent);

    const RoundBrush &brush() const { return m_brush; }
    std::optional<PicturePoint> pointer() const { return m_pointer; }
    bool isDrawing() const { return m_isDrawing; }
    bool takesAway() const { return m_takesAway; }

    /// The pointer, the brush or its side is another one.
    virtual void brushMoved() {}

private:
    void setPointer(const PointerEvent &event);
    void setDrawing(bool isDrawing);
    QRectF brushArea() const;
    void updateBrush(const QRectF &areaBefore);

    const Document::StrokeKind m_kind;
    RoundBrush m_brush;
    std::optional<PicturePoint> m_pointer; // while it is over the canvas
    bool m_isDrawing = false;
    bool m_takesAway = false;
};
