#include "graphcut/RyCutConstraints.h"
#include "graphcut/RyDistanceTransform.h"
#include "graphcut/RyGraphCut.h"
#include "segmentation/RyGraphFirstCut.h"
#include "support/CutScenes.h"
#include "support/Samples.h"
#include "support/TestClasses.h"
#include "support/TestPictures.h"

#include <QTest>
#include <QThreadPool>

using CutScenes::Shape;
using CutScenes::Surface;

/// The whole method: a picture and a lasso in, the sides of pixels out.
class tst_RyGraphCut : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsObjects_data();
    void findsObjects();
    void cutsMirroredPicturesAlike_data();
    void cutsMirroredPicturesAlike();
    void repeatsItself();
    void fallsBackToTheShrunkLasso_data();
    void fallsBackToTheShrunkLasso();
    void leavesSomethingInEveryLasso_data();
    void leavesSomethingInEveryLasso();
    void takesStrangeLassos_data();
    void takesStrangeLassos();
    void obeysConstraints_data();
    void obeysConstraints();
    void leavesAloneWhatIsFarFromCorrections();
};

namespace {

QRect boundsOf(const QImage &filled)
{
    QRect bounds;
    for (int y = 0; y < filled.height(); ++y)
        for (int x = 0; x < filled.width(); ++x)
            if (filled.constScanLine(y)[x])
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

/// Object 255, in the picture's size.
QImage sidesAsMask(const RyGraphCut &graphCut, const RyCutConstraints &constraints)
{
    const std::vector<RyCutSide> sides = graphCut.cut(constraints);
    QImage mask(graphCut.picture().size(), QImage::Format_Grayscale8);
    mask.fill(0);
    const QRect area = graphCut.frame().area();
    for (std::size_t i = 0; i < sides.size(); ++i) {
        const int x = area.left() + int(i) % area.width();
        mask.scanLine(area.top() + int(i) / area.width())[x] =
                sides[i] == RyCutSide::Object ? 255 : 0;
    }
    return mask;
}

QImage cut(const QImage &picture, const QImage &lasso, const RyCutConstraints &constraints = {})
{
    const RyCutFrame frame(picture.size(), boundsOf(lasso).adjusted(-1, -1, 1, 1));
    return sidesAsMask({picture, frame, lasso.copy(frame.area())}, constraints);
}

/// What lies deeper in a lasso than some units.
QImage shrunk(const QImage &lasso, double units)
{
    std::vector<quint8> outside;
    for (int y = 0; y < lasso.height(); ++y)
        for (int x = 0; x < lasso.width(); ++x)
            outside.push_back(lasso.constScanLine(y)[x] == 0);
    const double unit = std::max(lasso.width(), lasso.height()) / 481.0;
    const auto depths = RyDistanceTransform::toSites(outside, lasso.width(), lasso.height());
    QImage result(lasso.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < lasso.height(); ++y)
        for (int x = 0; x < lasso.width(); ++x)
            result.scanLine(y)[x] =
                    double(depths[std::size_t(y * lasso.width() + x)]) > units * unit ? 255 : 0;
    return result;
}

qint64 objectPixels(const QImage &mask)
{
    qint64 count = 0;
    for (int y = 0; y < mask.height(); ++y)
        count += std::count_if(mask.constScanLine(y), mask.constScanLine(y) + mask.width(),
                               [](uchar pixel) { return pixel != 0; });
    return count;
}

} // namespace

Q_DECLARE_METATYPE(Shape)
Q_DECLARE_METATYPE(Surface)

void tst_RyGraphCut::findsObjects_data()
{
    QTest::addColumn<Shape>("shape");
    QTest::addColumn<Surface>("surface");
    QTest::addColumn<double>("margin");
    const std::pair<const char *, Shape> shapes[] = {
            {"blob", Shape::Blob}, {"ring", Shape::Ring}, {"star", Shape::Star}};
    const std::pair<const char *, Surface> surfaces[] = {{"textured", Surface::Textured},
                                                         {"gradients", Surface::Gradients},
                                                         {"noisy", Surface::Noisy}};
    for (const auto &[shapeName, shape] : shapes)
        for (const auto &[surfaceName, surface] : surfaces)
            for (const double margin : {6.0, 12.0, 24.0})
                QTest::addRow("%s, %s, %g units", shapeName, surfaceName, margin)
                        << shape << surface << margin;
}

void tst_RyGraphCut::findsObjects()
{
    QFETCH(Shape, shape);
    QFETCH(Surface, surface);
    QFETCH(double, margin);
    const QSize size(481, 361);
    const QPointF centre(230, 170);
    const QImage truth = CutScenes::truth(shape, size, centre, 90);
    const QImage lasso = CutScenes::filled(size, CutScenes::outline(shape, centre, 90, margin));
    const QImage mask = cut(CutScenes::painted(truth, surface, 1), lasso);
    const double overlap = CutScenes::overlap(mask, truth);
    // What lies deep inside counts as object until a user says otherwise, holes too.
    const double floor = shape == Shape::Ring ? 0.74 : 0.98;
    QVERIFY2(overlap > floor, qPrintable(QString::number(overlap)));
}

void tst_RyGraphCut::cutsMirroredPicturesAlike_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QImage>("lasso");
    const auto add = [](const char *name, const QImage &picture, const QPainterPath &lasso) {
        QTest::newRow(name) << picture << CutScenes::filled(picture.size(), lasso.toFillPolygon());
    };
    const QImage coffee =
            Samples::photograph(QStringLiteral("coffee.png")).convertToFormat(QImage::Format_RGB32);
    add("photograph", coffee, Samples::lasso(QStringLiteral("coffee")));
    add("small photograph", coffee.scaledToWidth(160, Qt::SmoothTransformation),
        TestPictures::ellipse({77, 53}, 60, 48));
    add("noise", TestPictures::noise(200, 150, 4), TestPictures::ellipse({100, 75}, 70, 50));
}

void tst_RyGraphCut::cutsMirroredPicturesAlike()
{
    QFETCH(QImage, picture);
    QFETCH(QImage, lasso);
    const QImage straight = cut(picture, lasso);
    for (const auto &[x, y] : {std::pair(true, false), {false, true}}) {
        const QImage mirrored = cut(picture.mirrored(x, y), lasso.mirrored(x, y)).mirrored(x, y);
        const double overlap = CutScenes::overlap(straight, mirrored);
        QVERIFY2(overlap > 0.97, qPrintable(QString::number(overlap)));
    }
}

void tst_RyGraphCut::repeatsItself()
{
    const QImage truth = CutScenes::truth(Shape::Star, {300, 220}, {150, 110}, 70);
    const QImage picture = CutScenes::painted(truth, Surface::Noisy, 9);
    const QImage lasso =
            CutScenes::filled(truth.size(), CutScenes::outline(Shape::Star, {150, 110}, 70, 9));
    QThreadPool &pool = *QThreadPool::globalInstance();
    const int usual = pool.maxThreadCount();
    const QImage expected = cut(picture, lasso);
    for (const int cores : {1, 2, 3, 8}) {
        const TestPictures::Machine machine(cores);
        pool.setMaxThreadCount(cores);
        const QImage mask = cut(picture, lasso);
        pool.setMaxThreadCount(usual);
        QCOMPARE(mask, expected);
    }
}

void tst_RyGraphCut::fallsBackToTheShrunkLasso_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<double>("radius"); // of the lasso, in units
    for (const double radius : {30.0, 60.0, 150.0})
        for (const int longSide : {120, 360}) {
            const QSize size(longSide, longSide * 3 / 4);
            QImage flat(size, QImage::Format_RGB32);
            flat.fill(qRgb(120, 140, 90));
            QTest::addRow("flat, %d pixels, radius %g", longSide, radius) << flat << radius;
            QTest::addRow("noise, %d pixels, radius %g", longSide, radius)
                    << TestPictures::noise(size.width(), size.height(), 3) << radius;
        }
}

void tst_RyGraphCut::fallsBackToTheShrunkLasso()
{
    QFETCH(QImage, picture);
    QFETCH(double, radius);
    const double pixels = radius * picture.width() / 481.0;
    const QPointF centre(picture.width() / 2.0, picture.height() / 2.0);
    const QImage lasso = CutScenes::filled(
            picture.size(), TestPictures::ellipse(centre, pixels, pixels).toFillPolygon());
    const QImage mask = cut(picture, lasso);
    double overlap = 0.0;
    for (int margin = 3; margin <= 30; margin += 3) // whichever was estimated
        overlap = std::max(overlap, CutScenes::overlap(mask, shrunk(lasso, margin)));
    QVERIFY2(overlap > 0.6, qPrintable(QString::number(overlap)));
}

void tst_RyGraphCut::leavesSomethingInEveryLasso_data()
{
    QTest::addColumn<QImage>("picture");
    for (const QSize &size :
         {QSize(1, 1), QSize(1, 60), QSize(60, 1), QSize(2, 3), QSize(50, 40), QSize(481, 90)}) {
        QImage flat(size, QImage::Format_RGB32);
        flat.fill(Qt::darkCyan);
        QTest::addRow("flat, %d x %d", size.width(), size.height()) << flat;
        QTest::addRow("noise, %d x %d", size.width(), size.height())
                << TestPictures::noise(size.width(), size.height(), 3);
    }
}

/// However small or thin: an object, and no more than the lasso.
void tst_RyGraphCut::leavesSomethingInEveryLasso()
{
    QFETCH(QImage, picture);
    const QRect all = picture.rect();
    for (const QPoint &at : {all.center(), all.bottomRight()})
        for (const QSize &size :
             {QSize(1, 1), QSize(2, 2), QSize(1, 9), QSize(30, 1), QSize(5, 5), QSize(3, 40),
              QSize(20, 20), QSize(90, 7), QSize(60, 60), QSize(2000, 2000)}) {
            QImage lasso(picture.size(), QImage::Format_Grayscale8);
            lasso.fill(0);
            QRect rect(at, size);
            rect.moveCenter(at);
            QPainter(&lasso).fillRect(rect, Qt::white);
            const qint64 covered = objectPixels(lasso);
            const qint64 object = objectPixels(cut(picture, lasso));
            QVERIFY2(0 < object && object <= covered,
                     qPrintable(QStringLiteral("%1 x %2 at %3, %4: %5 of %6 pixels")
                                        .arg(size.width())
                                        .arg(size.height())
                                        .arg(at.x())
                                        .arg(at.y())
                                        .arg(object)
                                        .arg(covered)));
        }
}
void tst_RyGraphCut::takesStrangeLassos_data()
{
    QTest::addColumn<QPainterPath>("lasso");
    QTest::addColumn<bool>("hasObject");
    const QSizeF size(140, 90);
    QTest::newRow("none") << QPainterPath() << false;
    QTest::newRow("a point") << Samples::closedPath({{70, 45}}) << false;
    QTest::newRow("a line") << Samples::closedPath({{20, 20}, {110, 70}}) << false;
    QTest::newRow("between two rows") << Samples::rectangle(20, 30.6, 90, 0.3) << false;
    QTest::newRow("a row") << Samples::rectangle(20, 30, 90, 1) << true;
    QTest::newRow("beside") << Samples::rectangle(200, 20, 50, 50) << false;
    QTest::newRow("on the border") << Samples::rectangle(139.4, 20, 50, 50) << true;
    QTest::newRow("round everything") << Samples::rectangle(-30, -30, 200, 150) << true;
    QTest::newRow("nearly everything") << Samples::rectangle(1, 1, 138, 88) << true;
    QTest::newRow("far away") << Samples::rectangle(-1e15, -1e15, 2e15, 2e15) << true;
    QTest::newRow("half of it, far") << Samples::rectangle(70, -1e9, 1e12, 1e12) << true;
    QTest::newRow("self-crossing")
            << Samples::closedPath({{10, 10}, {130, 80}, {130, 10}, {10, 80}}) << true;
    QTest::newRow("two loops") << Samples::rectangle(5, 5, 40, 70) +
                                          Samples::rectangle(90, 10, 45, 60)
                               << true;
}

void tst_RyGraphCut::takesStrangeLassos()
{
    QFETCH(QPainterPath, lasso);
    QFETCH(bool, hasObject);
    const QImage picture = Samples::photograph(QStringLiteral("coffee.png"), 140)
                                   .copy(0, 0, 140, 90)
                                   .convertToFormat(QImage::Format_ARGB32);
    const auto graphCut = RyGraphFirstCut::analyse(picture, lasso);
    QCOMPARE(graphCut != nullptr, hasObject);
    if (!graphCut)
        return;
    const qint64 object = objectPixels(sidesAsMask(*graphCut, {}));
    QVERIFY(0 < object && object < 140 * 90);
}

void tst_RyGraphCut::obeysConstraints_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QRectF>("lassoRect");
    const QImage coffee = Samples::photograph(QStringLiteral("coffee.png"), 300)
                                  .convertToFormat(QImage::Format_RGB32);
    QImage flat(coffee.size(), QImage::Format_RGB32);
    flat.fill(Qt::darkYellow);
    for (const QRectF &rect :
         {QRectF(35, 5, 210, 190), QRectF(100, 80, 30, 25), QRectF(60, 90, 150, 0.9)}) {
        QTest::addRow("photograph, %g x %g", rect.width(), rect.height()) << coffee << rect;
        QTest::addRow("flat, %g x %g", rect.width(), rect.height()) << flat << rect;
    }
}

/// To the pixel, wherever they lie, and without giving up the object.
void tst_RyGraphCut::obeysConstraints()
{
    QFETCH(QImage, picture);
    QFETCH(QRectF, lassoRect);
    QPainterPath lasso;
    lasso.addRect(lassoRect);
    const auto graphCut = RyGraphFirstCut::analyse(picture, lasso);
    const qint64 before = objectPixels(sidesAsMask(*graphCut, {}));
    for (const bool isInverted : {false, true})
        for (quint32 seed = 0; seed < 6; ++seed) {
            QRandomGenerator dice(seed);
            RyCutConstraints constraints(picture.size());
            if (isInverted)
                constraints.invert();
            for (int i = seed == 0 ? 0 : dice.bounded(1, 40); i > 0; --i) {
                const int left = dice.bounded(picture.width());
                constraints.fix(dice.bounded(picture.height()), left, left + dice.bounded(30),
                                dice.bounded(2));
            }
            constraints.fix(0, 0, 3, isInverted); // outside, as background
            const QImage mask =
                    RyGraphFirstCut::mask(*graphCut, constraints, picture.size(), qRgb(255, 0, 0));
            std::vector<RyCutSide> fixed(std::size_t(picture.width()));
            qint64 object = 0;
            qint64 wrong = 0;
            for (int y = 0; y < picture.height(); ++y) {
                constraints.read(y, 0, picture.width(), fixed.data());
                for (int x = 0; x < picture.width(); ++x) {
                    const bool isObject = (mask.pixel(x, y) == 0) != isInverted;
                    object += isObject;
                    wrong += fixed[std::size_t(x)] ==
                             (isObject ? RyCutSide::Background : RyCutSide::Object);
                }
            }
            QCOMPARE(wrong, 0);
            QVERIFY(seed > 0 || object > before / 2);
        }
}

/// Also where models that have learnt from the correction would put the outline a little elsewhere.
void tst_RyGraphCut::leavesAloneWhatIsFarFromCorrections()
{
    const QImage picture = Samples::photograph(QStringLiteral("coffee.png"), 600)
                                   .convertToFormat(QImage::Format_RGB32);
    QPainterPath lasso;
    lasso.addEllipse(QRectF(60, 8, 440, 384));
    const auto graphCut = RyGraphFirstCut::analyse(picture, lasso);
    const QImage first = sidesAsMask(*graphCut, {});
    const QRect corrected(90, 200, 20, 12); // the saucer's rim is background now
    RyCutConstraints constraints(picture.size());
    for (int y = corrected.top(); y <= corrected.bottom(); ++y)
        constraints.fix(y, corrected.left(), corrected.right() + 1, false);
    const QImage second = sidesAsMask(*graphCut, constraints);
    const QRect near(60, 150, 140, 130);
    const QRect far(400, 0, 200, 400);
    QVERIFY(second.copy(near) != first.copy(near));
    QCOMPARE(second.copy(far), first.copy(far));
}

RY_TEST_CLASS(tst_RyGraphCut, QCoreApplication)
#include "tst_RyGraphCut.moc"
