#include "background/PaintThreads.h"

#include <QThread>
#include <QThreadPool>

void PaintThreads::reserve()
{
    constexpr int reserved =
            4; // sessions take as many as there are cores, and now and then one more
    QThreadPool::globalInstance()->setMaxThreadCount(QThread::idealThreadCount() + reserved);
}
