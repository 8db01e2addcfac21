#include "graphcut/RyCutConstraints.h"
#include "graphcut/RyGraphCut.h"
#include "segmentation/RyGraphFirstCut.h"
#include "support/CutScenes.h"
#include "support/Digest.h"
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
    void photographs_data();
    void photographs();
    void leavesSomethingInEveryLasso();
    void takesStrangeLassos_data();
    void takesStrangeLassos();
    void obeysConstraints_data();
    void obeysConstraints();
    void leavesAloneWhatIsFarFromCorrections();
};

namespace {

/// The object's pixels are 255. Null without an object.
QImage cut(const QImage &picture, const QPainterPath &lasso,
           const RyCutConstraints &constraints = {})
{
    const auto graphCut = RyGraphFirstCut::analyse(picture, lasso);
    if (!graphCut)
        return {};
    const QImage mask =
            RyGraphFirstCut::mask(*graphCut, constraints, picture.size(), qRgb(255, 0, 0));
    QImage object(picture.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            object.scanLine(y)[x] = mask.pixel(x, y) == 0 ? 255 : 0;
    return object;
}

qint64 objectPixels(const QImage &mask)
{
    qint64 count = 0;
    for (int y = 0; y < mask.height(); ++y)
        count += std::count(mask.constScanLine(y), mask.constScanLine(y) + mask.width(), 255);
    return count;
}

QImage flat(const QSize &size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    return picture;
}

QImage coffee(int width)
{
    return Samples::photograph(QStringLiteral("coffee.png"), width)
            .convertToFormat(QImage::Format_RGB32);
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
    const QPointF centre(230, 170);
    const QImage truth = CutScenes::truth(shape, QSize(481, 361), centre, 90);
    const QImage mask = cut(CutScenes::painted(truth, surface, 1),
                            Samples::closedPath(CutScenes::outline(shape, centre, 90, margin)));
    const double overlap = CutScenes::overlap(mask, truth);
    // What lies deep inside counts as object until a user says otherwise, holes too.
    const double floor = shape == Shape::Ring ? 0.74 : 0.98;
    QVERIFY2(overlap > floor, qPrintable(QString::number(overlap)));
}

void tst_RyGraphCut::photographs_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QPainterPath>("lasso");
    QTest::addColumn<QByteArray>("expected"); // without corrections, and with some
    const auto row = [](const char *name, const QImage &picture, const QPainterPath &lasso,
                        const char *expected) {
        QTest::newRow(name) << picture.convertToFormat(QImage::Format_ARGB32) << lasso
                            << QByteArray(expected);
    };
    const auto sample = [row](const QString &file, const char *expected) {
        row(qPrintable(file), Samples::photograph(file), Samples::lasso(file.section(u'.', 0, 0)),
            expected);
    };
    sample(QStringLiteral("astronaut.png"), "8209b0cf 1c34888e");
    sample(QStringLiteral("chelsea.png"), "f3c10bb6 cc1f38a0");
    sample(QStringLiteral("coffee.png"), "78275e1b f865323f");
    sample(QStringLiteral("rocket.jpg"), "53f62f78 05e5756f");
    row("small", coffee(160), TestPictures::ellipse({77, 53}, 60, 48), "d7fd8101 82adde89");
    row("thin", coffee(300), Samples::rectangle(60, 90, 150, 0.9), "891e0862 16d74dda");
    row("noise", TestPictures::noise(200, 150, 4), TestPictures::ellipse({100, 75}, 70, 50),
        "439826d8 ecd5b781");
    row("flat", flat({360, 270}), TestPictures::ellipse({180, 135}, 60, 60), "5dd92ac5 433ff64f");
}

void tst_RyGraphCut::photographs()
{
    QFETCH(QImage, picture);
    QFETCH(QPainterPath, lasso);
    RyCutConstraints constraints(picture.size());
    const QPoint middle = lasso.boundingRect().center().toPoint();
    for (int y = 0; y < 20; ++y) {
        constraints.fix(middle.y() + y, middle.x(), middle.x() + 30, false);
        constraints.fix(middle.y() - y, middle.x() - 200, middle.x() - 25 + y, true);
    }
    QThreadPool &pool = *QThreadPool::globalInstance();
    const int usual = pool.maxThreadCount();
    for (const int cores : {1, 2, 8}) {
        const TestPictures::Machine machine(cores);
        pool.setMaxThreadCount(cores);
        const QByteArray first = (Digest() << cut(picture, lasso)).hex();
        const QByteArray second = (Digest() << cut(picture, lasso, constraints)).hex();
        pool.setMaxThreadCount(usual);
        QTEST(first + ' ' + second, "expected");
    }
}

/// However small or thin, and whatever the picture: an object, and no more than the lasso.
void tst_RyGraphCut::leavesSomethingInEveryLasso()
{
    QList<QImage> pictures;
    for (const QSize &size :
         {QSize(1, 1), QSize(1, 60), QSize(60, 1), QSize(50, 40), QSize(481, 90)})
        pictures << flat(size) << TestPictures::noise(size.width(), size.height(), 3);
    for (const QImage &picture : std::as_const(pictures))
        for (const QPoint &at : {picture.rect().center(), picture.rect().bottomRight()})
            for (const QSize &size : {QSize(1, 1), QSize(1, 9), QSize(30, 1), QSize(5, 5),
                                      QSize(90, 7), QSize(60, 60), QSize(2000, 2000)}) {
                QRect rect(at, size);
                rect.moveCenter(at);
                QPainterPath lasso;
                lasso.addRect(rect);
                const QRect inside = rect & picture.rect();
                const qint64 object = objectPixels(cut(picture, lasso));
                QVERIFY2(0 < object && object <= qint64(inside.width()) * inside.height(),
                         qPrintable(QStringLiteral("%1 x %2 in a picture of %3 x %4: %5 pixels")
                                            .arg(size.width())
                                            .arg(size.height())
                                            .arg(picture.width())
                                            .arg(picture.height())
                                            .arg(object)));
            }
}

void tst_RyGraphCut::takesStrangeLassos_data()
{
    QTest::addColumn<QPainterPath>("lasso");
    QTest::addColumn<bool>("hasObject");
    QTest::newRow("none") << QPainterPath() << false;
    QTest::newRow("a line") << Samples::closedPath({{20, 20}, {110, 70}}) << false;
    QTest::newRow("between two rows") << Samples::rectangle(20, 30.6, 90, 0.3) << false;
    QTest::newRow("beside") << Samples::rectangle(200, 20, 50, 50) << false;
    QTest::newRow("on the border") << Samples::rectangle(139.4, 20, 50, 50) << true;
    QTest::newRow("round everything") << Samples::rectangle(-30, -30, 200, 150) << true;
    QTest::newRow("far away") << Samples::rectangle(-1e15, -1e15, 2e15, 2e15) << true;
    QTest::newRow("half of it, far") << Samples::rectangle(70, -1e9, 1e12, 1e12) << true;
    QTest::newRow("two loops") << Samples::rectangle(5, 5, 40, 70) +
                                          Samples::rectangle(90, 10, 45, 60)
                               << true;
}

void tst_RyGraphCut::takesStrangeLassos()
{
    QFETCH(QPainterPath, lasso);
    QFETCH(bool, hasObject);
    const qint64 object = objectPixels(cut(coffee(140), lasso));
    QVERIFY(hasObject ? 0 < object && object < 140 * 93 : object == 0);
}

void tst_RyGraphCut::obeysConstraints_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QRectF>("lassoRect");
    for (const QRectF &rect :
         {QRectF(35, 5, 210, 190), QRectF(100, 80, 30, 25), QRectF(60, 90, 150, 0.9)}) {
        QTest::addRow("photograph, %g x %g", rect.width(), rect.height()) << coffee(300) << rect;
        QTest::addRow("flat, %g x %g", rect.width(), rect.height()) << flat({300, 200}) << rect;
    }
}

/// To the pixel, wherever they lie, and without giving up the object.
void tst_RyGraphCut::obeysConstraints()
{
    QFETCH(QImage, picture);
    QFETCH(QRectF, lassoRect);
    QPainterPath lasso;
    lasso.addRect(lassoRect);
    const qint64 before = objectPixels(cut(picture, lasso));
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
            const QImage mask = cut(picture, lasso, constraints);
            std::vector<RyCutSide> fixed(std::size_t(picture.width()));
            qint64 object = 0;
            for (int y = 0; y < picture.height(); ++y) {
                constraints.read(y, 0, picture.width(), fixed.data());
                for (int x = 0; x < picture.width(); ++x) {
                    const bool isObject = (mask.constScanLine(y)[x] == 255) != isInverted;
                    object += isObject;
                    QVERIFY(fixed[std::size_t(x)] !=
                            (isObject ? RyCutSide::Background : RyCutSide::Object));
                }
            }
            QVERIFY(seed > 0 || object > before / 2);
        }
}

/// Also where models that have learnt from the correction would put the outline a little elsewhere.
void tst_RyGraphCut::leavesAloneWhatIsFarFromCorrections()
{
    const QImage picture = coffee(600);
    const QPainterPath lasso = Samples::ellipse(60, 8, 440, 384);
    RyCutConstraints constraints(picture.size());
    for (int y = 200; y < 212; ++y)
        constraints.fix(y, 90, 110, false); // the saucer's rim is background now
    const QImage first = cut(picture, lasso);
    const QImage second = cut(picture, lasso, constraints);
    QVERIFY(second.copy(60, 150, 140, 130) != first.copy(60, 150, 140, 130));
    QCOMPARE(second.copy(400, 0, 200, 400), first.copy(400, 0, 200, 400));
}

RY_TEST_CLASS(tst_RyGraphCut, QCoreApplication)
#include "tst_RyGraphCut.moc"
