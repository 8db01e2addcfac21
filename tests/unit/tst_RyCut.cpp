#include "image/RyLabelImage.h"
#include "segmentation/RyCut.h"
#include "segmentation/RyInitialCut.h"
#include "segmentation/RyLasso.h"
#include "segmentation/RyRegions.h"
#include "support/Pixels.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QTest>

/// The first cut's rules and the mask's operations, on cuts and regions made by hand.
class tst_RyCut : public QObject
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

namespace {

/// Regions of 10 × 10 pixels, numbered 1 … from left to right and top to bottom.
RyRegions tiles(int across, int down, const QHash<int, QSet<int>> &neighbours = {})
{
    const QSize size(across * 10, down * 10);
    QImage labels = RyLabelImage::create(size);
    QList<QList<QPoint>> points(across * down + 1);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int label = y / 10 * across + x / 10 + 1;
            RyLabelImage::row(labels, y)[x] = label;
            points[label].append(QPoint(x, y));
        }
    }
    return RyRegions({.labels = labels,
                      .points = points,
                      .records = QList<RySuperPixel>(across * down + 1),
                      .neighbours = neighbours});
}

/// A red mask of one colour.
RyCut plainCut(const QSize &size, bool isForeground)
{
    RyCut cut;
    cut.color = Qt::red;
    cut.mask = QImage(size, QImage::Format_ARGB32_Premultiplied);
    cut.mask.fill(isForeground ? 0U : cut.color.rgb());
    return cut;
}

/// Cuts with what is white in an image of the regions' size instead of a grown lasso.
RyCut cutWith(const RyRegions &regions, const QPainterPath &lasso, const QPainterPath &grownLasso)
{
    RyCut cut;
    cut.color = Qt::red;
    cut.lasso = RyPreparedLasso(lasso, regions.labels().size());
    RyInitialCut first(cut, regions);
    first.clear();
    first.assignForegroundPixels(first.separateForegroundAndBackgroundSuperPixels(
            RyLasso::onBlack(regions.labels().size(), [&grownLasso](QPainter &painter) {
                RyLasso::fill(painter, grownLasso);
            })));
    return cut;
}

} // namespace

void tst_RyCut::regionsOnTheOutlineAreBackground()
{
    // A notch reaches into region 8. Regions 1 and 5 stick out of the grown lasso.
    const RyCut cut = cutWith(
            tiles(5, 3), Samples::rectangle(10, 0, 30, 30),
            Samples::closedPath(
                    {{5, 0}, {45, 0}, {45, 30}, {5, 30}, {5, 15}, {22, 15}, {22, 12}, {5, 12}}));
    QCOMPARE(cut.background, (QSet<int>{1, 5, 6, 7, 8, 10, 11, 15}));
    QCOMPARE(cut.foreground, (QSet<int>{2, 3, 4, 9, 12, 13, 14}));
    QCOMPARE(Pixels::foreground(cut.mask), 700);
    QCOMPARE(cut.mask.pixel(25, 15), 0xFFFF0000U);
}

void tst_RyCut::lastRowAndColumnDecideNothing()
{
    // The grown lasso's rectangle ends at column 30 and row 19, which are not looked at.
    const RyCut cut = cutWith(tiles(4, 2), Samples::rectangle(0, 0, 21, 20),
                              Samples::rectangle(0, 0, 30, 19));
    QCOMPARE(cut.foreground, (QSet<int>{1, 2, 3, 5, 6, 7}));
    QVERIFY(cut.background.isEmpty());
}

void tst_RyCut::neighboursConfirmBackground()
{
    RyCut cut = plainCut({50, 10}, true);
    cut.foreground = {1, 2, 3, 4};
    cut.background = {5};
    const RyRegions regions =
            tiles(5, 1, {{1, {2, 3}}, {2, {1, 3, 5}}, {3, {5, 2}}}); // 4: an island
    const QSet<int> moved = RyInitialCut(cut, regions).confirmPossibleBackground({});
    QCOMPARE(moved, (QSet<int>{0, 3, 4})); // 3: exactly half; 2: a third; 3's move does not count
    QCOMPARE(cut.foreground, (QSet<int>{1, 2}));
    QCOMPARE(cut.background, (QSet<int>{3, 4, 5}));
    QCOMPARE(Pixels::foreground(cut.mask), 300);

    QCOMPARE(RyInitialCut(cut, regions).confirmPossibleBackground({1}), (QSet<int>{0, 1, 2}));
}

void tst_RyCut::nothingIsDrawnOnOtherSizes()
{
    const RyRegions regions = tiles(5, 3);
    RyCut cut = plainCut({7, 5}, false);
    cut.draw(regions, 8, true);
    cut.draw(regions, 999, true);
    QCOMPARE(cut.foreground, (QSet<int>{8, 999}));
    QCOMPARE(Pixels::foreground(cut.mask), 0);
    QCOMPARE(Pixels::foreground(regions.outlines({9, 9})), 81);
}

void tst_RyCut::nothingIsDrawnOutside()
{
    const RyRegions regions({.labels = RyLabelImage::create({40, 30}),
                             .points = QList<QList<QPoint>>(6, {{3, 4},
                                                                {-1, 5},
                                                                {40, 5},
                                                                {5, -1},
                                                                {5, 30},
                                                                {39, 29},
                                                                {100000, 100000},
                                                                {INT_MIN, INT_MAX},
                                                                {-40, 3},
                                                                {7, 7},
                                                                {INT_MAX, INT_MAX}})});
    RyCut cut = plainCut({40, 30}, false);
    QImage expected = cut.mask;
    cut.draw(regions, 5, true);
    for (const QPoint &inside : {QPoint(3, 4), QPoint(39, 29), QPoint(7, 7)})
        expected.setPixel(inside, 0);
    QCOMPARE(cut.mask, expected);
}

/// The painter's composition defines what becomes of every alpha, also in what hosts have made.
void tst_RyCut::invertsAndRecolours()
{
    RyCut cut = plainCut({256, 2}, false);
    cut.foreground = {1};
    cut.background = {2};
    for (int alpha = 0; alpha < 256; ++alpha)
        cut.mask.setPixel(alpha, 1, qPremultiply(qRgba(90, 200, 255 - alpha, alpha)));
    const auto painted = [&cut](QPainter::CompositionMode mode, const QColor &color) {
        QImage image = cut.mask;
        QPainter painter(&image);
        painter.setCompositionMode(mode);
        painter.fillRect(image.rect(), color);
        return image;
    };
    const QImage recolored = painted(QPainter::CompositionMode_SourceIn, QColor(10, 20, 30));
    cut.recolor(QColor(10, 20, 30));
    QCOMPARE(cut.mask, recolored);
    const QImage inverted = painted(QPainter::CompositionMode_SourceOut, QColor(10, 20, 30));
    cut.invert();
    QCOMPARE(cut.mask, inverted);
    QCOMPARE(cut.foreground, QSet{2});
    QCOMPARE(cut.background, QSet{1});
}

void tst_RyCut::contoursNeedTwoOtherNeighbours_data()
{
    QTest::addColumn<int>("labels");
    for (const int labels : {1, 2, 3, 40})
        QTest::addRow("%d labels", labels) << labels;
}

void tst_RyCut::contoursNeedTwoOtherNeighbours()
{
    QFETCH(int, labels);
    QRandomGenerator random(3);
    QImage image = RyLabelImage::create({37, 211});
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            RyLabelImage::row(image, y)[x] = (x / 7 + y / 5) % labels + random.bounded(20) / 19;
    }
    const QImage contour = RyRegions({.labels = image}).outlines(image.size());
    for (int y = 0; y < contour.height(); ++y) {
        for (int x = 0; x < contour.width(); ++x) {
            int others = 0;
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx)
                    others += contour.rect().contains(x + dx, y + dy) &&
                              image.pixel(x + dx, y + dy) != image.pixel(x, y);
            }
            QCOMPARE(contour.pixel(x, y), others >= 2 ? 0xFFFFFFFFU : 0U);
        }
    }
}

RY_TEST_CLASS(tst_RyCut, QCoreApplication)
#include "tst_RyCut.moc"
