#include "image/RyLabelImage.h"
#include "segmentation/RyInitialCut.h"
#include "segmentation/RySegmentationState.h"
#include "support/Pixels.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QRandomGenerator>
#include <QTest>

#include <array>

/// The first cut's rules and the mask's operations, on states made by hand.
class tst_RySegmentationState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void regionsOnTheOutlineAreBackground();
    void lastRowAndColumnDecideNothing();
    void neighboursConfirmBackground();
    void nothingIsDrawnOnOtherSizes();
    void nothingIsDrawnOutside();
    void invertsAndRecolours();
    void contoursNeedTwoOtherNeighbours_data();
    void contoursNeedTwoOtherNeighbours();
};

/// Regions of 10 × 10 pixels, numbered 1 … from left to right and top to bottom.
static RySegmentationState tiles(int across, int down)
{
    RySegmentationState state;
    const QSize size(across * 10, down * 10);
    state.picture = QImage(size, QImage::Format_ARGB32);
    state.labels = RyLabelImage::create(size);
    state.superPixels = QList<RySuperPixel>(across * down + 1);
    state.pointsOfSuperpixels = QList<QList<QPoint>>(across * down + 1);
    state.maskColor = Qt::red;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int label = y / 10 * across + x / 10 + 1;
            RyLabelImage::row(state.labels, y)[x] = label;
            state.pointsOfSuperpixels[label].append(QPoint(x, y));
        }
    }
    return state;
}

static void cutWith(RySegmentationState &state, const QPainterPath &grownLasso)
{
    state.expandedLasso = RyExpandedLasso(grownLasso, state.picture.rect(), 0);
    RyInitialCut cut(state);
    cut.clear();
    cut.assignForegroundPixels(cut.separateForegroundAndBackgroundSuperPixels(
            state.createImageWithLassoPath(), state.expandedLasso.boundingRect().toRect()));
}

void tst_RySegmentationState::regionsOnTheOutlineAreBackground()
{
    RySegmentationState state = tiles(5, 3);
    // A notch reaches into region 8. Regions 1 and 5 stick out of the lasso's rectangle, where
    // nothing is looked at.
    cutWith(state,
            Samples::closedPath(
                    {{5, 0}, {45, 0}, {45, 30}, {5, 30}, {5, 15}, {22, 15}, {22, 12}, {5, 12}}));
    QCOMPARE(state.backgroundClusters, (QSet<int>{6, 7, 8}));
    QCOMPARE(state.foregroundClusters.size(), 12);
    QCOMPARE(Pixels::foreground(state.foregroundMask), 1200);
    QCOMPARE(state.foregroundMask.pixel(25, 15), 0xFFFF0000U);
}

void tst_RySegmentationState::lastRowAndColumnDecideNothing()
{
    RySegmentationState state = tiles(4, 2);
    // Column 30 is the last one, and not looked at. (A stroke without width still takes a pixel.)
    cutWith(state, Samples::rectangle(0, 0, 30.4, 20));
    QCOMPARE(state.foregroundClusters, (QSet<int>{1, 2, 3, 5, 6, 7}));
    QVERIFY(state.backgroundClusters.isEmpty());
}

void tst_RySegmentationState::neighboursConfirmBackground()
{
    RySegmentationState state = tiles(5, 1);
    state.foregroundMask = QImage(state.picture.size(), QImage::Format_ARGB32_Premultiplied);
    state.foregroundMask.fill(0U);
    state.foregroundClusters = {1, 2, 3, 4};
    state.backgroundClusters = {5};
    state.neighbours = {{1, {2, 3}}, {2, {1, 3, 5}}, {3, {5, 2}}}; // 4 is an island
    const QSet<int> moved = RyInitialCut(state).confirmPossibleBackground({});
    QCOMPARE(moved, (QSet<int>{0, 3, 4})); // 3: exactly half; 2: a third; 3's move does not count
    QCOMPARE(state.foregroundClusters, (QSet<int>{1, 2}));
    QCOMPARE(state.backgroundClusters, (QSet<int>{3, 4, 5}));
    QCOMPARE(Pixels::foreground(state.foregroundMask), 300);

    QCOMPARE(RyInitialCut(state).confirmPossibleBackground({1}), (QSet<int>{0, 1, 2}));
}

void tst_RySegmentationState::nothingIsDrawnOnOtherSizes()
{
    RySegmentationState state = tiles(5, 3);
    state.foregroundMask = QImage(7, 5, QImage::Format_ARGB32_Premultiplied);
    state.foregroundMask.fill(Qt::red);
    state.drawSuperpixelOnForegroundUserMask(8, true);
    state.drawSuperpixelOnForegroundUserMask(999, true);
    QCOMPARE(state.foregroundClusters, (QSet<int>{8, 999}));
    QCOMPARE(Pixels::foreground(state.foregroundMask), 0);

    state.picture = QImage(9, 9, QImage::Format_ARGB32);
    QCOMPARE(Pixels::foreground(state.drawContour()), 81);
}

void tst_RySegmentationState::nothingIsDrawnOutside()
{
    RySegmentationState state = tiles(4, 3);
    RyInitialCut(state).clear();
    state.pointsOfSuperpixels[5] = {{3, 4},   {-1, 5},  {40, 5},           {5, -1},
                                    {5, 30},  {39, 29}, {100000, 100000},  {INT_MIN, INT_MAX},
                                    {-40, 3}, {7, 7},   {INT_MAX, INT_MAX}};
    state.drawSuperpixelOnForegroundUserMask(5, true);
    QImage expected = state.foregroundMask;
    expected.fill(state.maskColor.rgb());
    for (const QPoint &inside : {QPoint(3, 4), QPoint(39, 29), QPoint(7, 7)})
        expected.setPixel(inside, 0);
    QCOMPARE(state.foregroundMask, expected);
}

void tst_RySegmentationState::invertsAndRecolours()
{
    RySegmentationState state = tiles(3, 3);
    cutWith(state, Samples::rectangle(0, 0, 20, 30));
    const RySegmentationState before = state;
    state.invertMaskJob();
    QCOMPARE(Pixels::foreground(state.foregroundMask),
             900 - Pixels::foreground(before.foregroundMask));
    QCOMPARE(state.foregroundClusters, before.backgroundClusters);
    state.invertMaskJob();
    QCOMPARE(state.foregroundMask, before.foregroundMask);
    QCOMPARE(state.foregroundClusters, before.foregroundClusters);

    state.maskColor = QColor(10, 20, 30, 40);
    state.updateMask();
    QCOMPARE(Pixels::foreground(state.foregroundMask), Pixels::foreground(before.foregroundMask));
    QCOMPARE(Pixels::count(state.foregroundMask, [](QRgb p) { return p == 0xFF0A141EU; }),
             900 - Pixels::foreground(before.foregroundMask));
}

void tst_RySegmentationState::contoursNeedTwoOtherNeighbours_data()
{
    QTest::addColumn<int>("labels");
    for (const int labels : {1, 2, 3, 40})
        QTest::addRow("%d labels", labels) << labels;
}

void tst_RySegmentationState::contoursNeedTwoOtherNeighbours()
{
    QFETCH(int, labels);
    QRandomGenerator random(3);
    RySegmentationState state;
    state.picture = QImage(37, 211, QImage::Format_ARGB32);
    state.labels = RyLabelImage::create(state.picture.size());
    for (int y = 0; y < state.labels.height(); ++y) {
        for (int x = 0; x < state.labels.width(); ++x)
            RyLabelImage::row(state.labels, y)[x] =
                    (x / 7 + y / 5) % labels + random.bounded(20) / 19;
    }
    const QImage contour = state.drawContour();
    for (int y = 0; y < contour.height(); ++y) {
        for (int x = 0; x < contour.width(); ++x) {
            int others = 0;
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx)
                    others += contour.rect().contains(x + dx, y + dy) &&
                              state.labels.pixel(x + dx, y + dy) != state.labels.pixel(x, y);
            }
            QCOMPARE(contour.pixel(x, y), others >= 2 ? 0xFFFFFFFFU : 0U);
        }
    }
}

RY_TEST_CLASS(tst_RySegmentationState, QCoreApplication)
#include "tst_RySegmentationState.moc"
