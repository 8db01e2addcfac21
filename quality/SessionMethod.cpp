#include "SessionMethod.h"

#include "cutout/AppError.h"
#include "cutout/MaskImage.h"
#include "segmentation/RyImageSegmentation.h"

#include <QCoreApplication>
#include <QEventLoop>

using namespace Qt::StringLiterals;

namespace {

QList<StageTime> stages(const RySegmentationStatistics &statistics)
{
    return {{u"colour planes"_s, statistics.colorPlanesMs},
            {u"graph cut"_s, statistics.graphCutMs},
            {u"superpixels"_s, statistics.superPixelsMs},
            {u"wait for edges"_s, statistics.edgesWaitMs},
            {u"regions"_s, statistics.regionsMs},
            {u"first cut"_s, statistics.firstCutMs}};
}

void waitUntilIdle(const RyImageSegmentation &session)
{
    QEventLoop loop;
    QObject::connect(&session, &RyImageSegmentation::becameIdle, &loop, &QEventLoop::quit);
    while (session.isBusy())
        loop.exec();
    QCoreApplication::sendPostedEvents(); // what is on its way when all was done at once
}

Cut cut(const SessionMethod::Preparation &prepare, const QImage &picture, const QPolygonF &lasso)
{
    Cut result;
    QElapsedTimer timer;
    bool hasMask = false;
    bool hasFailed = false;
    RyImageSegmentation session;
    session.setMaskColor(Qt::white);
    prepare(session);
    waitUntilIdle(session);
    QObject::connect(&session, &RyImageSegmentation::sendNewMask, &session,
                     [&](const QImage &mask) {
                         if (!hasMask) // one that is sent again is the same
                             result.ms = elapsedMs(timer);
                         hasMask = !mask.isNull();
                     });
    QObject::connect(&session, &RyImageSegmentation::failed, &session, [&] { hasFailed = true; });

    QPainterPath path;
    path.addPolygon(lasso);
    path.closeSubpath();
    timer.start();
    session.setup(picture, QFileInfo());
    session.startThreadWithInitialPath(path);
    waitUntilIdle(session);
    if (hasFailed)
        throw AppError(u"the session gave no mask: there is not enough memory"_s);
    result.mask = MaskImage::fromSession(session.maskForeground());
    result.stages = stages(session.statistics());
    return result;
}

CutMethod withSession(const QString &name, const SessionMethod::Preparation &prepare)
{
    return {name, [prepare](const QImage &picture, const QPolygonF &lasso) {
                return cut(prepare, picture, lasso);
            }};
}

} // namespace

CutMethod SessionMethod::classic()
{
    return withSession(u"classic"_s, [](RyImageSegmentation &) {});
}

CutMethod SessionMethod::graph()
{
    return withSession(u"graph"_s, [](RyImageSegmentation &session) {
        session.setCutMethod(RyImageSegmentation::CutMethod::GraphCut);
    });
}
