#pragma once

#include "document/UsedWire.h"
#include "document/WireUse.h"
#include "tools/Tool.h"
#include "tools/WireEditor.h"

#include <QTransform>

#include <memory>
#include <optional>

/// Lays a wire along edges from click to click; what it encloses is cut out, or is the mask.
class ScissorsTool : public Tool
{
    Q_OBJECT

public:
    explicit ScissorsTool(Document &document, QObject *parent = nullptr);

    ToolDescription description() const override;
    QWidget *createOptions(QWidget *parent) override;
    const WireEditor &editor() const { return m_editor; }

    void press(const PointerEvent &event) override;
    void move(const PointerEvent &event) override;
    void release(const PointerEvent &event) override;
    void abandonPress() override;
    void doubleClick(const PointerEvent &event) override;
    void hover(const PointerEvent &event) override;
    void leave() override;
    bool keyPress(const QKeyEvent &event) override;
    bool keyRelease(const QKeyEvent &event) override;
    void paint(QPainter &painter, const ViewTransform &view) const override;

    bool hasUnfinishedGesture() const override;
    QString undoText() const override;
    QString redoText() const override;
    void undo() override;
    void redo() override;
    bool letsDocumentRedo() const override;
    bool escape() override;
    void cancel() override;

    WireUse use() const { return m_use; }
    void setUse(WireUse use);
    /// Uses what the wire encloses, as soon as all of it is known.
    void apply();

Q_SIGNALS:
    void useChanged(WireUse use);
    void canApplyChanged(bool canApply);

private:
    bool canApply() const { return m_editor.path().isClosed(); }
    void pressLeft(const PointerEvent &event);
    void endPress();
    void closeOrApply();
    void follow(const CutPoint &point, bool isStraight);
    void mark(qsizetype node, const std::optional<CutPoint> &insertion);
    std::optional<WirePath::Place> placeToInsert(const CutPoint &point, double radius,
                                                 bool leadsOn) const;
    qsizetype nodeUnderPointer() const;
    void applyNow();
    void endUse();
    void takeBack(const std::shared_ptr<const UsedWire> &wire);
    CutPoint toCut(const PicturePoint &point) const { return CutPoint(m_pictureToCut.map(point)); }
    QRectF toPicture(const QRectF &cutArea) const;
    /// Of pixels of the widget, in those that are cut.
    double radius(double widgetPixels, const PointerEvent &event) const;
    void paintStretches(QPainter &painter, const QTransform &cutToWidget) const;
    void paintNodes(QPainter &painter, const QTransform &cutToWidget) const;

    WireEditor m_editor;
    WireUse m_use = WireUse::Mask; // wires lie on edges, where lassos had better not
    QTransform m_pictureToCut;     // wires are laid in the size that is cut
    QPolygonF m_beingUsed;         // shown until the cut is there; in pixels of the picture
    std::shared_ptr<const UsedWire> m_inUse;    // meanwhile, until that is a step
    std::shared_ptr<const UsedWire> m_returned; // lies there unchanged, to be used again by redo
    std::optional<CutPoint> m_pointer;          // null when it is elsewhere
    double m_nodeRadius = 0.0;                  // about the pointer
    double m_stretchRadius = 0.0;
    qsizetype m_markedNode = -1;         // under the pointer
    std::optional<CutPoint> m_insertion; // where a click would add a node to the wire
    WidgetPoint m_pressedOnWidget;
    qsizetype m_pressedNode = -1;
    qsizetype m_changesAtPress = 0;
    bool m_isPressed = false;
    bool m_appliesWhenComplete = false;
};
