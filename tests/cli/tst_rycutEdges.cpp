#include "cli/RycutRun.h"
#include "cutout/CutoutPicture.h"
#include "cutout/EdgeOperations.h"
#include "cutout/MaskImage.h"
#include "support/Samples.h"
#include "support/SvgPath.h"
#include "support/TestClasses.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray saucer =
        "wire @coffee.png --close --points '180,75 78,200 86,262 112,311 165,351 230,375 300,381 "
        "388,364 440,325 479,240 467,175 421,109 423,72 396,68 345,34 290,18 220,36'";
const QByteArray everyEdge = " --drop 60 --fill 80 --smooth 3 --grow -2 --feather 4";
constexpr EdgeOptions everyEdgeOption{
        .drop = 60, .fill = 80, .smooth = 3, .grow = -2, .feather = 4};

/// Options for the files of a run, with a prefix to their names.
QByteArray outputs(const QByteArray &prefix)
{
    return " --mask " + prefix + "m.png --output " + prefix + "o.png --overlay " + prefix + "v.png";
}

} // namespace

/// Work on the edges of what was cut, and what is written of it.
class tst_rycutEdges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOutputShowsTheEdge_data();
    void everyOutputShowsTheEdge();
    void outlinesTheObject();
    void cleansByItselfWhenSoft();
    void sessionsTellOfEdges_data();
    void sessionsTellOfEdges();
};

void tst_rycutEdges::everyOutputShowsTheEdge_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("cut") << RycutFolder::cut({});
    QTest::newRow("cut at another size") << RycutFolder::cut("--max-length 200");
    QTest::newRow("replay") << QByteArray("replay @coffee.session @coffee.png");
    QTest::newRow("wire") << saucer;
}

void tst_rycutEdges::everyOutputShowsTheEdge()
{
    QFETCH(QByteArray, command);
    const RycutFolder folder;
    QCOMPARE(folder.run(command + outputs("plain_")).status, 0);
    const QByteArray edges = command + everyEdge + " --clean 3";
    QCOMPARE(folder.run(edges + outputs("edge_")).status, 0);
    QCOMPARE(folder.run(edges + " --crop" + outputs("crop_")).status, 0);

    const QImage plain = folder.picture(u"plain_m.png"_s);
    const CutoutMask mask = EdgeOperations::apply(plain, everyEdgeOption);
    QVERIFY(mask.alpha != plain);
    QCOMPARE(folder.picture(u"edge_m.png"_s), mask.alpha);
    const QImage colours =
            Samples::photograph(u"coffee.png"_s).convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(folder.picture(u"edge_o.png"_s),
             CutoutPicture::compose(colours, mask, {.cleanPixels = 3}));
    QVERIFY(folder.picture(u"edge_v.png"_s) != folder.picture(u"plain_v.png"_s));
    const QRect box = MaskImage::objectBox(mask.alpha);
    for (const auto &name : {u"m.png"_s, u"o.png"_s, u"v.png"_s})
        QCOMPARE(folder.picture(u"crop_"_s + name), folder.picture(u"edge_"_s + name).copy(box));
}

void tst_rycutEdges::outlinesTheObject()
{
    const RycutFolder folder;
    for (const bool isCropped : {false, true}) {
        const RycutRun run = folder.run(folder.cut("--smooth 2 --outline o.svg --mask m.png "
                                                   "--report -" +
                                                   QByteArray(isCropped ? " --crop" : "")));
        const QJsonObject object = run.report()[u"object_box"].toObject();
        const QPoint origin =
                isCropped ? QPoint(object[u"x"].toInt(), object[u"y"].toInt()) : QPoint();
        const QImage mask = folder.picture(u"m.png"_s);
        const QByteArray svg = folder.contents(u"o.svg"_s);
        QCOMPARE(SvgPath::filled(SvgPath::parse(svg).translated(-origin), mask.size()), mask);
        QVERIFY(svg.contains(u"viewBox=\"%1 %2 %3 %4\""_s.arg(origin.x())
                                     .arg(origin.y())
                                     .arg(mask.width())
                                     .arg(mask.height())
                                     .toLatin1()));
    }
}

void tst_rycutEdges::cleansByItselfWhenSoft()
{
    const RycutFolder folder;
    const auto object = [&folder](const QByteArray &options) {
        folder.run(folder.cut("--output o.png " + options));
        return folder.picture(u"o.png"_s);
    };
    const QImage soft = object("--feather 2");
    QCOMPARE(object("--feather 2 --clean 2"), soft);
    QVERIFY(object("--feather 2 --clean 0") != soft);
    QCOMPARE(object({}), object("--clean 0"));
}

void tst_rycutEdges::sessionsTellOfEdges_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<QByteArray>("expected"); // options with the same effect
    QTest::newRow("all") << QByteArray("drop 60\nfill 80\nsmooth 3\ngrow -2\nfeather 4\nclean 3\n")
                         << QByteArray() << everyEdge + " --clean 3";
    QTest::newRow("cleaned by itself")
            << QByteArray("feather 3\n") << QByteArray() << QByteArray(" --feather 3");
    QTest::newRow("an option wins") << QByteArray("grow 9\nsmooth 3\n") << QByteArray(" --grow -2")
                                    << QByteArray(" --grow -2 --smooth 3");
    QTest::newRow("an option takes it away")
            << QByteArray("feather 9\n") << QByteArray(" --feather 0") << QByteArray();
}

void tst_rycutEdges::sessionsTellOfEdges()
{
    QFETCH(QByteArray, lines);
    QFETCH(QByteArray, options);
    QFETCH(QByteArray, expected);
    const RycutFolder folder;
    const auto replayed = [&folder](const QByteArray &session, const QByteArray &more) {
        const RycutRun run =
                folder.run("replay " + session + " @coffee.png" + more + outputs("replayed_"));
        return run.status == 0 ? QList{folder.picture(u"replayed_m.png"_s),
                                       folder.picture(u"replayed_o.png"_s)}
                               : QList<QImage>();
    };
    QFile sample(QStringLiteral(RY_SAMPLES_DIR "/coffee.session"));
    QVERIFY(sample.open(QIODevice::ReadOnly));
    folder.store(u"edge.session"_s, sample.readAll() + lines);
    const QList<QImage> wanted = replayed("@coffee.session", expected);
    QCOMPARE(wanted.size(), 2);
    QCOMPARE(replayed("edge.session", options + " --write-session written.session"), wanted);
    QCOMPARE(replayed("written.session", {}), wanted);
}

RY_TEST_CLASS(tst_rycutEdges, QCoreApplication)
#include "tst_rycutEdges.moc"
