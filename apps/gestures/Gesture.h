#pragma once

#include <QColor>
#include <QPointF>
#include <QPolygonF>

#include <variant>

/// One thing that a user does to a cut. Coordinates and diameters are in pixels of the picture,
/// whatever the size it is cut or shown at.
struct Gesture
{
    static constexpr double mostCoordinate = 1e6; ///< in both directions, as files take them
    static constexpr double mostBrushWidth = 1e5;

    /// Begins a cut anew. The polygon closes itself.
    struct Lasso
    {
        QPolygonF points;
    };
    struct Click
    {
        QPointF point;
    };
    /// A line drawn with a round brush; a dot where it has one point only.
    struct Stroke
    {
        double width = 12.0; ///< the brush's diameter
        bool isForeground = true;
        bool isTemporary = false; ///< in the middle of a stroke, of which more is to come
        QPolygonF points;
    };
    struct Scribble : Stroke
    {};
    struct Paint : Stroke
    {};
    /// Puts all that a polygon encloses on one side, pixel by pixel. It closes itself.
    struct Area
    {
        bool isForeground = true;
        QPolygonF points;
    };
    struct Hover
    {
        bool isForeground = true;
        QPointF point;
        int diameter = 1;
    };
    struct Color ///< of the mask
    {
        QColor color;
    };
    struct Method ///< of the cuts that follow
    {
        bool isGraphCut = false; ///< as sessions cut at first, they do not
    };
    /// Begins a wire that follows edges.
    struct Seed
    {
        QPointF point;
    };
    /// Leads the wire on to this point.
    struct Wire
    {
        QPointF point;
    };
    /// What is said in one word.
    struct Plain
    {};
    struct Recut : Plain ///< cuts the last lasso anew, under all corrections
    {};
    struct Invert : Plain
    {};
    struct Close : Plain ///< leads the wire back to its seed, and takes it for a lasso
    {};
    struct Undo : Plain
    {};
    struct Redo : Plain
    {};

    using Step = std::variant<Lasso, Click, Scribble, Paint, Area, Hover, Color, Method, Seed, Wire,
                              Close, Recut, Invert, Undo, Redo>;

    explicit Gesture(Step what);

    /// As lassos and closed wires do.
    bool beginsCut() const;

    Step step;
};
