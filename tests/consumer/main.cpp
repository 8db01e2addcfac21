// Includes every installed header, so that a missing one is noticed, and cuts one picture.
#include <RyConfigItem.h>
#include <RyConnectedRuns.h>
#include <RyCpuFeatures.h>
#include <RyIntRange.h>
#include <RyLogger.h>
#include <RyPlatformIndependent.h>
#include <RySafeFile.h>
#include <RySettings.h>
#include <RySettingsLock.h>
#include <RyUndoCommand.h>
#include <RyUndoController.h>
#include <colour/RyColorConverter.h>
#include <colour/RyRgbPixel.h>
#include <regiongrowing/RyEdgeDetectorSobelColor.h>
#include <regiongrowing/RyHistogram3DIndex.h>
#include <regiongrowing/RyRegionGrowingEdge.h>
#include <regiongrowing/RyRegionGrowingEdgeCandidate.h>
#include <scissors/BlockPool.h>
#include <scissors/RyIntelligentScissors.h>
#include <scissors/RyIntelligentScissorsWeightCalculator.h>
#include <scissors/RyIntelligentScissorsWireCalculator.h>
#include <scissors/RyIntelligentScissorsWorker.h>
#include <scissors/RyPointPriorityQueue.h>
#include <scissors/RyScissorsEdgePicture.h>
#include <segmentation/RyImageSegmentation.h>
#include <settings/RyImageCutterSettings.h>

#include <QGuiApplication>
#include <QPainter>

#include <cstdio>

static QImage texturedObject()
{
    QImage picture(200, 150, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    for (int i = 0; i < 60; ++i)
        painter.fillRect(60 + i % 8 * 10, 40 + i / 8 * 10, 10, 10, QColor(200, i * 4, 255 - i * 4));
    return picture;
}

/// A wire along the object's upper side, and what a host can do with the parts.
static bool drawsWires()
{
    RyIntelligentScissors scissors;
    scissors.setup(RyScissorsEdgePicture::edgePicture(texturedObject()));
    scissors.initializeSeed({62, 40});
    while (!scissors.containsWireToPoint({136, 40}))
        QThread::msleep(1);
    RyEdgeDetectorSobelColor detector;
    detector.setup(texturedObject(), QFileInfo());
    detector.run();
    RyPointPriorityQueue queue(10, 10);
    queue.enqueue(3, 4, 0, 9);
    void *const block = BlockPool::get(1);
    BlockPool::returnBlock(block);
    return scissors.bestWire({136, 40}).size() >= 38 && !detector.sobel().isNull() &&
           queue.contains(3, 4) && block;
}

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    RyPlatformIndependent::instance().setCoreCountOverride(3);
    if (RyIntRange(0, 9).splitEvenlyForCpuCores().size() != 3) {
        std::fputs("The core library has more than one instance.\n", stderr);
        return 1;
    }
    // Exported values have their code in the library.
    const RyRegionGrowingEdge edge(RyRegionGrowingFromTo(1, 2), RyYCbCr(1, 2, 3), 4.5);
    RyRegionGrowingEdgeCandidate candidate;
    candidate.addEdge(int(RyHistogram3DIndex(1, 0, 0).hash()));
    if (sortByWeight(edge, edge) || !candidate.hasEnoughEdges())
        return 1;
    if (!drawsWires()) {
        std::fputs("There is no wire along the object.\n", stderr);
        return 1;
    }

    RyImageSegmentation session;
    session.setMaskColor(Qt::black);
    session.setup(texturedObject(), QFileInfo());
    int status = 1;
    QObject::connect(
            &session, &RyImageSegmentation::sendNewMask, &application, [&](const QImage &mask) {
                if (mask.isNull())
                    return;
                status = qAlpha(mask.pixel(95, 75)) == 0 && qAlpha(mask.pixel(5, 5)) ? 0 : 1;
                QCoreApplication::quit();
            });
    QPainterPath lasso;
    lasso.addRect(40, 25, 120, 105);
    session.startThreadWithInitialPath(lasso);
    QGuiApplication::exec();
    if (status != 0)
        std::fputs("The object was not cut out.\n", stderr);
    return status;
}
