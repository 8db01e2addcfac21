#include "scissors/RyIntelligentScissorsWeightCalculator.h"

#include "image/RyConcurrent.h"
#include "scissors/BlockPool.h"
#include "scissors/RyScissorsWeightBlocks.h"
#include "scissors/RyScissorsWeightSource.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <vector>

namespace {

using Blocks = RyScissorsWeightBlocks;
using Source = RyScissorsWeightSource;
using Calculator = RyIntelligentScissorsWeightCalculator;

constexpr quint32 rowsPerBand = 64; // between two looks at whether somebody wants to stop

uchar logistic(int value)
{
    return uchar(255.0 / (std::exp((128 - value) * 0.05) + 1.0));
}

Source::Format format(const uchar *data, Calculator::DataFormat dataFormat)
{
    if (data && dataFormat == Calculator::DataFormat::Grey8)
        return Source::Format::Grey8;
    if (data && dataFormat == Calculator::DataFormat::Rgb32)
        return Source::Format::Rgb32;
    return Source::Format::None;
}

int asProgress(quint64 units)
{
    return int(std::min<quint64>(units, std::numeric_limits<int>::max()));
}

/// Without memory when that is short.
Blocks::Content makeContent(quint32 width, quint32 height)
{
    constexpr std::size_t tile = RyScissorsTiles::points;
    const std::size_t bytes = RyScissorsTiles::count(width, height);
    std::size_t space = bytes + tile - 1;
    void *const memory = BlockPool::get(space);
    void *aligned = memory;
    if (memory)
        std::align(tile, bytes, aligned, space);
    return {memory, static_cast<uchar *>(aligned), width, height};
}

void copyToTiles(const uchar *weights, const Blocks::Content &content, quint32 row)
{
    constexpr quint32 side = RyScissorsTiles::side;
    uchar *out = content.weights +
                 RyScissorsTiles::rowOf(row, RyScissorsTiles::rowLength(content.width));
    quint32 x = 0;
    for (; x + side <= content.width; x += side, out += side * side)
        std::memcpy(out, weights + x, side); // of known length: one instruction
    std::memcpy(out, weights + x, content.width - x);
}

} // namespace

RyIntelligentScissorsWeightCalculator::RyIntelligentScissorsWeightCalculator(
        quint32 width, quint32 height, const Settings &settings)
    : RyIntelligentScissorsWorker(QStringLiteral("Weight Calculator"))
    , m_source(std::make_unique<Source>())
    , m_blocks([&] {
        m_source->width = width;
        m_source->height = height;
        m_source->scale = std::max(1U, quint32(settings.pixelReductionMethod) & 15U);
        return std::make_unique<Blocks>(m_source->gridWidth(), m_source->gridHeight());
    }())
{
    applySettings(settings);
    setTotalProgress(asProgress(m_blocks->count()));
}

RyIntelligentScissorsWeightCalculator::~RyIntelligentScissorsWeightCalculator()
{
    RyIntelligentScissorsWeightCalculator::stop();
}

quint32 RyIntelligentScissorsWeightCalculator::scale() const
{
    return m_source->scale;
}

quint32 RyIntelligentScissorsWeightCalculator::width() const
{
    return m_source->width;
}

quint32 RyIntelligentScissorsWeightCalculator::height() const
{
    return m_source->height;
}

quint32 RyIntelligentScissorsWeightCalculator::widthReduced() const
{
    return m_source->gridWidth();
}

quint32 RyIntelligentScissorsWeightCalculator::heightReduced() const
{
    return m_source->gridHeight();
}

void RyIntelligentScissorsWeightCalculator::setImage(const uchar *data, DataFormat dataFormat,
                                                     quint32 bytesPerLine)
{
    setImage(data, dataFormat, bytesPerLine, width(), height());
}

void RyIntelligentScissorsWeightCalculator::setImage(const uchar *data, DataFormat dataFormat,
                                                     quint32 bytesPerLine, quint32 coveredWidth,
                                                     quint32 coveredHeight)
{
    stop();
    if (!data)
        return;
    m_source->data = data;
    m_source->format = format(data, dataFormat);
    m_source->bytesPerLine = bytesPerLine;
    m_source->coveredWidth = std::min(coveredWidth, width());
    m_source->coveredHeight = std::min(coveredHeight, height());
    m_blocks->open(m_source->blankWeight());
    startThread();
}

void RyIntelligentScissorsWeightCalculator::changeSettings(const Settings &settings)
{
    const uchar *const data = m_source->data; // before stop() forgets it
    stop();
    applySettings(settings);
    if (!data)
        return;
    m_source->data = data;
    m_blocks->open(m_source->blankWeight());
    startThread();
}

void RyIntelligentScissorsWeightCalculator::applySettings(const Settings &settings)
{
    m_source->detectsEdges = settings.edgeDetectionMethod == EdgeDetectionMethod::Sobel;
    for (int value = 0; value < 256; ++value) {
        const uchar processed = settings.postProcessingMethod == PostProcessingtMethod::Logistic
                                        ? logistic(value)
                                        : uchar(value);
        m_source->finish[std::size_t(value)] = settings.invert ? uchar(255 - processed) : processed;
    }
}

void RyIntelligentScissorsWeightCalculator::calculateRegion(quint32 x, quint32 y, quint32 radius)
{
    if (!m_blocks->request(x, y, radius))
        noteFailure();
}

bool RyIntelligentScissorsWeightCalculator::get(quint32 x, quint32 y, quint8 &weight)
{
    if (x >= widthReduced() || y >= heightReduced())
        return false;
    Blocks::Reader reader(*m_blocks);
    const quint32 index = (y >> Blocks::sideBits) * m_blocks->columns() + (x >> Blocks::sideBits);
    const Blocks::Content *const block = reader.block(index, nullptr);
    if (!block)
        return false;
    const quint32 column = x & (Blocks::side - 1);
    const quint32 row = y & (Blocks::side - 1);
    weight = block->contains(column, row) ? block->at(column, row) : reader.blankWeight();
    return true;
}

void RyIntelligentScissorsWeightCalculator::blocksCalculated(QList<QPoint> &calculated,
                                                             QList<QPoint> &pending,
                                                             QList<QPoint> &notRequested) const
{
    const quint32 side = Blocks::side * scale();
    for (quint32 index = 0; index < m_blocks->count(); ++index) {
        const QPoint corner(int(index % m_blocks->columns() * side),
                            int(index / m_blocks->columns() * side));
        const Blocks::State state = m_blocks->state(index);
        if (state == Blocks::State::Calculated)
            calculated.append(corner);
        else if (state == Blocks::State::NotRequested)
            notRequested.append(corner);
        else
            pending.append(corner);
    }
}

/// States first, so that nobody finds a block whose memory goes; readers leave before it goes.
void RyIntelligentScissorsWeightCalculator::stop()
{
    m_blocks->close();
    stop(true);
    m_source->data = nullptr;
    m_blocks->free();
}

bool RyIntelligentScissorsWeightCalculator::prepareRun()
{
    m_blocks->begin();
    return true;
}

void RyIntelligentScissorsWeightCalculator::wakeUp()
{
    m_blocks->interrupt();
}

void RyIntelligentScissorsWeightCalculator::runningThread()
{
    while (const auto index = m_blocks->takeNext()) {
        calculateBlock(*index);
        incrementProgress();
    }
}

void RyIntelligentScissorsWeightCalculator::calculateBlock(quint32 index)
{
    const quint32 left = index % m_blocks->columns() * Blocks::side;
    const quint32 top = index / m_blocks->columns() * Blocks::side;
    const quint32 right = std::min(left + Blocks::side, m_source->blankFromColumn());
    const quint32 bottom = std::min(top + Blocks::side, m_source->blankFromRow());
    if (right <= left || bottom <= top || m_source->format == Source::Format::None)
        return m_blocks->publish(index, {});
    const Blocks::Content content = makeContent(right - left, bottom - top);
    if (content.memory && fill(content, left, top))
        return m_blocks->publish(index, content);
    if (isExecuting())
        noteFailure();
    BlockPool::returnBlock(content.memory);
    m_blocks->giveUp(index);
}

/// False when it was told to stop, or memory was short: the weights are then not complete.
bool RyIntelligentScissorsWeightCalculator::fill(const RyScissorsWeightContent &content,
                                                 quint32 left, quint32 top)
{
    const auto fillBand = [&](qsizetype band) {
        if (!isExecuting())
            return;
        const quint32 first = quint32(band) * rowsPerBand;
        const quint32 end = std::min(first + rowsPerBand, content.height);
        std::vector<uchar> rows(std::size_t(content.width) * (end - first));
        m_source->calculate(left, top + first, left + content.width, top + end, rows.data());
        for (quint32 row = first; row < end; ++row)
            copyToTiles(rows.data() + std::size_t(row - first) * content.width, content, row);
    };
    try {
        RyConcurrent::forEachIndex((content.height + rowsPerBand - 1) / rowsPerBand, fillBand);
    } catch (const std::bad_alloc &) {
        return false;
    }
    return isExecuting();
}
