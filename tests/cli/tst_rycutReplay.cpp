#include "cli/RycutRun.h"
#include "support/TestClasses.h"

#include <QCryptographicHash>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray version = "rycut-session 1\n";
const QByteArray lasso = "lasso 130 60 480 60 540 200 480 340 130 340 70 200\n";

/// What the report says of the result; empty when there was none.
QString hashes(const QByteArray &arguments, const QByteArray &input = {})
{
    const QJsonObject report = RycutFolder().run(arguments + " --report -", input).report();
    return report[u"mask_sha256"].toString() + report[u"labels_sha256"].toString();
}

QString hashesOf(const QByteArray &gestures)
{
    return hashes("replay - @coffee.png", version + lasso + gestures);
}

QByteArray coffee()
{
    QFile file(QStringLiteral(RY_SAMPLES_DIR "/coffee.png"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// Sessions from files, and to files.
class tst_rycutReplay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void repeatsASessionOnAnyNumberOfCores();
    void writesWhatItDid_data();
    void writesWhatItDid();
    void gesturesDoWhatTheySay_data();
    void gesturesDoWhatTheySay();
    void actsWhereItShouldAtReducedSize();
    void takesAnotherPictureWhenForced();
};

void tst_rycutReplay::repeatsASessionOnAnyNumberOfCores()
{
    const QByteArray replay = "replay @coffee.session @coffee.png";
    const QString expected = hashes(replay);
    QVERIFY(!expected.isEmpty());
    QVERIFY(expected != hashes("cut @coffee.png --lasso @coffee.lasso"));
    for (const auto &cores : {" --cores 1", " --cores 2", " --cores 7"})
        QCOMPARE(hashes(replay + cores), expected);
}

void tst_rycutReplay::writesWhatItDid_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<QByteArray>("settings"); // as the session tells them
    const auto row = [](const char *options, const char *settings) {
        QTest::newRow(options) << QByteArray(options) << QByteArray(settings);
    };
    row("--full-size", "longest-side 0\nmethod graph\n");
    row("--max-length 217", "longest-side 217\nmethod graph\n");
    row("--mask-colour #800000ff", "longest-side 1200\ncolor #0000ff\nmethod graph\n");
    row("--method classic", "longest-side 1200\n");
}

void tst_rycutReplay::writesWhatItDid()
{
    QFETCH(QByteArray, options);
    QFETCH(QByteArray, settings);
    const RycutFolder folder;
    const QByteArray gestures =
            "click 300.25 230.1\nwidth 7.3\nscribble bg final 200 200.7 300 250\n"
            "lasso 100 40 500 40 500 360 100 360\nhover fg 200 200 30\n"
            "paint bg temporary 350 250 400 200\n";
    folder.store(u"g.session"_s, version + gestures);
    const RycutRun run = folder.run(
            folder.cut(options + " --gestures g.session --report - --write-session done.session"));
    QCOMPARE(run.status, 0);
    QCOMPARE(run.report()[u"gestures"].toInt(), 5);
    QCOMPARE(run.report()[u"lasso"][u"vertices"].toInt(), 4);
    const QByteArray hash = QCryptographicHash::hash(coffee(), QCryptographicHash::Sha256).toHex();
    QCOMPARE(folder.contents(u"done.session"_s),
             version + "picture 600x400 " + hash + '\n' + settings + lasso + gestures);
    QCOMPARE(hashes("replay " + folder.path(u"done.session"_s).toUtf8() + " -", coffee()),
             run.report()[u"mask_sha256"].toString() + run.report()[u"labels_sha256"].toString());
}

void tst_rycutReplay::gesturesDoWhatTheySay_data()
{
    QTest::addColumn<QByteArray>("gestures");
    QTest::addColumn<QByteArray>("others");
    QTest::addColumn<bool>("areTheSame"); // in what they lead to
    const auto row = [](const char *name, const QByteArray &gestures, const QByteArray &others,
                        bool areTheSame) {
        QTest::newRow(name) << gestures << others << areTheSame;
    };
    const QByteArray dot = "scribble bg final 300 150\n";
    const QByteArray preview = "scribble bg temporary 250 150\n";
    row("scribble", dot, "", false);
    row("brush width", dot, "width 11\n" + dot, false);
    row("paint moves whole regions", "paint bg final 300 150\n", dot, false);
    row("temporary strokes show", preview, "", false);
    row("a gesture is undone as a whole", preview + dot + "undo\n", "", true);
    row("and done again as it was shown", preview + dot + "undo\nredo\n", preview, true);
    row("a final stroke alone stays", dot + "undo\n", dot, true);
    const QByteArray area = "area bg 250 100 350 100 350 200 250 200\n";
    row("area", area, "", false);
    row("an area is not undone", area + "undo\n", area, true);
    row("click", "click 300 150\n", "", false);
    row("hover is only shown", "hover bg 300 150 40\n", "", true);
    row("invert", "invert\n", "", false);
    row("colour leaves the sides alone", "color #00ff00\n" + dot, dot, true);
    row("a lasso begins anew", dot + lasso, "", true);
}

void tst_rycutReplay::gesturesDoWhatTheySay()
{
    QFETCH(QByteArray, gestures);
    QFETCH(QByteArray, others);
    const QString first = hashesOf(gestures);
    QVERIFY(!first.isEmpty());
    QTEST(first == hashesOf(others), "areTheSame");
}

void tst_rycutReplay::actsWhereItShouldAtReducedSize()
{
    const RycutFolder folder;
    const auto maskAt = [&folder](const QPoint &point, const QByteArray &gestures) {
        folder.run("replay - @coffee.png --max-length 200 --mask m.png",
                   version + lasso + gestures);
        return qGray(folder.picture(u"m.png"_s).pixel(point));
    };
    const QByteArray stroke = "width 40\nscribble bg final 440 200\n";
    QCOMPARE(maskAt({440, 200}, ""), 255);
    QCOMPARE(maskAt({440, 200}, "click 440 200\n"), 0);
    QCOMPARE(maskAt({440, 200}, "paint bg final 440 200\n"), 0);
    QCOMPARE(maskAt({424, 200}, stroke), 0);
    QCOMPARE(maskAt({414, 200}, stroke), 255);
}

void tst_rycutReplay::takesAnotherPictureWhenForced()
{
    const QByteArray other = "picture 400x600 " + QByteArray(64, 'a') + '\n';
    QCOMPARE(hashes("replay - @coffee.png --force", version + other + lasso), hashesOf(""));
}

RY_TEST_CLASS(tst_rycutReplay, QCoreApplication)
#include "tst_rycutReplay.moc"
