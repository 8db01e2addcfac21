#pragma once

#include "segmentation/RyImageSegmentation.h"
#include "segmentation/RyPreparedLasso.h"
#include "segmentation/RyRegions.h"

#include <QPainterPath>
#include <QPointF>
#include <QSet>

#include <type_traits>
#include <utility>
#include <variant>

/// Something that a host has asked a session for and that takes another thread.
struct RySessionRequest
{
    struct FirstCut
    {
        RyPreparedLasso lasso;
        RyRegions regions; ///< of the lasso; those at hand serve where it brings none
        RyImageSegmentation::CutMethod method;
    };
    struct Stroke
    {
        RyImageSegmentation::SegmentationMode mode; ///< PaintSelection or Scribble
        QPainterPath path;
        bool isTemporary; ///< a preview of a gesture
    };
    struct Click
    {
        QPointF position;
    };
    struct Hover
    {
        QSet<int> regions;
    };
    struct Recut
    {};
    struct Recolor
    {};
    struct Invert
    {};
    struct SendMask ///< once more, after masks that were on their way
    {};

    template <typename Step>
    requires(!std::is_same_v<std::remove_cvref_t<Step>, RySessionRequest>)
            RySessionRequest(Step &&newStep)
        : step(std::forward<Step>(newStep))
    {}

    template <typename... Steps>
    bool is() const
    {
        return (std::holds_alternative<Steps>(step) || ...);
    }

    std::variant<FirstCut, Stroke, Click, Hover, Recut, Recolor, Invert, SendMask> step;
};
