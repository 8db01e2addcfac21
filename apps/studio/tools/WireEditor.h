#pragma once

#include "background/BackgroundLane.h"
#include "document/WirePath.h"
#include "tools/WireSearch.h"

#include <QImage>
#include <QList>
#include <QObject>
#include <QRectF>

#include <functional>
#include <optional>

/**
 * A wire that is laid along the edges of a picture, and changed afterwards. Nodes can be set,
 * moved and removed whatever a stretch takes to be found; stretches follow when they are known,
 * and are straight where no wire leads.
 *
 * Input    points in pixels of the picture; nodes lie where wires can end.
 * Threads  the GUI thread. The picture of edges is made beside it.
 */
class WireEditor : public QObject
{
    Q_OBJECT

public:
    explicit WireEditor(QObject *parent = nullptr);

    /// Begins anew. Edges are made once prepare() asks for them.
    void setPicture(const QImage &picture);
    void prepare();

    const WirePath &path() const { return m_path; }
    bool isComplete() const { return path().isClosed() && !path().firstUnknown(); }

    /// From the last node towards the pointer as far as the wire is known, and on in a straight
    /// line that has two points; empty parts where there is nothing of the kind.
    struct Lead
    {
        QPolygonF wire;
        QPolygonF guess;
    };
    const Lead &lead() const { return m_lead; }
    void leadTo(const CutPoint &point, bool isStraight);
    void leadNowhere();

    void addNode(const CutPoint &point, bool isStraight);
    void close(bool isStraight);
    void removeLast();
    void insertNode(const WirePath::Place &place);
    void removeNode(qsizetype node);
    /// Any number of moves are one change.
    void beginMove(qsizetype node);
    void moveTo(const CutPoint &point);
    void endMove();
    bool isMoving() const { return m_moved >= 0; }

    bool canUndo() const { return !m_undo.isEmpty(); }
    bool canRedo() const { return !m_redo.isEmpty(); }
    void undo();
    void redo();
    void clear(); ///< wire and changes
    /// What undo() goes back to, the newest last.
    const QList<WirePath> &changes() const { return m_undo; }
    /// Another one, with such changes.
    void setPath(const WirePath &path, const QList<WirePath> &changes);

Q_SIGNALS:
    void edited();                          ///< a change that was neither undone nor done again
    void changed();                         ///< nodes, or what can be undone
    void areaChanged(const QRectF &area);   ///< in which the wire looks different
    void stretchChanged(qsizetype stretch); ///< a wire was found, or is another one
    void completed();                       ///< closed, and every stretch of it is known

private:
    void note();
    void change(const std::function<void(WirePath &)> &edit);
    void goTo(QList<WirePath> &from, QList<WirePath> &to);
    void announce(const WirePath &before);
    void goOn();
    void findUnknown();
    void updateLead();
    void updateMove();
    void moveStretch(qsizetype stretch, const QPolygonF &wire);
    WirePath::Stretch stretchTo(const CutPoint &node, bool isStraight);
    void takeEdges(const QImage &edges);

    QImage m_picture; // until its edges are made
    QSize m_size;
    WirePath m_path;
    QList<WirePath> m_undo;
    QList<WirePath> m_redo;
    Lead m_lead;
    std::optional<CutPoint> m_pointer;
    bool m_isStraight = false;
    qsizetype m_moved = -1; // node
    WireSearch m_ahead;     // from the last node, or from the one before a moved node
    WireSearch m_behind;    // for stretches that were not waited for, or from the one after it
    BackgroundLane m_lane;
};
