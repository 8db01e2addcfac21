#include "StudioDriver.h"

#include "EventLoopWatch.h"
#include "RySettings.h"
#include "settings/RyImageCutterSettings.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

#include <memory>

namespace {

constexpr QSize pictureSize(4000, 3000);
/// What a person would feel is 50 ms. Machines that build at the same time stop any program for
/// longer than that, so only what no machine explains fails; the measured gaps are reported.
constexpr double mostMs = 400.0;

/// A textured ground with a textured disc on it.
QImage syntheticPicture()
{
    QImage picture(pictureSize, QImage::Format_RGB32);
    QRandomGenerator random(11);
    for (int y = 0; y < picture.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const int dx = x - 2000, dy = y - 1500, grain = int(random.bounded(24u));
            const bool isObject = dx * dx + dy * dy < 1000 * 1000;
            const int wave = (x / 37 + y / 53) % 40;
            row[x] = isObject ? qRgb(170 + grain + wave, 90 + grain, 40 + wave)
                              : qRgb(30 + wave, 80 + grain, 120 + grain + wave);
        }
    }
    return picture;
}

QPolygonF circle(const QPointF &centre, double radius, int points)
{
    QPolygonF polygon;
    for (int i = 0; i < points; ++i) {
        const double angle = 2.0 * M_PI * i / points;
        polygon << centre + radius * QPointF(std::cos(angle), std::sin(angle));
    }
    return polygon;
}

} // namespace

/// The event loop keeps turning while a person works on a large picture.
class tst_StudioWatchdog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void gestures_data();
    void gestures();

private:
    void drag(StudioDriver &studio, const QPolygonF &points);
    void report(EventLoopWatch &watch, const char *what);

    QTemporaryDir m_folder;
    QString m_picture;
};

void tst_StudioWatchdog::initTestCase()
{
    RySettings::setFileName(m_folder.filePath(QStringLiteral("settings.ini")));
    m_picture = m_folder.filePath(QStringLiteral("large.jpg"));
    QVERIFY(syntheticPicture().save(m_picture, nullptr, 95));
}

void tst_StudioWatchdog::drag(StudioDriver &studio, const QPolygonF &points)
{
    studio.press(points.first());
    for (const QPointF &point : points) {
        studio.move(point, Qt::LeftButton);
        QTest::qWait(4); // as often as a good mouse tells
    }
    studio.release(points.last());
}

void tst_StudioWatchdog::report(EventLoopWatch &watch, const char *what)
{
    const double ms = watch.lapMs();
    qInfo("%-28s longest gap %6.1f ms", what, ms);
    QVERIFY2(ms < mostMs, what);
}

void tst_StudioWatchdog::gestures_data()
{
    QTest::addColumn<int>("longestSide");
    QTest::addRow("reduced") << RyImageCutterSettings::defaultMaximalImageLength;
    QTest::addRow("full size") << pictureSize.width();
}

void tst_StudioWatchdog::gestures()
{
    QFETCH(int, longestSide);
    RyImageCutterSettings::instance().setMaximalImageLength(longestSide);
    StudioDriver studio;
    EventLoopWatch watch;
    QVERIFY(studio.open(m_picture));
    QVERIFY(studio.settle());
    report(watch, "open");

    drag(studio, circle({2000, 1500}, 1150, 120));
    QVERIFY(studio.settle());
    QVERIFY(studio.document().hasCut());
    report(watch, "lasso and cut");

    studio.action("brush").trigger();
    for (const QPointF &point : circle({2000, 1500}, 900, 100)) {
        studio.move(point);
        QTest::qWait(4);
    }
    report(watch, "hover");
    drag(studio, circle({2000, 1500}, 1050, 100));
    QVERIFY(studio.settle());
    report(watch, "region brush");

    studio.action("scribble").trigger();
    drag(studio, circle({2000, 1500}, 700, 100));
    QVERIFY(studio.settle());
    report(watch, "scribble");

    studio.action("click").trigger();
    for (const QPointF &point : circle({2000, 1500}, 500, 10)) {
        studio.move(point);
        studio.click(point);
        QTest::qWait(4);
    }
    QVERIFY(studio.settle());
    report(watch, "click");

    for (const char *const view : {"viewOutline", "viewCheckerboard", "viewOverlay", "contours"}) {
        studio.action(view).trigger();
        QVERIFY(studio.settle());
    }
    report(watch, "views");
    for (int i = 0; i < 12; ++i) {
        studio.canvas().zoomTo(studio.canvas().view().scale * 1.25, {400, 300});
        QTest::qWait(8);
    }
    QVERIFY(studio.settle());
    report(watch, "zoom");
    QTest::mousePress(&studio.canvas(), Qt::MiddleButton, {}, {400, 300});
    for (int i = 0; i < 60; ++i) {
        QTest::mouseMove(&studio.canvas(), {400 - 5 * i, 300 - 3 * i});
        QTest::qWait(4);
    }
    QTest::mouseRelease(&studio.canvas(), Qt::MiddleButton, {}, {100, 120});
    QVERIFY(studio.settle());
    report(watch, "pan");

    studio.action("zoomFit").trigger();
    while (studio.action("undo").isEnabled()) {
        studio.action("undo").trigger();
        QVERIFY(studio.settle());
    }
    report(watch, "undo");
    QVERIFY(!studio.document().hasCut());
    while (studio.action("redo").isEnabled()) {
        studio.action("redo").trigger();
        QVERIFY(studio.settle());
    }
    report(watch, "redo");
    drag(studio, circle({2000, 1500}, 1150, 120));
    QVERIFY(studio.settle());
    studio.action("cancel").trigger();
    QVERIFY(studio.settle());
    report(watch, "cancel");
}

QTEST_MAIN(tst_StudioWatchdog)
#include "tst_StudioWatchdog.moc"
