#include "gestures/GestureWords.h"

#include "gestures/GestureFields.h"

#include <array>

namespace {

constexpr int fewestOfAPolygon = 3; // that enclose an area

void describeStep(GestureFields &fields, Gesture::Lasso &lasso)
{
    fields.points(lasso.points, fewestOfAPolygon);
}

void describeStep(GestureFields &fields, Gesture::Click &click)
{
    fields.point(click.point);
}

void describeStep(GestureFields &fields, Gesture::Stroke &stroke)
{
    fields.brushWidth(stroke.width);
    fields.choice(stroke.isForeground, "fg", "bg");
    fields.choice(stroke.isTemporary, "temporary", "final");
    fields.points(stroke.points, 1);
}

void describeStep(GestureFields &fields, Gesture::Area &area)
{
    fields.choice(area.isForeground, "fg", "bg");
    fields.points(area.points, fewestOfAPolygon);
}

void describeStep(GestureFields &fields, Gesture::Hover &hover)
{
    fields.choice(hover.isForeground, "fg", "bg");
    fields.point(hover.point);
    fields.diameter(hover.diameter);
}

void describeStep(GestureFields &fields, Gesture::Color &color)
{
    fields.color(color.color);
}

void describeStep(GestureFields &fields, Gesture::Method &method)
{
    fields.choice(method.isGraphCut, "graph", "classic");
}

void describeStep(GestureFields &fields, Gesture::Seed &seed)
{
    fields.point(seed.point);
}

void describeStep(GestureFields &fields, Gesture::Wire &wire)
{
    fields.point(wire.point);
}

void describeStep(GestureFields &, const Gesture::Plain &) {}

} // namespace

std::span<const GestureWords::Word> GestureWords::all()
{
    static const std::array words = {
            Word{"lasso", "lasso x1 y1 x2 y2 x3 y3 ...", Gesture(Gesture::Lasso())},
            Word{"click", "click x y", Gesture(Gesture::Click())},
            Word{"scribble", "scribble fg|bg temporary|final x1 y1 ...",
                 Gesture(Gesture::Scribble())},
            Word{"paint", "paint fg|bg temporary|final x1 y1 ...", Gesture(Gesture::Paint())},
            Word{"area", "area fg|bg x1 y1 x2 y2 x3 y3 ...", Gesture(Gesture::Area())},
            Word{"hover", "hover fg|bg x y diameter", Gesture(Gesture::Hover())},
            Word{"color", "color #rrggbb", Gesture(Gesture::Color())},
            Word{"method", "method graph|classic", Gesture(Gesture::Method())},
            Word{"seed", "seed x y", Gesture(Gesture::Seed())},
            Word{"wire", "wire x y", Gesture(Gesture::Wire())},
            Word{"close", "close", Gesture(Gesture::Close())},
            Word{"recut", "recut", Gesture(Gesture::Recut())},
            Word{"invert", "invert", Gesture(Gesture::Invert())},
            Word{"undo", "undo", Gesture(Gesture::Undo())},
            Word{"redo", "redo", Gesture(Gesture::Redo())},
    };
    return words;
}

void GestureWords::describe(GestureFields &fields, Gesture &gesture)
{
    std::visit([&fields](auto &step) { describeStep(fields, step); }, gesture.step);
}
