#include "graphcut/RyBandCut.h"

#include "graphcut/RyContrastCut.h"
#include "graphcut/RyDistanceTransform.h"
#include "graphcut/RyMaskParts.h"
#include "image/RyConcurrent.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace {

constexpr double bandUnits = 5.0; // on both sides of the outline
constexpr double sharpness = 1.0;

std::vector<quint8> cellsOf(const std::vector<RyCutSide> &cells, RyCutSide side)
{
    std::vector<quint8> flags(cells.size());
    std::transform(cells.begin(), cells.end(), flags.begin(),
                   [side](RyCutSide cell) { return quint8(cell == side); });
    return flags;
}

/// What colours say, for the few thousand of them that a band has, five bits a channel.
class RatioTable
{
public:
    explicit RatioTable(const RyColorModels &models)
        : m_models(models)
        , m_ratios(std::size_t(1) << (3 * bits), std::numeric_limits<float>::quiet_NaN())
    {}

    float at(QRgb color)
    {
        constexpr int shift = 8 - bits;
        const int index = ((qRed(color) >> shift) << (2 * bits)) |
                          ((qGreen(color) >> shift) << bits) | (qBlue(color) >> shift);
        float &ratio = m_ratios[std::size_t(index)];
        if (ratio != ratio) {
            constexpr int keep = 0xFF & ~((1 << shift) - 1);
            constexpr int middle = 1 << (shift - 1);
            const QRgb center = qRgb((qRed(color) & keep) + middle, (qGreen(color) & keep) + middle,
                                     (qBlue(color) & keep) + middle);
            const RyLabColor lab = RyLabConverter::instance().fromRgb(center);
            ratio = m_models.logRatio(RyColorBins::inUnits(lab));
        }
        return ratio;
    }

private:
    static constexpr int bits = 5;

    const RyColorModels &m_models;
    std::vector<float> m_ratios;
};

} // namespace

RyBandCut::RyBandCut(const QImage &picture, const QImage &lasso, const RyReducedPicture &reduced,
                     const RyColorModels &models, const RyDepthPrior &prior)
    : m_picture(picture)
    , m_lasso(lasso)
    , m_reduced(reduced)
    , m_models(models)
    , m_prior(prior)
{}

std::vector<RyCutSide> RyBandCut::decided(const std::vector<RyCutSide> &cells,
                                          const RyCutConstraints &constraints) const
{
    const RyCutFrame &frame = m_reduced.frame();
    const QRect area = frame.area();
    const int width = frame.width();
    const std::vector<RyCutSide> banded = withBand(cells);
    std::vector<RyCutSide> sides = enlarged(banded);
    const auto colors = std::make_unique_for_overwrite<RyLabColor[]>(sides.size());
    RyConcurrent::forEachIndex(frame.rows(),
                               [&](qsizetype row) { convertRow(banded, int(row), colors.get()); });
    const auto readRow = [&](int row, int left, int right, std::vector<RyCutSide> &out) {
        out.resize(std::size_t(right - left));
        constraints.read(area.top() + row, area.left() + left, area.left() + right, out.data());
    };
    if (!constraints.isEmpty()) {
        std::vector<RyCutSide> fixed;
        for (int row = 0; row < frame.height(); ++row) {
            readRow(row, 0, width, fixed);
            RyCutSide *const out = sides.data() + std::size_t(row) * std::size_t(width);
            for (int x = 0; x < width; ++x) {
                if (fixed[std::size_t(x)] != RyCutSide::Undecided)
                    out[x] = fixed[std::size_t(x)];
            }
        }
    }
    RatioTable ratios(m_models);
    const auto evidence = [&](int pixel) {
        const int x = pixel % width;
        const int y = pixel / width;
        const auto *const line =
                reinterpret_cast<const QRgb *>(m_picture.constScanLine(area.top() + y));
        return ratios.at(line[area.left() + x]) + m_prior.logOdds(frame.cellAt(x, y));
    };
    sides = RyContrastCut(std::move(sides), colors.get(), width, frame.height(), sharpness)
                    .decided(evidence);
    RyMaskParts::IsFixed isFixed;
    if (!constraints.isEmpty()) {
        isFixed = [&](int row, int left, int right) {
            std::vector<RyCutSide> fixed;
            readRow(row, left, right, fixed);
            return std::any_of(fixed.begin(), fixed.end(),
                               [](RyCutSide side) { return side != RyCutSide::Undecided; });
        };
    }
    RyMaskParts::clean(sides, width, frame.height(), isFixed);
    return sides;
}

/// The cells, of which those near the outline are undecided again.
std::vector<RyCutSide> RyBandCut::withBand(const std::vector<RyCutSide> &cells) const
{
    const RyCutFrame &frame = m_reduced.frame();
    const auto reach = float(bandUnits * frame.cellsPerUnit() + 0.5);
    std::vector<RyCutSide> result = cells;
    for (const RyCutSide side : {RyCutSide::Object, RyCutSide::Background}) {
        const std::vector<float> distances =
                RyDistanceTransform::toSites(cellsOf(cells, side), frame.columns(), frame.rows());
        for (std::size_t cell = 0; cell < cells.size(); ++cell) {
            if (cells[cell] != side && distances[cell] < reach)
                result[cell] = RyCutSide::Undecided;
        }
    }
    return result;
}

/// A pixel for each of the cells' pixels. Outside the lasso nothing is undecided.
std::vector<RyCutSide> RyBandCut::enlarged(const std::vector<RyCutSide> &cells) const
{
    const RyCutFrame &frame = m_reduced.frame();
    std::vector<RyCutSide> sides(std::size_t(frame.width()) * std::size_t(frame.height()));
    RyConcurrent::forEachIndex(frame.height(), [&](qsizetype row) {
        const int y = int(row);
        const uchar *const inside = m_lasso.constScanLine(y);
        RyCutSide *const out = sides.data() + std::size_t(row) * std::size_t(frame.width());
        for (int left = 0; left < frame.width(); left += frame.cellSize()) {
            const int right = std::min(left + frame.cellSize(), frame.width());
            const RyCutSide side = cells[std::size_t(frame.cellAt(left, y))];
            std::fill(out + left, out + right, side);
            for (int x = left; x < right && side == RyCutSide::Undecided; ++x) {
                if (inside[x] == 0)
                    out[x] = RyCutSide::Background;
            }
        }
    });
    return sides;
}

/// The colours of a row of cells, where the band needs them: in undecided cells and next to them.
void RyBandCut::convertRow(const std::vector<RyCutSide> &cells, int row, RyLabColor *colors) const
{
    const RyCutFrame &frame = m_reduced.frame();
    const RyLabConverter &converter = RyLabConverter::instance();
    const QRect area = frame.area();
    const auto isUndecided = [&](int column, int line) {
        return column >= 0 && line >= 0 && column < frame.columns() && line < frame.rows() &&
               cells[std::size_t(line * frame.columns() + column)] == RyCutSide::Undecided;
    };
    const auto isNeeded = [&](int column) {
        for (int line = row - 1; line <= row + 1; ++line) {
            for (int x = column - 1; x <= column + 1; ++x) {
                if (isUndecided(x, line))
                    return true;
            }
        }
        return false;
    };
    const int top = row * frame.cellSize();
    const int bottom = std::min(top + frame.cellSize(), frame.height());
    for (int column = 0; column < frame.columns(); ++column) {
        if (!isNeeded(column))
            continue;
        const int left = column * frame.cellSize();
        const int right = std::min(left + frame.cellSize(), frame.width());
        for (int y = top; y < bottom; ++y) {
            const auto *const pixels =
                    reinterpret_cast<const QRgb *>(m_picture.constScanLine(area.top() + y)) +
                    area.left();
            RyLabColor *const out = colors + std::size_t(y) * std::size_t(frame.width());
            for (int x = left; x < right; ++x)
                out[x] = converter.fromRgb(pixels[x]);
        }
    }
}
