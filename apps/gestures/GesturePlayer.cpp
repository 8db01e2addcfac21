#include "gestures/GesturePlayer.h"

#include "cutout/AppError.h"
#include "scissors/RyScissorsEdgePicture.h"
#include "segmentation/RyImageSegmentation.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <new>
#include <utility>

using namespace Qt::StringLiterals;

GesturePlayer::GesturePlayer(RyImageSegmentation &session, const QTransform &toSession)
    : m_session(session)
    , m_toSession(toSession)
    , m_starter(session, toSession)
{}

void GesturePlayer::setPicture(const QImage &picture)
{
    m_picture = picture;
    m_wire.setPicture({});
}

void GesturePlayer::stop()
{
    m_isStopped = true;
    m_wire.stop();
    Q_EMIT stopped();
}

bool GesturePlayer::play(const Gesture &gesture)
{
    if (!m_isStopped) {
        std::visit([this](const auto &step) { apply(step); }, gesture.step);
        waitForAnswer();
    }
    return !m_isStopped;
}

void GesturePlayer::waitForAnswer()
{
    QEventLoop loop;
    connect(&m_session, &RyImageSegmentation::becameIdle, &loop, &QEventLoop::quit);
    connect(this, &GesturePlayer::stopped, &loop, &QEventLoop::quit);
    while (m_session.isBusy() && !m_isStopped)
        loop.exec();
    QCoreApplication::sendPostedEvents(); // what is on its way when all was done at once
}

void GesturePlayer::apply(const Gesture::Lasso &lasso)
{
    m_lasso = lasso.points;
    m_starter.start(lasso);
}

void GesturePlayer::apply(const Gesture::Seed &seed)
{
    if (!m_picture.isNull()) { // sessions without wires are spared the edges
        const QImage edges = RyScissorsEdgePicture::edgePicture(std::exchange(m_picture, {}));
        if (edges.isNull())
            throw std::bad_alloc();
        m_wire.setPicture(edges);
    }
    m_wire.begin(m_toSession.map(seed.point));
}

void GesturePlayer::apply(const Gesture::Wire &wire)
{
    if (!m_wire.continueTo(m_toSession.map(wire.point)) && !m_isStopped)
        throw AppError(u"no wire leads to %1 %2"_s.arg(wire.point.x()).arg(wire.point.y()));
}

void GesturePlayer::apply(const Gesture::Close &)
{
    if (m_wire.close()) {
        const QPolygonF outline = m_wire.outline();
        m_lasso = m_toSession.inverted().map(outline);
        GestureStarter(m_session, {}).start(Gesture::Lasso{outline}); // as it is, without rounding
    } else if (!m_isStopped) {
        throw AppError(u"no wire leads back to its seed"_s);
    }
}
