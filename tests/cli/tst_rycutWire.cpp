#include "cli/RycutRun.h"
#include "cli/Terminal.h"
#include "support/Patience.h"
#include "support/TestClasses.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QPolygonF>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;
using namespace RycutFiles;

namespace {

const QString rim = u"290,18 352,37 398,84 409,111 406,129 372,182 290,207 205,173 172,110"_s;

QStringList wire(const QString &points, const QStringList &more)
{
    return QStringList{u"wire"_s, coffee, u"--points"_s, points} + more;
}

QList<QList<QPoint>> stretches(const QJsonObject &outline)
{
    QList<QList<QPoint>> result;
    for (const QJsonValue &stretch : outline[u"stretches"].toArray()) {
        result.append(QList<QPoint>());
        for (const QJsonValue &point : stretch.toArray())
            result.last().append({point[0].toInt(), point[1].toInt()});
    }
    return result;
}

QPolygonF polygon(const QByteArray &svg)
{
    static const QRegularExpression pair(u"[ML]([0-9.]+),([0-9.]+)"_s);
    QPolygonF points;
    for (const auto &match : pair.globalMatch(QString::fromLatin1(svg)))
        points.append({match.captured(1).toDouble(), match.captured(2).toDouble()});
    return points;
}

double area(const QPolygonF &points)
{
    double doubled = 0.0;
    for (qsizetype i = 0; i < points.size(); ++i) {
        const QPointF a = points.at(i);
        const QPointF b = points.at((i + 1) % points.size());
        doubled += a.x() * b.y() - b.x() * a.y();
    }
    return std::abs(doubled) / 2.0;
}

double area(const QImage &mask)
{
    double sum = 0.0;
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x)
            sum += mask.constScanLine(y)[x] / 255.0;
    }
    return sum;
}

} // namespace

/// Wires, drawn alone and in sessions.
class tst_rycutWire : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void outputsAgree_data();
    void outputsAgree();
    void followsWhatItIsTold();
    void isTheSameOnAnyNumberOfCores();
    void takesUnusualPoints_data();
    void takesUnusualPoints();
    void failsInOneLine_data();
    void failsInOneLine();
    void namesTheStretchThatIsTooLong();
    void stopsOnInterrupt();
    void sessionsCutInsideWires();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files); }

    std::unique_ptr<QTemporaryDir> m_folder; // a fresh one for every test
};

void tst_rycutWire::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_rycutWire::outputsAgree_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QSize>("size");
    QTest::newRow("full size") << QStringList{u"--full-size"_s} << QSize(600, 400);
    QTest::newRow("reduced") << QStringList{u"--max-length"_s, u"301"_s} << QSize(301, 200);
}

void tst_rycutWire::outputsAgree()
{
    QFETCH(QStringList, options);
    QFETCH(QSize, size);
    const RycutRun run = RycutRun::of(wire(
            rim, options + QStringList{u"--close"_s, u"--output"_s, path(u"o.png"_s), u"--mask"_s,
                                       path(u"m.png"_s), u"--overlay"_s, path(u"v.png"_s),
                                       u"--outline"_s, path(u"w.json"_s), u"--report"_s, u"-"_s}));
    QCOMPARE(run.status, 0);
    QCOMPARE(RycutRun::of(wire(rim, options + QStringList{u"--close"_s, u"--outline"_s,
                                                          path(u"w.svg"_s)}))
                     .status,
             0);
    const auto outline = QJsonDocument::fromJson(contents(path(u"w.json"_s))).object();
    QCOMPARE(QSize(outline[u"cutting"][u"width"].toInt(), outline[u"cutting"][u"height"].toInt()),
             size);
    const auto wires = stretches(outline);
    QCOMPARE(wires.size(), 9);
    QCOMPARE(run.report()[u"stretches"].toArray().size(), 9);
    for (qsizetype i = 0; i < wires.size(); ++i) {
        const QList<QPoint> &points = wires.at(i);
        QCOMPARE(run.report()[u"stretches"][i][u"points"].toInt(), points.size());
        QCOMPARE(points.last(), wires.at((i + 1) % wires.size()).first()); // a ring
        for (qsizetype j = 0; j < points.size(); ++j) {
            QVERIFY(QRect({0, 0}, size + QSize(1, 1)).contains(points.at(j)));
            const QPoint step = j > 0 ? points.at(j) - points.at(j - 1) : QPoint(2, 2);
            QCOMPARE(std::max(std::abs(step.x()), std::abs(step.y())), 2);
        }
    }
    const QImage mask(path(u"m.png"_s));
    QCOMPARE(mask.size(), QSize(600, 400));
    QCOMPARE(mask.format(), QImage::Format_Grayscale8);
    QVERIFY(qGray(mask.pixel(290, 110)) == 255 && qGray(mask.pixel(290, 300)) == 0);
    const double enclosed = area(polygon(contents(path(u"w.svg"_s))));
    QVERIFY2(enclosed > 30000.0 && std::abs(area(mask) - enclosed) < 0.005 * enclosed,
             qPrintable(u"%1 against %2"_s.arg(area(mask)).arg(enclosed)));
    const QImage object(path(u"o.png"_s));
    const QImage overlay(path(u"v.png"_s));
    const QImage picture(coffee);
    QCOMPARE(qAlpha(object.pixel(290, 300)), 0);
    QCOMPARE(object.pixel(290, 110), picture.pixel(290, 110));
    QCOMPARE(overlay.pixel(290, 110), picture.pixel(290, 110));
    QCOMPARE(overlay.pixel(290, 18), qRgb(255, 255, 255)); // the first seed
}

/// Brightness leads along the white of the cup, some pixels inside its rim.
void tst_rycutWire::followsWhatItIsTold()
{
    const auto enclosed = [this](const QString &cost) {
        RycutRun::of(wire(rim, {u"--close"_s, u"--cost"_s, cost, u"--mask"_s, path(u"m.png"_s)}));
        return area(QImage(path(u"m.png"_s)));
    };
    const double insideEdges = enclosed(u"edges"_s);
    QVERIFY(std::abs(insideEdges - 35500.0) < 1000.0);
    QVERIFY(enclosed(u"brightness"_s) < insideEdges - 1500.0);
}

void tst_rycutWire::isTheSameOnAnyNumberOfCores()
{
    const auto hash = [](const QString &cores) {
        return RycutRun::of(wire(u"20,300 580,90 300,200 10,10"_s,
                                 {u"--cores"_s, cores, u"--report"_s, u"-"_s}))
                .report()[u"trace_sha256"]
                .toString();
    };
    const QString expected = hash(u"1"_s);
    QCOMPARE(expected.size(), 64);
    for (const auto &cores : {u"1"_s, u"2"_s, u"7"_s, u"7"_s})
        QCOMPARE(hash(cores), expected);
}

void tst_rycutWire::takesUnusualPoints_data()
{
    QTest::addColumn<QSize>("size"); // of the picture; the coffee where it is empty
    QTest::addColumn<QString>("points");
    QTest::addColumn<QList<QPoint>>("ends"); // of the stretches
    QTest::newRow("equal") << QSize() << u"30,40 30,40"_s << QList<QPoint>{{31, 41}, {31, 41}};
    QTest::newRow("outside") << QSize() << u"-9,-9 1e9,1e9"_s << QList<QPoint>{{1, 1}, {599, 399}};
    QTest::newRow("fractions") << QSize() << u"31.6,40 31.6,51.4"_s
                               << QList<QPoint>{{33, 41}, {33, 51}};
    QTest::newRow("one pixel") << QSize(1, 1) << u"0,0 5,5"_s << QList<QPoint>{{1, 1}, {1, 1}};
    QTest::newRow("one row") << QSize(9, 1) << u"0,0 8,0"_s << QList<QPoint>{{1, 1}, {9, 1}};
}

void tst_rycutWire::takesUnusualPoints()
{
    QFETCH(QSize, size);
    QFETCH(QString, points);
    QFETCH(QList<QPoint>, ends);
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    const QString name = size.isEmpty() ? coffee : path(u"p.png"_s);
    QVERIFY(size.isEmpty() || picture.save(name));
    const RycutRun run = RycutRun::of({u"wire"_s, name, u"--points"_s, points, u"--outline"_s,
                                       path(u"w.json"_s), u"--overlay"_s, path(u"v.png"_s)});
    QCOMPARE(run.status, 0);
    const auto found =
            stretches(QJsonDocument::fromJson(contents(path(u"w.json"_s))).object()).first();
    QCOMPARE(QList<QPoint>({found.first(), found.last()}), ends);
    QCOMPARE(found.size() == 1, ends.first() == ends.last());
}

void tst_rycutWire::failsInOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("named"); // in the message
    const auto row = [](const char *name, const QStringList &arguments, int status,
                        const char *named) {
        QTest::newRow(name) << arguments << status << QByteArray(named);
    };
    const QStringList overlay{u"--overlay"_s, u"new.png"_s};
    const QString points = u"1,2 3,4"_s;
    row("no points", QStringList{u"wire"_s, coffee} + overlay, 1, "--points");
    row("no output", wire(points, {}), 1, "--outline");
    row("mask of an open wire", wire(points, {u"--mask"_s, u"new.png"_s}), 1, "--close");
    row("object of an open wire", wire(points, {u"--output"_s, u"new.png"_s}), 1, "--close");
    row("unknown cost", wire(points, overlay + QStringList{u"--cost"_s, u"grey"_s}), 1, "grey");
    row("unknown outline", wire(points, {u"--outline"_s, u"new.txt"_s}), 1, ".svg or .json");
    row("two outputs, one file", wire(points, overlay + QStringList{u"--report"_s, u"new.png"_s}),
        1, "new.png");
    row("one point", wire(u"1,2"_s, overlay), 2, "at least 2");
    row("not a number", wire(u"1,2 x,4"_s, overlay), 2, "--points, vertex 2");
    row("not finite", wire(u"1,2 3,inf"_s, overlay), 2, "inf");
    row("no picture", {u"wire"_s, u"none.png"_s, u"--points"_s, points, overlay[0], overlay[1]}, 2,
        "none.png");
    row("nothing inside",
        wire(u"30,40 30,40"_s, {u"--close"_s, u"--mask"_s, u"new.png"_s, u"--report"_s, u"r"_s}), 3,
        "nothing");
}

void tst_rycutWire::failsInOneLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, named);
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    RycutRun::start(process, arguments);
    const RycutRun run = RycutRun::finished(process);
    QCOMPARE(run.status, status);
    QVERIFY2(run.errors.count('\n') == 1 && run.errors.contains(named), run.errors.constData());
    QCOMPARE(files(), QStringList());
}

void tst_rycutWire::namesTheStretchThatIsTooLong()
{
    QImage picture(20000, 1, QImage::Format_Grayscale8);
    picture.fill(0);
    QVERIFY(picture.save(path(u"p.png"_s)));
    const RycutRun run = RycutRun::of({u"wire"_s, path(u"p.png"_s), u"--full-size"_s, u"--points"_s,
                                       u"0,0 3000,0 19999,0"_s, u"--outline"_s, path(u"w.svg"_s)});
    QCOMPARE(run.status, 3);
    QVERIFY2(run.errors.contains("stretch 2") && run.errors.contains("19999,0"),
             run.errors.constData());
    QCOMPARE(files(), QStringList{u"p.png"_s});
}

void tst_rycutWire::stopsOnInterrupt()
{
    Terminal terminal;
    if (!terminal.isOpen())
        QSKIP("This system gives out no pseudo-terminals");
    QImage picture(2000, 2000, QImage::Format_Grayscale8); // flat: the search goes everywhere
    picture.fill(0);
    QVERIFY(picture.save(path(u"p.bmp"_s)));
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TERM"_s, u"xterm"_s);
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(terminal.deviceName());
    RycutRun::start(process, {u"wire"_s, path(u"p.bmp"_s), u"--full-size"_s, u"--points"_s,
                              u"0,0 1999,1999 "_s.repeated(200), u"--overlay"_s, path(u"v.png"_s)});
    QTRY_VERIFY_WITH_TIMEOUT(terminal.said().contains(" %"),
                             patienceMs); // one stretch has been laid
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    QCOMPARE(RycutRun::finished(process).status, 130);
    QCOMPARE(files(), QStringList{u"p.bmp"_s});
}

void tst_rycutWire::sessionsCutInsideWires()
{
    const QByteArray begin = "rycut-session 1\n";
    QByteArray session = begin;
    for (const QString &point : rim.split(u' '))
        session +=
                (session == begin ? "seed " : "wire ") + point.toLatin1().replace(',', ' ') + '\n';
    session += "close\nclick 290 150\n";
    const QStringList replay{u"replay"_s, u"-"_s, coffee, u"--report"_s, u"-"_s};
    const RycutRun run = RycutRun::of(replay, session);
    QCOMPARE(run.status, 0);
    QCOMPARE(run.report()[u"gestures"].toInt(), 1);
    QVERIFY(RycutRun::of(wire(rim, {u"--close"_s, u"--outline"_s, path(u"w.svg"_s)})).status == 0);
    const QPolygonF outline = polygon(contents(path(u"w.svg"_s)));
    QByteArray same = begin + "lasso";
    for (const QPointF &point : outline)
        same += ' ' + QByteArray::number(point.x()) + ' ' + QByteArray::number(point.y());
    const RycutRun drawn = RycutRun::of(replay, same + "\nclick 290 150\n");
    QCOMPARE(run.report()[u"mask_sha256"], drawn.report()[u"mask_sha256"]);
    QCOMPARE(run.report()[u"lasso"], drawn.report()[u"lasso"]);
}

RY_TEST_CLASS(tst_rycutWire, QCoreApplication)
#include "tst_rycutWire.moc"
