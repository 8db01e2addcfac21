#include "canvas/EdgePreview.h"

#include "cutout/EdgeColors.h"
#include "document/Document.h"
#include "document/EditedMask.h"

#include <algorithm>
#include <new>

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
    , m_lane(BackgroundLane::Keeps::Newest)
{
    constexpr int delayMs = 25;
    m_delay.setSingleShot(true);
    m_delay.setInterval(delayMs);
    connect(&m_delay, &QTimer::timeout, this, &EdgePreview::start);
    connect(&document, &Document::maskChanged, this, &EdgePreview::takeMask);
    connect(&document, &Document::pictureChanged, this, &EdgePreview::takeMask);
    connect(&document, &Document::edgeSettingsChanged, this, &EdgePreview::takeSettings);
}

/// Of the rim that is shown with clean colours; 0 for none.
int EdgePreview::rimPixels() const
{
    return m_showsColors ? m_document.edgeSettings().cleanPixels() : 0;
}

bool EdgePreview::isNeeded() const
{
    return m_document.hasCut() && (m_edges != EdgeOptions() || m_rim > 0);
}

void EdgePreview::setShowsColors(bool shows)
{
    m_showsColors = shows;
    if (shows || m_rim == 0) {
        takeSettings();
        return;
    }
    m_rim = 0; // the mask is the same
    if (isNeeded())
        show({m_edge.mask, {}});
    else
        takeMask();
}

void EdgePreview::takeMask()
{
    if (!isNeeded()) {
        giveUp();
        show({m_document.mask(), {}});
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
    m_lane.cancel();
    m_delay.stop();
}

void EdgePreview::start()
{
    const auto work = [source = m_document.cutoutSource(), rim = m_rim](
                              const std::stop_token &stop) { return edited(source, rim, stop); };
    const auto showEdited = [this](const Edge &edge) {
        show({edge.mask, m_rim > 0 ? edge.colors : ImagePyramid()});
    };
    const auto showUnedited = [this](const QString &) { show({m_document.mask(), {}}); };
    m_lane.run(work, showEdited, showUnedited); // better a mask as it was than none
}

/// The lane's thread.
EdgePreview::Edge EdgePreview::edited(const CutoutSource &source, int rimPixels,
                                      const std::stop_token &stop)
{
    const CutoutMask cutout = EditedMask::make(source, stop);
    if (stop.stop_requested())
        return {};
    Edge edge{asBackground(cutout.alpha), {}};
    if (edge.mask.isNull())
        throw std::bad_alloc();
    if (rimPixels > 0)
        edge.colors = ImagePyramid::ofPhotograph(
                EdgeColors::cleaned(source.opened.picture, cutout, rimPixels));
    return edge;
}

void EdgePreview::show(const Edge &edge)
{
    m_edge = edge;
    Q_EMIT changed();
}
