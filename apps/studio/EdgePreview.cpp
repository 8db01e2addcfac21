#include "EdgePreview.h"

#include "Document.h"
#include "EditedMask.h"

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

bool EdgePreview::isNeeded() const
{
    return m_document.hasCut() && m_edges != EdgeOptions();
}

void EdgePreview::takeMask()
{
    if (!isNeeded()) {
        giveUp();
        show(m_document.mask());
    } else if (!m_delay.isActive()) {
        m_delay.start();
    }
}

void EdgePreview::takeSettings()
{
    if (m_edges == m_document.edgeSettings().edges())
        return;
    m_edges = m_document.edgeSettings().edges();
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
    m_pool.start([this, request = m_request, source = m_document.cutoutSource(),
                  stop = m_stop.get_token()] {
        const QImage mask = asBackground(EditedMask::make(source, stop).alpha);
        QMetaObject::invokeMethod(
                this, [this, request, mask] { finish(request, mask); }, Qt::QueuedConnection);
    });
}

void EdgePreview::finish(quint64 request, const QImage &mask)
{
    if (request != m_request)
        return;
    m_isWorking = false;
    if (m_isOutdated)
        start();
    show(mask.isNull() ? m_document.mask() : mask); // without memory, better this than none
}

void EdgePreview::show(const QImage &mask)
{
    m_mask = mask;
    Q_EMIT maskChanged();
}
