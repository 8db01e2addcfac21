#pragma once

#include "document/Points.h"

#include <QList>
#include <QPolygonF>

#include <optional>

/**
 * A wire as a person lays it: nodes, and a stretch from each to the next, which follows edges or
 * is straight. In pixels of the size that the picture is cut at.
 *
 * A plain value: copies are what undoing goes back to. WireEditor finds out how stretches run.
 */
class WirePath
{
public:
    struct Stretch
    {
        bool isStraight = false;
        bool isKnown = false; ///< else the line is a straight one, until the wire is found
        QPolygonF line;       ///< from its node to the next one, both included
    };
    /// A point of a stretch.
    struct Place
    {
        qsizetype stretch = 0;
        qsizetype index = 0; ///< of the line's point, or of the one before it
        CutPoint point;
    };

    static Stretch straight(const CutPoint &from, const CutPoint &to);
    static Stretch unknown(const CutPoint &from, const CutPoint &to);
    /// The line leads there.
    static Stretch known(const QPolygonF &line);

    bool isEmpty() const { return m_nodes.isEmpty(); }
    bool isClosed() const { return !isEmpty() && m_stretches.size() == m_nodes.size(); }
    const QList<CutPoint> &nodes() const { return m_nodes; }
    /// One less than nodes; as many when the last one leads back to the first node.
    const QList<Stretch> &stretches() const { return m_stretches; }
    std::optional<qsizetype> firstUnknown() const;
    /// All stretches as one line. Closes itself when the wire is closed.
    QPolygonF outline() const;

    void begin(const CutPoint &node);
    void append(const Stretch &stretch); ///< to a new node
    bool canClose() const { return !isClosed() && m_nodes.size() >= fewestNodes; }
    void close(const Stretch &stretch); ///< to the first node
    void removeLast(); ///< node with its stretch; of a closed wire, the closing stretch

    void setStretch(qsizetype index, const Stretch &stretch) { m_stretches[index] = stretch; }
    /// These three change the stretches beside the node, and no others.
    void moveNode(qsizetype node, const CutPoint &position);
    void insertNode(const Place &place);
    void removeNode(qsizetype node);

    qsizetype previous(qsizetype node) const;                                ///< node, or -1
    qsizetype next(qsizetype node) const;                                    ///< node, or -1
    qsizetype stretchBefore(qsizetype node) const { return previous(node); } ///< or -1
    qsizetype stretchAfter(qsizetype node) const { return next(node) < 0 ? -1 : node; }

    /// The nearest one within the radius, or -1.
    qsizetype nodeNear(const CutPoint &point, double radius) const;
    std::optional<Place> placeNear(const CutPoint &point, double radius) const;

private:
    static constexpr qsizetype fewestNodes = 2; // two wires between them may enclose something

    void connectAnew(qsizetype stretch);

    QList<CutPoint> m_nodes;
    QList<Stretch> m_stretches;
};
