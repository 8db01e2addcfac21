#include "segmentation/RyMaskBuffers.h"

#include "RyImageMemory.h"
#include "RyIntRange.h"
#include "image/RyConcurrent.h"

#include <QMutexLocker>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr std::size_t mostSpares = 2;
constexpr std::size_t mostDifferences = 32; // older masks are copied as a whole

void copyRect(QRgb *to, const QRgb *from, int width, const QRect &rect)
{
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        const qsizetype first = qsizetype(y) * width + rect.left();
        std::memcpy(to + first, from + first, std::size_t(rect.width()) * sizeof(QRgb));
    }
}

/// On all cores: in new memory, half of the time goes by with the system clearing it.
void copyWhole(QRgb *to, const QImage &mask)
{
    const auto *const from = reinterpret_cast<const QRgb *>(mask.constBits());
    const int width = mask.width();
    QList<RyIntRange> bands = RyIntRange::rowsOfImage(mask).splitEvenlyForCpuCores();
    RyConcurrent::blockingMap(bands, [=](const RyIntRange &rows) {
        copyRect(to, from, width, QRect(0, rows.first, width, rows.countElements()));
    });
}

} // namespace

/// What a mask takes along, so that its memory finds its way back.
struct RyMaskBuffers::Loan
{
    std::shared_ptr<RyMaskBuffers> home;
    Buffer buffer;

    static void end(void *loan)
    {
        const std::unique_ptr<Loan> own(static_cast<Loan *>(loan));
        own->home->giveBack(std::move(own->buffer));
    }
};

RyMaskBuffers::Draft::Draft(std::shared_ptr<RyMaskBuffers> home, Buffer buffer, quint64 parent)
    : m_home(std::move(home))
    , m_buffer(std::move(buffer))
    , m_parent(parent)
    , m_touched(m_buffer.size)
{}

RyMaskBuffers::Draft::~Draft()
{
    if (!m_buffer.pixels)
        return;
    m_buffer.content = unknown;
    m_home->giveBack(std::move(m_buffer));
}

QImage RyMaskBuffers::Draft::finish()
{
    auto loan = std::make_unique<Loan>();
    m_home->lend(m_buffer, m_parent, std::move(m_touched));
    loan->buffer = std::move(m_buffer);
    loan->home = std::move(m_home);
    const Buffer &buffer = loan->buffer;
    const auto *const bytes = reinterpret_cast<const uchar *>(buffer.pixels.get());
    const QSize size = buffer.size;
    return {bytes,
            size.width(),
            size.height(),
            qsizetype(size.width()) * qsizetype(sizeof(QRgb)),
            QImage::Format_ARGB32_Premultiplied,
            Loan::end,
            loan.release()};
}

RyMaskBuffers::RyMaskBuffers()
{
    m_spares.reserve(mostSpares + 1); // giving back must not fail
}

std::shared_ptr<RyMaskBuffers> RyMaskBuffers::create()
{
    return std::shared_ptr<RyMaskBuffers>(new RyMaskBuffers);
}

RyMaskBuffers::Draft RyMaskBuffers::copyOf(const QImage &mask)
{
    const int width = mask.width();
    const quint64 content = contentOf(mask);
    std::optional<RyTileSet> difference;
    Buffer buffer = takeSpare(mask.size(), content, difference);
    if (!buffer.pixels) {
        const std::size_t bytes = std::size_t(mask.sizeInBytes());
        buffer.pixels.reset(static_cast<QRgb *>(RyImageMemory::allocate(bytes)));
        if (!buffer.pixels)
            throw std::bad_alloc();
        buffer.size = mask.size();
    }
    QRgb *const to = buffer.pixels.get();
    const auto *const from = reinterpret_cast<const QRgb *>(mask.constBits());
    if (difference)
        difference->forEachRun([=](const QRect &rect) { copyRect(to, from, width, rect); });
    else
        copyWhole(to, mask);
    return {shared_from_this(), std::move(buffer), content};
}

/// A mask from elsewhere, such as the first cut's, is held on to while it is being copied from: as
/// long as it is shared, nobody can change it.
quint64 RyMaskBuffers::contentOf(const QImage &mask)
{
    QImage replaced; // goes after the lock
    const QMutexLocker lock(&m_mutex);
    const quint64 lent = m_lent.value(mask.constBits(), unknown);
    if (lent == unknown && m_foreign.constBits() == mask.constBits())
        return m_foreignContent;
    replaced.swap(m_foreign);
    if (lent != unknown)
        return lent;
    m_foreign = mask;
    return m_foreignContent = ++m_newest;
}

/// The spare that differs from the mask in known tiles, if there is one, else any of its size.
RyMaskBuffers::Buffer RyMaskBuffers::takeSpare(const QSize &size, quint64 content,
                                               std::optional<RyTileSet> &difference)
{
    const QMutexLocker lock(&m_mutex);
    auto best = m_spares.end();
    for (auto spare = m_spares.begin(); spare != m_spares.end() && !difference; ++spare) {
        if (spare->size != size)
            continue; // of another picture; it goes when others come back
        difference = differenceBetween(spare->content, content, size);
        best = spare;
    }
    if (best == m_spares.end())
        return {};
    Buffer buffer = std::move(*best);
    m_spares.erase(best);
    return buffer;
}

std::optional<RyTileSet> RyMaskBuffers::differenceBetween(quint64 a, quint64 b,
                                                          const QSize &size) const
{
    RyTileSet tiles(size);
    // Parents are older than their children, so going back from the younger one meets the other's
    // line where both parted.
    while (a != b) {
        quint64 &younger = a > b ? a : b;
        const auto it =
                std::find_if(m_differences.begin(), m_differences.end(),
                             [younger](const Difference &step) { return step.content == younger; });
        if (it == m_differences.end())
            return {};
        tiles.unite(it->tiles);
        younger = it->parent;
    }
    return tiles;
}

void RyMaskBuffers::lend(Buffer &buffer, quint64 parent, RyTileSet touched)
{
    const QMutexLocker lock(&m_mutex);
    buffer.content = ++m_newest;
    m_lent.insert(buffer.pixels.get(), buffer.content);
    m_differences.push_back({buffer.content, parent, std::move(touched)});
    if (m_differences.size() > mostDifferences)
        m_differences.pop_front();
}

void RyMaskBuffers::giveBack(Buffer buffer)
{
    Buffer surplus; // freed without the lock: it takes its time
    const QMutexLocker lock(&m_mutex);
    m_lent.remove(buffer.pixels.get());
    m_spares.push_back(std::move(buffer));
    if (m_isRetired || m_spares.size() > mostSpares) {
        surplus = std::move(m_spares.front());
        m_spares.erase(m_spares.begin());
    }
}

void RyMaskBuffers::prepare(const QImage &mask)
{
    {
        const QMutexLocker lock(&m_mutex);
        if (!m_spares.empty() || mask.isNull())
            return;
    }
    const QImage first = copyOf(mask).finish(); // both spare from the end of this on
    const QImage second = copyOf(mask).finish();
}

void RyMaskBuffers::releaseSpares()
{
    std::array<Buffer, mostSpares + 1> released; // all of this goes after the lock
    QImage foreign;
    const QMutexLocker lock(&m_mutex);
    std::move(m_spares.begin(), m_spares.end(), released.begin());
    m_spares.clear();
    foreign.swap(m_foreign);
}

void RyMaskBuffers::retire()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_isRetired = true;
    }
    releaseSpares();
}
