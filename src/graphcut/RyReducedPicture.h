#pragma once

#include "graphcut/RyCutFrame.h"
#include "graphcut/RyLabColor.h"

#include <QImage>

#include <vector>

/**
 * What a frame's cells show: their mean colours, and how deep inside the lasso they lie.
 *
 * Threads  construction fans out over the global pool; immutable afterwards.
 */
class RyReducedPicture
{
public:
    /// The lasso is a picture of the frame's area, Format_Grayscale8: 0 outside. The picture has
    /// 32 bits a pixel; colours are averaged in linear light.
    RyReducedPicture(const QImage &picture, const RyCutFrame &frame, const QImage &lasso);

    const RyCutFrame &frame() const { return m_frame; }
    int cellCount() const { return m_frame.cellCount(); }
    const std::vector<RyLabColor> &colors() const { return m_colors; }

    bool isInside(int cell) const { return m_inside[std::size_t(cell)] != 0; }
    /// Units from the lasso's outline: positive inside, negative outside. Where the lasso runs
    /// along the picture's border there is no outline, unless nothing at all is outside.
    float depth(int cell) const { return m_depths[std::size_t(cell)]; }
    float greatestDepth() const { return m_greatestDepth; } ///< 0 when nothing is inside

    /// In the ring that shows what surrounds the lasso.
    bool isInRing(int cell) const
    {
        return !isInside(cell) && depth(cell) > -float(RyCutFrame::ringUnits);
    }

private:
    void reduceRow(const QImage &picture, const QImage &lasso, int row);
    void measureDepths();
    std::vector<float> distancesInside() const;

    RyCutFrame m_frame;
    std::vector<RyLabColor> m_colors;
    std::vector<quint8> m_inside;
    std::vector<float> m_depths;
    float m_greatestDepth = 0.0F;
};
