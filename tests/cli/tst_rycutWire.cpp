#include "cli/RycutRun.h"
#include "support/TestClasses.h"

#include <QJsonArray>
#include <QPolygonF>
#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QByteArray rim = "290,18 352,37 398,84 409,111 406,129 372,182 290,207 205,173 172,110";

QByteArray wire(const QByteArray &points, const QByteArray &more)
{
    return "wire @coffee.png --points '" + points + "' " + more;
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
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            sum += mask.constScanLine(y)[x] / 255.0;
    return sum;
}

} // namespace

/// Wires, drawn alone and in sessions.
class tst_rycutWire : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outputsAgree_data();
    void outputsAgree();
    void followsWhatItIsTold();
    void isTheSameOnAnyNumberOfCores();
    void takesUnusualPoints();
    void namesTheStretchThatIsTooLong();
    void sessionsCutInsideWires();
};

void tst_rycutWire::outputsAgree_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<QSize>("size");
    QTest::newRow("full size") << QByteArray("--close --full-size ") << QSize(600, 400);
    QTest::newRow("reduced") << QByteArray("--close --max-length 301 ") << QSize(301, 200);
}

void tst_rycutWire::outputsAgree()
{
    QFETCH(QByteArray, options);
    QFETCH(QSize, size);
    const RycutFolder folder;
    const RycutRun run = folder.run(wire(rim, options + "--output o.png --mask m.png --overlay "
                                                        "v.png --outline w.json --report -"));
    QCOMPARE(run.status, 0);
    QCOMPARE(folder.run(wire(rim, options + "--outline w.svg")).status, 0);
    const auto outline = QJsonDocument::fromJson(folder.contents(u"w.json"_s)).object();
    QCOMPARE(QSize(outline[u"cutting"][u"width"].toInt(), outline[u"cutting"][u"height"].toInt()),
             size);
    const auto wires = stretches(outline);
    QCOMPARE(wires.size(), 9);
    for (qsizetype i = 0; i < wires.size(); ++i) {
        const QList<QPoint> &points = wires.at(i);
        QCOMPARE(run.report()[u"stretches"][i][u"points"].toInt(), points.size());
        QCOMPARE(points.last(), wires.at((i + 1) % wires.size()).first()); // a ring
        for (qsizetype j = 1; j < points.size(); ++j) {
            const QPoint step = points.at(j) - points.at(j - 1);
            QCOMPARE(std::max(std::abs(step.x()), std::abs(step.y())), 2);
        }
    }
    const QImage mask = folder.picture(u"m.png"_s);
    QCOMPARE(mask.size(), QSize(600, 400));
    const double enclosed = area(polygon(folder.contents(u"w.svg"_s)));
    QVERIFY2(enclosed > 30000.0 && std::abs(area(mask) - enclosed) < 0.005 * enclosed,
             qPrintable(u"%1 against %2"_s.arg(area(mask)).arg(enclosed)));
    const QImage picture(QStringLiteral(RY_SAMPLES_DIR "/coffee.png"));
    const QImage object = folder.picture(u"o.png"_s);
    QCOMPARE(qAlpha(object.pixel(290, 300)), 0);
    QCOMPARE(object.pixel(290, 110), picture.pixel(290, 110));
    const QImage overlay = folder.picture(u"v.png"_s);
    QCOMPARE(overlay.pixel(290, 110), picture.pixel(290, 110));
    QCOMPARE(overlay.pixel(290, 18), qRgb(255, 255, 255)); // the first seed
}

/// Brightness leads along the white of the cup, some pixels inside its rim.
void tst_rycutWire::followsWhatItIsTold()
{
    const RycutFolder folder;
    const auto enclosed = [&folder](const QByteArray &cost) {
        folder.run(wire(rim, "--close --mask m.png --cost " + cost));
        return area(folder.picture(u"m.png"_s));
    };
    const double insideEdges = enclosed("edges");
    QVERIFY(std::abs(insideEdges - 35500.0) < 1000.0);
    QVERIFY(enclosed("brightness") < insideEdges - 1500.0);
}

void tst_rycutWire::isTheSameOnAnyNumberOfCores()
{
    const auto hash = [](const QByteArray &cores) {
        return RycutFolder()
                .run(wire("20,300 580,90 300,200 10,10", "--report - --cores " + cores))
                .report()[u"trace_sha256"]
                .toString();
    };
    const QString expected = hash("1");
    QCOMPARE(expected.size(), 64);
    for (const auto &cores : {"2", "7", "7"})
        QCOMPARE(hash(cores), expected);
}

void tst_rycutWire::takesUnusualPoints()
{
    struct Points
    {
        QSize size; // of the picture
        QByteArray points;
        QPoint first, last; // of the stretch
    };
    const RycutFolder folder;
    for (const auto &[size, points, first, last] :
         {Points{{60, 50}, "30,40 30,40", {31, 41}, {31, 41}},
          Points{{60, 50}, "-9,-9 1e9,1e9", {1, 1}, {59, 49}},
          Points{{60, 60}, "31.6,40 31.6,51.4", {33, 41}, {33, 51}},
          Points{{1, 1}, "0,0 5,5", {1, 1}, {1, 1}}, Points{{9, 1}, "0,0 8,0", {1, 1}, {9, 1}}}) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(Qt::gray);
        QVERIFY(picture.save(folder.path(u"p.png"_s)));
        folder.run("wire p.png --outline w.json --overlay v.png --points '" + points + '\'');
        const auto found =
                stretches(QJsonDocument::fromJson(folder.contents(u"w.json"_s)).object()).value(0);
        QCOMPARE(found.value(0), first);
        QCOMPARE(found.value(found.size() - 1), last);
        QCOMPARE(found.size() == 1, first == last);
    }
}

void tst_rycutWire::namesTheStretchThatIsTooLong()
{
    const RycutFolder folder;
    QImage picture(20000, 1, QImage::Format_Grayscale8);
    picture.fill(0);
    QVERIFY(picture.save(folder.path(u"p.png"_s)));
    const RycutRun run =
            folder.run("wire p.png --full-size --points '0,0 3000,0 19999,0' --outline w.svg");
    QCOMPARE(run.status, 3);
    QVERIFY2(run.errors.contains("stretch 2") && run.errors.contains("19999,0"),
             run.errors.constData());
    QCOMPARE(folder.files(), QStringList{u"p.png"_s});
}

void tst_rycutWire::sessionsCutInsideWires()
{
    const RycutFolder folder;
    const QByteArray begin = "rycut-session 1\n";
    QByteArray session = begin;
    for (QByteArray point : rim.split(' '))
        session += (session == begin ? "seed " : "wire ") + point.replace(',', ' ') + '\n';
    const QByteArray replay = "replay - @coffee.png --report -";
    const RycutRun run = folder.run(replay, session + "close\nclick 290 150\n");
    QCOMPARE(run.report()[u"gestures"].toInt(), 1);
    QCOMPARE(folder.run(wire(rim, "--close --outline w.svg")).status, 0);
    QByteArray same = begin + "lasso";
    for (const QPointF &point : polygon(folder.contents(u"w.svg"_s)))
        same += ' ' + QByteArray::number(point.x()) + ' ' + QByteArray::number(point.y());
    const RycutRun drawn = folder.run(replay, same + "\nclick 290 150\n");
    QVERIFY(drawn.report().contains(u"mask_sha256"));
    QCOMPARE(run.report()[u"mask_sha256"], drawn.report()[u"mask_sha256"]);
    QCOMPARE(run.report()[u"lasso"], drawn.report()[u"lasso"]);
}

RY_TEST_CLASS(tst_rycutWire, QCoreApplication)
#include "tst_rycutWire.moc"
