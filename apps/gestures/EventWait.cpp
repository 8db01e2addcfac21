#include "gestures/EventWait.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>

using namespace std::chrono_literals;

void EventWait::until(const std::function<bool()> &isDone)
{
    QTimer pulse;
    pulse.start(1ms);
    while (!isDone())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}
