#include "canvas/EdgePreview.h"

#include "cutout/EdgeColours.h"
#include "document/Document.h"
#include "document/EditedMask.h"

#include <algorithm>

namespace {

/// Opaque where the background is, as sessions send it, with every degree between. In a quarter of
/// the memory, since nobody asks for the colours of a mask.
QImage asBackground(const QImage &alpha)
{
    QImage mask(alpha.size(), QImage::Format_Alpha8);
    for (int y = 0; y < mask.height(); ++y) {
        const uchar *const in = alpha.constScanLine(y);
        std::transform(in, in + mask.width(), mask.scanLine(y),
                       [](uchar value) { return uchar(~value); });
    }
    return mask;
}

} // namespace

EdgePreview::EdgePreview(const Document &document, QObject *parent)
    : QObject(parent)
    , m_document(document)
{
    constexpr int delayMs = 25;
    m_pool.setMaxThreadCount(1); // what was given up ends before the next begins
    m_delay.setSingleShot(true);
    m_delay.setInterval(delayMs);
    connect(&m_delay, &QTimer::timeout, this, &EdgePreview::start);
    connect(&document, &Document::maskChanged, this, &EdgePreview::takeMask);
    connect(&document, &Document::pictureChanged, this, &EdgePreview::takeMask);
    connect(&document, &Document::edgeSettingsChanged, this, &EdgePreview::takeSettings);
}

EdgePreview::~EdgePreview()
{
    m_stop.request_stop();
}

/// Whose colours are to be seen.
int EdgePreview::rimPixels() const
{
    return m_showsColours ? m_document.edgeSettings().cleanPixels() : 0;
}

bool EdgePreview::isNeeded() const
{
    return m_document.hasCut() && (m_edges != EdgeOptions() || m_rim > 0);
}

void EdgePreview::setShowsColours(bool shows)
{
    m_showsColours = shows;
    if (shows || m_rim == 0) {
        takeSettings();
        return;
    }
    m_rim = 0; // the mask is the same
    if (isNeeded())
        show(m_mask, {});
    else
        takeMask();
}

void EdgePreview::takeMask()
{
    if (!isNeeded()) {
        giveUp();
        show(m_document.mask(), {});
    } else if (!m_delay.isActive()) {
        m_delay.start();
    }
}

void EdgePreview::takeSettings()
{
    const EdgeOptions &edges = m_document.edgeSettings().edges();
    if (m_edges == edges && m_rim == rimPixels())
        return;
    m_edges = edges;
    m_rim = rimPixels();
    giveUp();
    takeMask();
}

void EdgePreview::giveUp()
{
    ++m_request;
    m_stop.request_stop();
    m_stop = {};
    m_pool.clear();
    m_delay.stop();
    m_isWorking = false;
    m_isOutdated = false;
}

void EdgePreview::start()
{
    m_isOutdated = m_isWorking;
    if (m_isWorking)
        return;
    m_isWorking = true;
    m_pool.start([this, request = m_request, source = m_document.cutoutSource(), rim = m_rim,
                  stop = m_stop.get_token()] {
        const CutoutMask cutout = EditedMask::make(source, stop);
        const QImage mask = asBackground(cutout.alpha);
        ImagePyramid colours;
        if (rim > 0 && !mask.isNull() && !stop.stop_requested())
            colours = ImagePyramid::ofPhotograph(
                    EdgeColours::cleaned(source.opened.picture, cutout, rim));
        QMetaObject::invokeMethod(
                this, [this, request, mask, colours] { finish(request, mask, colours); },
                Qt::QueuedConnection);
    });
}

void EdgePreview::finish(quint64 request, const QImage &mask, const ImagePyramid &colours)
{
    if (request != m_request)
        return;
    m_isWorking = false;
    if (m_isOutdated)
        start();
    show(mask.isNull() ? m_document.mask() : mask, // without memory, better this than none
         m_rim > 0 ? colours : ImagePyramid());
}

void EdgePreview::show(const QImage &mask, const ImagePyramid &colours)
{
    m_mask = mask;
    m_colours = colours;
    Q_EMIT changed();
}
