#pragma once

#include "tools/PointerEvent.h"
#include "tools/ToolDescription.h"
#include "tools/ViewTransform.h"

#include <QCursor>
#include <QObject>
#include <QRectF>
#include <QString>

class Document;
class QKeyEvent;
class QPainter;
class QWidget;

/**
 * What the pointer and the keys do on the canvas. Tools turn them into gestures for the document
 * and draw what is not part of the cut yet.
 *
 * A tool gets press(), any number of move()s, and release(), abandonPress() or cancel(); and
 * hover()s in between.
 * Threads  the GUI thread.
 */
class Tool : public QObject
{
    Q_OBJECT

public:
    /// The document is borrowed.
    explicit Tool(Document &document, QObject *parent = nullptr);

    virtual ToolDescription description() const = 0;
    virtual QCursor cursor() const { return Qt::CrossCursor; }
    /// Its settings, for the tool bar; the parent owns them. Null when there are none.
    virtual QWidget *createOptions(QWidget *parent);

    virtual void press(const PointerEvent &event) = 0;
    virtual void move(const PointerEvent &) {}
    virtual void release(const PointerEvent &) {}
    virtual void abandonPress() { escape(); } ///< it was not meant: two fingers zoom
    virtual void doubleClick(const PointerEvent &event) { press(event); }
    virtual void hover(const PointerEvent &) {}
    virtual void leave() {} ///< the pointer has left the canvas
    /// These say whether they have used the event.
    virtual bool keyPress(const QKeyEvent &event);
    virtual bool keyRelease(const QKeyEvent &event);
    virtual bool wheel(double steps, Qt::KeyboardModifiers modifiers);

    /// Over the picture, in pixels of the canvas.
    virtual void paint(QPainter &, const ViewTransform &) const {}

    /// While a gesture is unfinished, the keys for undo and redo are the tool's.
    virtual bool hasUnfinishedGesture() const { return false; }
    virtual QString undoText() const { return {}; } ///< empty when there is nothing to take back
    virtual QString redoText() const { return {}; }
    virtual void undo() {}
    virtual void redo() {}
    /// Whether the document's next step may be done again.
    virtual bool letsDocumentRedo() const { return !hasUnfinishedGesture(); }
    /// Takes the last part of an unfinished gesture back, as the Escape key does; false when there
    /// is none.
    virtual bool escape() { return false; }
    /// Gives an unfinished gesture up: another tool or another picture comes.
    virtual void cancel() {}

Q_SIGNALS:
    void overlayChanged(const QRectF &area); ///< in pixels of the picture; null for everything
    void unfinishedGestureChanged();
    void wanted();                         ///< there is something to do with this tool
    void message(const QString &sentence); ///< why nothing happens

protected:
    Document &document() const { return m_document; }

private:
    Document &m_document;
};
