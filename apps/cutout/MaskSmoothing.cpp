#include "cutout/MaskSmoothing.h"

#include <cmath>
#include <vector>

namespace {

// As Qt's blur effect has it: an edge shows 2 of 255 levels at 2.5 radii.
constexpr double lastLevel = 2.0 / 255.0;
constexpr double reach = 2.5;

/// Subtracted from all values, so that averages of pure background do not fall towards 0:
/// processors compute several times as slowly with numbers as small as they would become.
constexpr float middle = 127.5F;

/// Shares of the average so far and of the next value in the next average; their sum is 1.
struct Shares
{
    explicit Shares(int radius)
        : before(float(std::pow(lastLevel, 1.0 / (reach * radius))))
        , next(1.0F - before)
    {}

    float mixed(float average, float value) const { return before * average + next * value; }
    /// What the average from the other side is at the last value, if that goes on for ever beyond
    /// it and the average so far ends there.
    float atTheEnd(float average, float value) const
    {
        return value + (average - value) / (1.0F + before);
    }

    float before;
    float next;
};

void blurRow(const uchar *in, float *out, int width, const Shares &shares)
{
    float average = float(in[0]) - middle;
    for (int x = 0; x < width; ++x) {
        average = shares.mixed(average, float(in[x]) - middle);
        out[x] = average;
    }
    average = shares.atTheEnd(average, float(in[width - 1]) - middle);
    out[width - 1] = average;
    for (int x = width - 2; x >= 0; --x) {
        average = shares.mixed(average, out[x]);
        out[x] = average;
    }
}

/// Replaces each row by its average with those above. Returns the last row as it was.
std::vector<float> blurDown(std::vector<float> &plane, int width, const Shares &shares)
{
    std::vector<float> last(plane.end() - width, plane.end());
    for (float *row = plane.data() + width; row != plane.data() + plane.size(); row += width) {
        const float *const above = row - width;
        for (int x = 0; x < width; ++x)
            row[x] = shares.mixed(above[x], row[x]);
    }
    return last;
}

void takeHalf(const float *average, uchar *out, int width)
{
    for (int x = 0; x < width; ++x)
        out[x] = average[x] >= 0.0F ? uchar(255) : uchar(0);
}

} // namespace

bool MaskSmoothing::apply(QImage &mask, int radius, const std::stop_token &stop)
{
    const Shares shares(radius);
    const int width = mask.width();
    const int height = mask.height();
    std::vector<float> plane(size_t(width) * size_t(height));
    const auto row = [&](int y) { return plane.data() + size_t(y) * size_t(width); };
    for (int y = 0; y < height; ++y) {
        if (stop.stop_requested())
            return false;
        blurRow(mask.constScanLine(y), row(y), width, shares);
    }
    std::vector<float> averages = blurDown(plane, width, shares);
    for (int x = 0; x < width; ++x)
        averages[x] = shares.atTheEnd(row(height - 1)[x], averages[x]);
    takeHalf(averages.data(), mask.scanLine(height - 1), width);
    for (int y = height - 2; y >= 0; --y) {
        if (stop.stop_requested())
            return false;
        for (int x = 0; x < width; ++x)
            averages[x] = shares.mixed(averages[x], row(y)[x]);
        takeHalf(averages.data(), mask.scanLine(y), width);
    }
    return true;
}
