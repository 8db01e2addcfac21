#include "segmentation/RySessionQueue.h"

#include <algorithm>

using Request = RySessionRequest;

void RySessionQueue::append(RySessionRequest request)
{
    const auto isOfItsKind = [kind = request.step.index()](const Request &other) {
        return other.step.index() == kind;
    };
    if (request.is<Request::Hover, Request::FirstCut>())
        std::erase_if(m_requests, isOfItsKind);
    const bool isOnItsOwn = request.is<Request::Stroke, Request::Click>();
    if (isOnItsOwn || m_requests.empty() || !isOfItsKind(m_requests.back()))
        m_requests.push_back(std::move(request));
}

bool RySessionQueue::activateWith(RySessionRequest request)
{
    append(std::move(request));
    return !std::exchange(m_isActive, true);
}

bool RySessionQueue::appendClick(const QPointF &position)
{
    append(Request::Click{position});
    return !m_isActive && hasWorkForTheSessionThread() && !std::exchange(m_isActive, true);
}

std::optional<RySessionRequest> RySessionQueue::takeFirst()
{
    if (m_requests.empty())
        return {};
    std::optional<Request> first = std::move(m_requests.front());
    m_requests.pop_front();
    return first;
}

std::optional<RySessionRequest::Stroke>
RySessionQueue::takeStroke(std::optional<RyImageSegmentation::SegmentationMode> mode)
{
    if (!beginsWithStroke())
        return {};
    auto &first = std::get<Request::Stroke>(m_requests.front().step);
    if (first.mode != mode.value_or(first.mode))
        return {};
    const Request::Stroke stroke = std::move(first);
    m_requests.pop_front();
    return stroke;
}

std::optional<RySessionRequest::Click> RySessionQueue::takeClick()
{
    if (m_isActive || m_requests.empty() || !m_requests.front().is<Request::Click>())
        return {};
    const auto click = std::get<Request::Click>(m_requests.front().step);
    m_requests.pop_front();
    return click;
}

bool RySessionQueue::beginsWithStroke() const
{
    return !m_requests.empty() && m_requests.front().is<Request::Stroke>();
}

void RySessionQueue::removeClicks()
{
    std::erase_if(m_requests, [](const Request &request) { return request.is<Request::Click>(); });
}

void RySessionQueue::endGestures()
{
    for (Request &request : m_requests) {
        if (auto *const stroke = std::get_if<Request::Stroke>(&request.step))
            stroke->isTemporary = false;
    }
}

void RySessionQueue::removeWorkOnRegions()
{
    std::erase_if(m_requests, [](const Request &request) {
        return request.is<Request::FirstCut, Request::Stroke, Request::Click, Request::Hover,
                          Request::Recut>();
    });
}

void RySessionQueue::beginEpoch()
{
    ++m_age.epoch;
    noteChange();
}

void RySessionQueue::noteRestore()
{
    ++m_age.restores;
    noteChange();
}

/// True while requests wait that no thread could be started for.
bool RySessionQueue::hasWorkForTheSessionThread() const
{
    return !std::all_of(m_requests.begin(), m_requests.end(),
                        [](const Request &request) { return request.is<Request::Click>(); });
}

void RySessionQueue::unlock()
{
    const bool isBusyNow = isBusy();
    const bool wasBusy = std::exchange(m_wasBusy, isBusyNow);
    if (isBusyNow && !wasBusy)
        ++m_burst;
    const quint64 burst = m_burst;
    m_mutex.unlock();
    if (wasBusy && !isBusyNow)
        m_fellIdle(burst);
}
