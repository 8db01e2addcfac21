#include "tools/ScissorsTool.h"

#include "document/Document.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineF>
#include <QPushButton>
#include <QUndoStack>

#include <cmath>
#include <utility>

namespace {

constexpr double nodeRadius = 9.0;       // pixels of the canvas, within which a node is meant
constexpr double stretchRadius = 7.0;    // and within which a stretch is
constexpr double nodeDragDistance = 4.0; // below that a press is a click

/// Short numbers for session files; far less than a pixel is lost.
QPolygonF rounded(QPolygonF points)
{
    constexpr double parts = 100.0;
    for (QPointF &point : points)
        point = QPointF(std::round(point.x() * parts), std::round(point.y() * parts)) / parts;
    return points;
}

} // namespace

ScissorsTool::ScissorsTool(Document &document, QObject *parent)
    : Tool(document, parent)
{
    connect(&document, &Document::pictureChanged, this, [this] {
        m_pictureToCut = this->document().opened().scale.reducing();
        m_editor.setPicture(this->document().opened().cuttingPicture);
    });
    connect(&document, &Document::isCuttingChanged, this, [this](bool isCutting) {
        if (!isCutting)
            endUse();
        Q_EMIT overlayChanged({});
    });
    connect(&document, &Document::wireReturned, this, &ScissorsTool::takeBack);
    // After the document's own: by then it has told of wires that come or go by undo and redo.
    connect(document.undoStack(), &QUndoStack::indexChanged, this, [this] {
        m_inUse.reset();
        if (!this->document().undoStack()->canRedo())
            m_returned.reset(); // no redo would use it again
    });
    connect(&m_editor, &WireEditor::edited, this, [this] { m_returned.reset(); });
    connect(&m_editor, &WireEditor::changed, this, [this] {
        mark(nodeUnderPointer(), std::nullopt); // until the pointer moves
        Q_EMIT unfinishedGestureChanged();
        Q_EMIT canApplyChanged(canApply());
    });
    connect(&m_editor, &WireEditor::stretchChanged, this, [this](qsizetype stretch) {
        const QPolygonF line = m_editor.path().stretches().at(stretch).line;
        Q_EMIT overlayChanged(toPicture(line.boundingRect()));
    });
    connect(&m_editor, &WireEditor::areaChanged, this,
            [this](const QRectF &area) { Q_EMIT overlayChanged(toPicture(area)); });
    connect(&m_editor, &WireEditor::completed, this, [this] {
        if (std::exchange(m_appliesWhenComplete, false))
            applyNow();
    });
}

ToolDescription ScissorsTool::description() const
{
    return {QStringLiteral("scissors"),
            tr("Scissors"),
            tr("Click along an edge; the first point or Enter closes, Ctrl goes straight. Drag "
               "points, click the wire for more; Enter again applies."),
            VectorIcon::Shape::Scissors,
            Qt::Key_W,
            {{tr("Click"), tr("sets a point; on the first one, closes the wire")},
             {tr("Ctrl"), tr("leads straight to the next point, across the wire too")},
             {tr("Backspace, Esc"), tr("take the last point back")},
             {tr("Drag"), tr("moves a point")},
             {tr("Click on the wire"), tr("adds a point there")},
             {tr("Right click, Del"), tr("remove the point under the pointer")},
             {tr("Enter"), tr("closes the wire; then uses what it encloses")},
             {tr("Double click inside"), tr("uses what the wire encloses")}}};
}

QWidget *ScissorsTool::createOptions(QWidget *parent)
{
    m_editor.prepare();                        // somebody is about to use it
    auto *const options = new QWidget(parent); // the parent's, as all in it
    auto *const layout = new QHBoxLayout(options);
    layout->setContentsMargins(6, 0, 6, 0);
    auto *const choice = new QComboBox;
    choice->setObjectName(QStringLiteral("wireUse"));
    choice->setAccessibleName(tr("What becomes of the inside"));
    choice->addItem(tr("Take it for the mask"), int(WireUse::Mask));
    choice->addItem(tr("Cut out the object in it"), int(WireUse::Cut));
    choice->addItem(tr("Add it to the mask"), int(WireUse::Add));
    choice->addItem(tr("Take it from the mask"), int(WireUse::TakeAway));
    choice->setCurrentIndex(choice->findData(int(m_use)));
    auto *const label = new QLabel(tr("I&nside"));
    label->setBuddy(choice);
    auto *const button = new QPushButton(tr("A&pply"));
    button->setToolTip(tr("Use the inside of the closed wire (Enter)"));
    button->setEnabled(canApply());
    button->setFocusPolicy(Qt::NoFocus); // keys stay with the wire
    for (QWidget *const part : {static_cast<QWidget *>(label), static_cast<QWidget *>(choice),
                                static_cast<QWidget *>(button)})
        layout->addWidget(part);
    connect(choice, &QComboBox::currentIndexChanged, this,
            [this, choice] { setUse(WireUse(choice->currentData().toInt())); });
    connect(this, &ScissorsTool::useChanged, choice,
            [choice](WireUse use) { choice->setCurrentIndex(choice->findData(int(use))); });
    connect(this, &ScissorsTool::canApplyChanged, button, &QWidget::setEnabled);
    connect(button, &QPushButton::clicked, this, &ScissorsTool::apply);
    return options;
}

void ScissorsTool::setUse(WireUse use)
{
    if (std::exchange(m_use, use) != use)
        Q_EMIT useChanged(use);
}

double ScissorsTool::radius(double widgetPixels, const PointerEvent &event) const
{
    return widgetPixels / event.widgetScale * m_pictureToCut.m11();
}

QRectF ScissorsTool::toPicture(const QRectF &cutArea) const
{
    return m_pictureToCut.inverted().mapRect(
            cutArea.adjusted(-0.5, -0.5, 0.5, 0.5)); // null means all
}

void ScissorsTool::press(const PointerEvent &event)
{
    if (!document().hasPicture() || m_isPressed)
        return;
    m_editor.prepare();
    if (event.button == Qt::LeftButton) {
        m_isPressed = true;
        m_pressedOnWidget = event.widgetPosition;
        m_changesAtPress = m_editor.changes().size();
        pressLeft(event);
    } else if (event.button == Qt::RightButton) {
        const qsizetype node =
                m_editor.path().nodeNear(toCut(event.position), radius(nodeRadius, event));
        if (node >= 0)
            m_editor.removeNode(node);
    }
}

/// A node that is there can be dragged from here on, and so can one that comes by the press.
void ScissorsTool::pressLeft(const PointerEvent &event)
{
    const CutPoint point = toCut(event.position);
    const WirePath &path = m_editor.path();
    m_pressedNode = path.nodeNear(point, radius(nodeRadius, event));
    if (m_pressedNode >= 0)
        return;
    const bool isStraight = event.modifiers.testFlag(Qt::ControlModifier);
    if (const auto place = placeToInsert(point, radius(stretchRadius, event), isStraight)) {
        m_editor.insertNode(*place);
        m_pressedNode = place->stretch + 1;
    } else if (!path.isClosed()) {
        m_editor.addNode(point, isStraight);
        m_pressedNode = path.nodes().size() - 1;
    }
}

/// Where a click adds a node to the wire that is there. Ctrl leads an open one across itself.
std::optional<WirePath::Place> ScissorsTool::placeToInsert(const CutPoint &point, double radius,
                                                           bool leadsOn) const
{
    const WirePath &path = m_editor.path();
    if (leadsOn && !path.isClosed())
        return std::nullopt;
    return path.placeNear(point, radius);
}

void ScissorsTool::move(const PointerEvent &event)
{
    if (!m_isPressed || m_pressedNode < 0)
        return;
    const bool isFar = QLineF(event.widgetPosition, m_pressedOnWidget).length() >= nodeDragDistance;
    if (!m_editor.isMoving() && isFar)
        m_editor.beginMove(m_pressedNode);
    if (m_editor.isMoving())
        m_editor.moveTo(toCut(event.position));
    m_pointer = toCut(event.position);
    m_markedNode = m_pressedNode;
}

void ScissorsTool::release(const PointerEvent &event)
{
    if (!std::exchange(m_isPressed, false))
        return;
    if (m_editor.isMoving())
        m_editor.endMove();
    else if (m_pressedNode == 0 && m_editor.path().canClose())
        m_editor.close(event.modifiers.testFlag(Qt::ControlModifier));
    m_pressedNode = -1;
}

/// Before the wire changes otherwise: a node that is held stays where it is, and may go.
void ScissorsTool::endPress()
{
    m_isPressed = false;
    m_pressedNode = -1;
    m_editor.endMove();
}

void ScissorsTool::abandonPress()
{
    while (m_editor.changes().size() > m_changesAtPress)
        m_editor.undo();
    endPress();
}

/// Its first press and release have had their effect.
void ScissorsTool::doubleClick(const PointerEvent &event)
{
    const WirePath &path = m_editor.path();
    const CutPoint point = toCut(event.position);
    const qsizetype node = path.nodeNear(point, radius(nodeRadius, event));
    const bool isOnWire = node >= 0 || path.placeNear(point, radius(stretchRadius, event));
    if (path.isClosed() && !isOnWire && path.outline().containsPoint(point, Qt::WindingFill))
        apply();
    else if (path.canClose() && node == path.nodes().size() - 1)
        m_editor.close(event.modifiers.testFlag(Qt::ControlModifier));
    else
        press(event);
}

void ScissorsTool::hover(const PointerEvent &event)
{
    if (!document().hasPicture())
        return;
    m_editor.prepare();
    m_nodeRadius = radius(nodeRadius, event);
    m_stretchRadius = radius(stretchRadius, event);
    follow(toCut(event.position), event.modifiers.testFlag(Qt::ControlModifier));
}

void ScissorsTool::follow(const CutPoint &point, bool isStraight)
{
    m_pointer = point;
    const qsizetype node = nodeUnderPointer();
    const auto place = node < 0 ? placeToInsert(point, m_stretchRadius, isStraight) : std::nullopt;
    if (place)
        m_editor.leadNowhere();
    else
        m_editor.leadTo(point, isStraight);
    mark(node, place ? std::optional(place->point) : std::nullopt);
}

qsizetype ScissorsTool::nodeUnderPointer() const
{
    return m_pointer ? m_editor.path().nodeNear(*m_pointer, m_nodeRadius) : -1;
}

/// Instead of what was marked before.
void ScissorsTool::mark(qsizetype node, const std::optional<CutPoint> &insertion)
{
    const auto renew = [this](const CutPoint &point) {
        Q_EMIT overlayChanged(toPicture(QRectF(point, QSizeF())));
    };
    const QList<CutPoint> &nodes = m_editor.path().nodes();
    const qsizetype nodeBefore = std::exchange(m_markedNode, node);
    const auto insertionBefore = std::exchange(m_insertion, insertion);
    for (const qsizetype index : {nodeBefore, node}) {
        if (nodeBefore != node && index >= 0 && index < nodes.size())
            renew(nodes.at(index));
    }
    for (const auto &point : {insertionBefore, insertion}) {
        if (insertionBefore != insertion && point)
            renew(*point);
    }
}

void ScissorsTool::leave()
{
    m_pointer.reset();
    mark(-1, std::nullopt);
}

bool ScissorsTool::keyPress(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        closeOrApply();
        return true;
    case Qt::Key_Backspace:
        endPress();
        m_editor.removeLast();
        return true;
    case Qt::Key_Delete:
        endPress();
        if (const qsizetype node = nodeUnderPointer(); node >= 0)
            m_editor.removeNode(node);
        return true;
    case Qt::Key_Control:
        if (m_pointer)
            follow(*m_pointer, true);
        return false;
    default:
        return false;
    }
}

bool ScissorsTool::keyRelease(const QKeyEvent &event)
{
    if (event.key() == Qt::Key_Control && m_pointer)
        follow(*m_pointer, false);
    return false;
}

void ScissorsTool::closeOrApply()
{
    endPress();
    if (m_editor.path().canClose())
        m_editor.close(false);
    else
        apply();
}

void ScissorsTool::apply()
{
    if (!canApply())
        return;
    const bool changesMask = m_use == WireUse::Add || m_use == WireUse::TakeAway;
    if (changesMask && document().isCutting()) {
        Q_EMIT message(tr("The mask is still being cut."));
        return;
    }
    if (m_use == WireUse::TakeAway && !document().hasCut()) {
        Q_EMIT message(tr("There is no mask yet that something could be taken from."));
        return;
    }
    m_appliesWhenComplete = !m_editor.isComplete();
    if (!m_appliesWhenComplete)
        applyNow();
}

void ScissorsTool::applyNow()
{
    const QPolygonF outline = rounded(m_pictureToCut.inverted().map(m_editor.path().outline()));
    const QRectF box = outline.boundingRect();
    if (box.width() < 1.0 || box.height() < 1.0) {
        Q_EMIT message(tr("The wire encloses nothing."));
        return;
    }
    const auto wire =
            std::make_shared<const UsedWire>(UsedWire{m_editor.path(), m_editor.changes(), m_use});
    cancel();
    document().useWire(outline, m_use, wire);
    if (document().isCutting()) {
        m_beingUsed = outline;
        m_inUse = wire;
    }
    Q_EMIT overlayChanged({});
}

/// A wire whose cut was cancelled can be worked on, unless there is another one by now.
void ScissorsTool::endUse()
{
    m_beingUsed.clear();
    const auto wire = std::exchange(m_inUse, nullptr);
    if (wire && !hasUnfinishedGesture()) {
        endPress();
        m_editor.setPath(wire->path, wire->changes);
    }
}

/// Undoing goes on within it, and redoing uses it again, as long as it is not changed.
void ScissorsTool::takeBack(const std::shared_ptr<const UsedWire> &wire)
{
    if (m_returned)
        cancel();
    if (!wire || hasUnfinishedGesture())
        return;
    Q_EMIT wanted();
    setUse(wire->use);
    m_returned = wire;
    m_editor.prepare();
    m_editor.setPath(wire->path, wire->changes);
}

bool ScissorsTool::hasUnfinishedGesture() const
{
    return !m_editor.path().isEmpty() || m_editor.canRedo();
}

QString ScissorsTool::undoText() const
{
    return m_editor.canUndo() ? tr("Change of the Wire") : QString();
}

QString ScissorsTool::redoText() const
{
    return m_editor.canRedo() ? tr("Change of the Wire") : QString();
}

void ScissorsTool::undo()
{
    m_appliesWhenComplete = false;
    endPress();
    m_editor.undo();
}

void ScissorsTool::redo()
{
    endPress();
    m_editor.redo();
}

bool ScissorsTool::letsDocumentRedo() const
{
    return !hasUnfinishedGesture() || (m_returned && !m_editor.canRedo());
}

bool ScissorsTool::escape()
{
    if (m_editor.path().isEmpty())
        return false;
    m_appliesWhenComplete = false;
    const bool wasMoving = m_editor.isMoving();
    endPress();
    if (wasMoving)
        m_editor.undo(); // to where it was
    else
        m_editor.removeLast();
    if (m_editor.path().isEmpty())
        cancel();
    return true;
}

void ScissorsTool::cancel()
{
    m_appliesWhenComplete = false;
    endPress();
    m_inUse.reset();
    m_returned.reset();
    m_editor.clear();
}
