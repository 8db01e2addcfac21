#include "cli/RycutRun.h"
#include "cutout/CutoutPicture.h"
#include "cutout/EdgeOperations.h"
#include "cutout/MaskImage.h"
#include "support/SvgPath.h"
#include "support/TestClasses.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace RycutFiles;

namespace {

const QString saucer =
        u"180,75 78,200 86,262 112,311 165,351 230,375 300,381 388,364 440,325 479,240 "
        "467,175 421,109 423,72 396,68 345,34 290,18 220,36"_s;

QStringList wire(const QStringList &more)
{
    return QStringList{u"wire"_s, coffee, u"--points"_s, saucer} + more;
}

const QStringList everyEdge{u"--drop"_s, u"60"_s,     u"--fill"_s, u"80"_s,        u"--smooth"_s,
                            u"3"_s,      u"--grow"_s, u"-2"_s,     u"--feather"_s, u"4"_s};
const EdgeOptions everyEdgeOption{.drop = 60, .fill = 80, .smooth = 3, .grow = -2, .feather = 4};

} // namespace

/// Work on the edges of what was cut, and what is written of it.
class tst_rycutEdges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void everyOutputShowsTheEdge_data();
    void everyOutputShowsTheEdge();
    void worksAtTheSizeOfThePicture();
    void outlinesTheObject_data();
    void outlinesTheObject();
    void cleansByItselfWhenSoft();
    void sessionsTellOfEdges_data();
    void sessionsTellOfEdges();
    void failsInOneLine_data();
    void failsInOneLine();
    void reportsThatNothingIsLeft();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files); }
    /// The files of a run, with a prefix to their names.
    QStringList outputs(const QString &prefix) const
    {
        return {u"--mask"_s,    path(prefix + u"m.png"_s), u"--output"_s, path(prefix + u"o.png"_s),
                u"--overlay"_s, path(prefix + u"v.png"_s)};
    }
    QImage picture(const QString &name) const { return QImage(path(name)); }

    std::unique_ptr<QTemporaryDir> m_folder; // a fresh one for every test
};

void tst_rycutEdges::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_rycutEdges::everyOutputShowsTheEdge_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("cut") << cut(coffee, {});
    QTest::newRow("replay") << QStringList{
            u"replay"_s, QStringLiteral(RY_SAMPLES_DIR "/coffee.session"), coffee};
    QTest::newRow("wire") << wire({u"--close"_s});
}

void tst_rycutEdges::everyOutputShowsTheEdge()
{
    QFETCH(QStringList, command);
    QCOMPARE(RycutRun::of(command + outputs(u"plain_"_s)).status, 0);
    const QStringList edges = everyEdge + QStringList{u"--clean"_s, u"3"_s};
    QCOMPARE(RycutRun::of(command + edges + outputs(u"edge_"_s)).status, 0);
    QCOMPARE(RycutRun::of(command + edges + outputs(u"crop_"_s) + QStringList{u"--crop"_s}).status,
             0);

    const CutoutMask mask = EdgeOperations::apply(picture(u"plain_m.png"_s), everyEdgeOption);
    QVERIFY(mask.alpha != picture(u"plain_m.png"_s));
    QCOMPARE(picture(u"edge_m.png"_s), mask.alpha);
    const QImage colours = QImage(coffee).convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(picture(u"edge_o.png"_s), CutoutPicture::compose(colours, mask, {.cleanPixels = 3}));
    QVERIFY(picture(u"edge_v.png"_s) != picture(u"plain_v.png"_s));
    const QRect box = MaskImage::objectBox(mask.alpha);
    for (const auto &name : {u"m.png"_s, u"o.png"_s, u"v.png"_s})
        QCOMPARE(picture(u"crop_"_s + name), picture(u"edge_"_s + name).copy(box));
}

void tst_rycutEdges::worksAtTheSizeOfThePicture()
{
    const QStringList small{u"--max-length"_s, u"200"_s};
    QCOMPARE(RycutRun::of(cut(coffee, small + outputs(u"plain_"_s))).status, 0);
    QCOMPARE(RycutRun::of(cut(coffee, small + everyEdge + outputs(u"edge_"_s))).status, 0);
    QCOMPARE(picture(u"edge_m.png"_s),
             EdgeOperations::apply(picture(u"plain_m.png"_s), everyEdgeOption).alpha);
}

void tst_rycutEdges::outlinesTheObject_data()
{
    QTest::addColumn<bool>("isCropped");
    QTest::newRow("whole") << false;
    QTest::newRow("cropped") << true;
}

void tst_rycutEdges::outlinesTheObject()
{
    QFETCH(bool, isCropped);
    QStringList options{u"--smooth"_s,    u"2"_s,      u"--outline"_s,
                        path(u"o.svg"_s), u"--mask"_s, path(u"m.png"_s)};
    if (isCropped)
        options.append(u"--crop"_s);
    const RycutRun run = RycutRun::of(cut(coffee, options + QStringList{u"--report"_s, u"-"_s}));
    QCOMPARE(run.status, 0);
    const QJsonObject object = run.report()[u"object_box"].toObject();
    const QPoint origin = isCropped ? QPoint(object[u"x"].toInt(), object[u"y"].toInt()) : QPoint();
    const QImage mask = picture(u"m.png"_s);
    const QByteArray svg = contents(path(u"o.svg"_s));
    QCOMPARE(SvgPath::filled(SvgPath::parse(svg).translated(-origin), mask.size()), mask);
    QVERIFY(svg.contains(u"viewBox=\"%1 %2 %3 %4\""_s.arg(origin.x())
                                 .arg(origin.y())
                                 .arg(mask.width())
                                 .arg(mask.height())
                                 .toLatin1()));
}

void tst_rycutEdges::cleansByItselfWhenSoft()
{
    const auto object = [this](const QStringList &options) {
        RycutRun::of(cut(coffee, options + QStringList{u"--output"_s, path(u"o.png"_s)}));
        return picture(u"o.png"_s);
    };
    const QStringList soft{u"--feather"_s, u"2"_s};
    QCOMPARE(object(soft), object(soft + QStringList{u"--clean"_s, u"2"_s}));
    QVERIFY(object(soft) != object(soft + QStringList{u"--clean"_s, u"0"_s}));
    QCOMPARE(object({}), object({u"--clean"_s, u"0"_s}));
}

void tst_rycutEdges::sessionsTellOfEdges_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("expected"); // options with the same effect
    QTest::newRow("all") << QByteArray("drop 60\nfill 80\nsmooth 3\ngrow -2\nfeather 4\nclean 3\n")
                         << QStringList() << everyEdge + QStringList{u"--clean"_s, u"3"_s};
    QTest::newRow("cleaned by itself")
            << QByteArray("feather 3\n") << QStringList() << QStringList{u"--feather"_s, u"3"_s};
    QTest::newRow("an option wins")
            << QByteArray("grow 9\nsmooth 3\n") << QStringList{u"--grow"_s, u"-2"_s}
            << QStringList{u"--grow"_s, u"-2"_s, u"--smooth"_s, u"3"_s};
    QTest::newRow("an option takes it away")
            << QByteArray("feather 9\n") << QStringList{u"--feather"_s, u"0"_s} << QStringList();
}

void tst_rycutEdges::sessionsTellOfEdges()
{
    QFETCH(QByteArray, lines);
    QFETCH(QStringList, options);
    QFETCH(QStringList, expected);
    const QString sample = QStringLiteral(RY_SAMPLES_DIR "/coffee.session");
    const auto replay = [&](const QString &session, const QStringList &more,
                            const QString &prefix) {
        const RycutRun run =
                RycutRun::of(QStringList{u"replay"_s, session, coffee} + more + outputs(prefix));
        return run.status == 0 ? QList{picture(prefix + u"m.png"_s), picture(prefix + u"o.png"_s)}
                               : QList<QImage>();
    };
    store(path(u"edge.session"_s), contents(sample) + lines);
    const QList<QImage> wanted = replay(sample, expected, u"options_"_s);
    QCOMPARE(wanted.size(), 2);
    const QString written = path(u"written.session"_s);
    QCOMPARE(replay(path(u"edge.session"_s), options + QStringList{u"--write-session"_s, written},
                    u"told_"_s),
             wanted);
    QCOMPARE(replay(written, {}, u"again_"_s), wanted);
}

void tst_rycutEdges::failsInOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("named"); // in the message
    const auto row = [](const char *name, const QStringList &options, const char *named,
                        int status = 1) {
        QTest::newRow(name) << cut(coffee, options + QStringList{u"--mask"_s, u"new.png"_s})
                            << status << QByteArray(named);
    };
    row("too smooth", {u"--smooth"_s, u"201"_s}, "from 0 to 200");
    row("below 0", {u"--feather"_s, u"-1"_s}, "--feather");
    row("fraction", {u"--feather"_s, u"1.5"_s}, "'1.5'");
    row("no number", {u"--drop"_s, u"few"_s}, "'few'");
    row("too far inwards", {u"--grow"_s, u"-201"_s}, "from -200 to 200");
    row("too large", {u"--fill"_s, u"100000001"_s}, "--fill");
    row("too clean", {u"--clean"_s, u"51"_s}, "from 0 to 50");
    row("outline of no known form", {u"--outline"_s, u"new.json"_s}, ".svg");
    row("nothing left", {u"--drop"_s, u"1000000"_s}, "drop, smooth or grow", 3);
    for (const auto &option : {u"--smooth"_s, u"--grow"_s, u"--clean"_s})
        QTest::addRow("open wire with %s", qPrintable(option))
                << wire({option, u"1"_s, u"--overlay"_s, u"new.png"_s}) << 1
                << QByteArray(option.toLatin1() + " needs");
    QTest::newRow("cropped open wire")
            << wire({u"--crop"_s, u"--overlay"_s, u"new.png"_s}) << 1 << QByteArray("--crop needs");
    QTest::newRow("nothing left in the wire")
            << wire({u"--close"_s, u"--grow"_s, u"-200"_s, u"--mask"_s, u"new.png"_s}) << 3
            << QByteArray("--grow");
}

void tst_rycutEdges::failsInOneLine()
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

void tst_rycutEdges::reportsThatNothingIsLeft()
{
    const RycutRun run = RycutRun::of(
            cut(coffee, {u"--drop"_s, u"1000000"_s, u"--report"_s, path(u"r.json"_s)}));
    QCOMPARE(run.status, 3);
    const auto report = QJsonDocument::fromJson(contents(path(u"r.json"_s))).object();
    QVERIFY(report[u"foreground_pixels"].toInt() > 0);
    QCOMPARE(report[u"object_box"][u"width"].toInt(-1), 0);
}

RY_TEST_CLASS(tst_rycutEdges, QCoreApplication)
#include "tst_rycutEdges.moc"
