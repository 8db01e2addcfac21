#pragma once

#include "segmentation/RyImageSegmentation.h"
#include "support/CutSnapshot.h"
#include "support/Patience.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QList>
#include <QSemaphore>
#include <QThreadPool>

#include <memory>

/// A session and everything it has said, in the order in which a host hears it.
class SessionDriver
{
public:
    SessionDriver()
    {
        session.setMaskColor(Qt::white);
        QObject::connect(&session, &RyImageSegmentation::sendNewMask, &session,
                         [this](const QImage &mask) { masks.append(mask); });
        QObject::connect(&session, &RyImageSegmentation::segmentationProgress, &session,
                         [this](int current, int total) {
                             progress.append({current, total});
                         });
        QObject::connect(&session, &RyImageSegmentation::becameIdle, &session, [this] {
            ++idleCount;
            wasIdleWhileBusy = wasIdleWhileBusy || session.isBusy();
        });
    }

    explicit SessionDriver(const QImage &picture)
        : SessionDriver()
    {
        session.setup(picture, QFileInfo());
        forget();
    }

    void forget()
    {
        masks.clear();
        progress.clear();
    }

    /// Lets the host's event loop turn until the predicate holds; false after a minute.
    template <typename Predicate>
    static bool waitFor(Predicate predicate)
    {
        QElapsedTimer timer;
        timer.start();
        while (!predicate() && timer.elapsed() < patienceMs)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return timer.elapsed() < patienceMs || predicate();
    }

    bool waitForMask()
    {
        return waitFor([this] { return !masks.isEmpty() && !masks.last().isNull(); });
    }

    /// Waits until nothing computes any more and everything that was said has been heard; signals
    /// of work that was overtaken may come late.
    bool settle()
    {
        int idleTurns = 0;
        return waitFor([&] {
            const bool idle = !session.isBusy() && !session.isRunning() &&
                              QThreadPool::globalInstance()->activeThreadCount() == 0;
            idleTurns = idle ? idleTurns + 1 : 0;
            return idleTurns > 2;
        });
    }

    /// Waits until every call is answered and every answer was heard; lassos that were overtaken may
    /// still compute.
    bool answered()
    {
        const int before = idleCount;
        const bool isTold = !session.isBusy() || waitFor([&] { return idleCount > before; });
        QCoreApplication::sendPostedEvents(); // of what was answered before it was asked for here
        return isTold && idleCount <= before + 1 && !session.isBusy() && !wasIdleWhileBusy;
    }

    /// Draws a lasso and waits for its mask; null when none came.
    QImage cut(const QPainterPath &lasso)
    {
        forget();
        session.startThreadWithInitialPath(lasso);
        return settle() && !masks.isEmpty() ? masks.last() : QImage();
    }

    CutSnapshot now() const { return CutSnapshot(*mementoOf(session, false)); }

    QList<QImage> masks;
    QList<std::pair<int, int>> progress;
    int idleCount = 0;
    bool wasIdleWhileBusy = false;
    RyImageSegmentation session; // last: it goes first, and may still speak while it does
};

/// Holds a session's thread for the length of a scope, so that what is asked of it piles up. The
/// thread must have nothing to do at first.
class HeldThread
{
public:
    explicit HeldThread(SessionDriver &driver)
    {
        QObject::connect(
                &driver.session, &RyImageSegmentation::sendNewMask, &driver.session,
                [hold = m_hold] {
                    hold->begun.release();
                    hold->end.acquire();
                },
                Qt::ConnectionType(Qt::DirectConnection | Qt::SingleShotConnection));
        driver.session.startThreadWithPaintSelectionHover({1}, true); // makes it speak
        m_hold->begun.acquire();
    }
    ~HeldThread() { m_hold->end.release(); }
    Q_DISABLE_COPY_MOVE(HeldThread)

private:
    struct Hold
    {
        QSemaphore begun, end;
    };
    const std::shared_ptr<Hold> m_hold = std::make_shared<Hold>();
};
