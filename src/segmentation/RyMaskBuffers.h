#pragma once

#include "image/RyTileSet.h"

#include <QHash>
#include <QImage>
#include <QMutex>

#include <cstdlib>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

/**
 * Masks that are made from one another, in memory that is used again.
 *
 * A session sends every mask away as a picture of its own, and copying 48 megabytes for each
 * movement of the pointer takes longer than everything else. Most masks differ from an earlier one,
 * whose memory has come back, in a few tiles: only these are copied.
 *
 * The masks are read-only: whoever writes to one, gets a copy from Qt first. So what the memory
 * holds is known when it comes back.
 *
 * Errors   std::bad_alloc.
 * Threads  safe from every thread; the masks may outlive the session. A draft is its owner's.
 */
class RyMaskBuffers : public std::enable_shared_from_this<RyMaskBuffers>
{
    struct Free
    {
        void operator()(QRgb *pixels) const { std::free(pixels); }
    };
    struct Buffer
    {
        std::unique_ptr<QRgb[], Free> pixels;
        QSize size;
        quint64 content = unknown;
    };

public:
    /// A mask that is being drawn.
    class Draft
    {
    public:
        Draft(Draft &&) = default;
        Draft &operator=(Draft &&) = delete;
        ~Draft();

        int width() const { return m_buffer.size.width(); }
        int height() const { return m_buffer.size.height(); }
        /// Whatever is written has to be marked in touched().
        QRgb *row(int y) { return m_buffer.pixels.get() + qsizetype(y) * width(); }
        RyTileSet &touched() { return m_touched; }

        /// The mask. The draft is empty from then on.
        QImage finish();

    private:
        friend class RyMaskBuffers;
        Draft(std::shared_ptr<RyMaskBuffers> home, Buffer buffer, quint64 parent);

        std::shared_ptr<RyMaskBuffers> m_home;
        Buffer m_buffer;
        quint64 m_parent;
        RyTileSet m_touched;
    };

    static std::shared_ptr<RyMaskBuffers> create();

    /// Begins with a copy of a mask of Format_ARGB32_Premultiplied, which must not be null.
    Draft copyOf(const QImage &mask);
    /// Copies the mask twice for later, if there is no spare memory yet, so that the first masks
    /// made from it take no longer than others.
    void prepare(const QImage &mask);
    /// Gives memory back that holds no mask any more.
    void releaseSpares();
    /// The same, also for memory that comes back later; at the end of a session.
    void retire();

private:
    static constexpr quint64 unknown = 0;

    struct Difference
    {
        quint64 content;
        quint64 parent; // smaller than content
        RyTileSet tiles;
    };
    struct Loan;

    RyMaskBuffers();
    quint64 contentOf(const QImage &mask);
    Buffer takeSpare(const QSize &size, quint64 content, std::optional<RyTileSet> &difference);
    std::optional<RyTileSet> differenceBetween(quint64 a, quint64 b, const QSize &size) const;
    void lend(Buffer &buffer, quint64 parent, RyTileSet touched);
    void giveBack(Buffer buffer);

    QMutex m_mutex; // guards everything below
    std::vector<Buffer> m_spares;
    QHash<const void *, quint64> m_lent; // what the memory of each mask holds
    QImage m_foreign;                    // the mask from elsewhere that was copied last, or null
    quint64 m_foreignContent = unknown;
    std::deque<Difference> m_differences;
    quint64 m_newest = unknown;
    bool m_isRetired = false;
};
