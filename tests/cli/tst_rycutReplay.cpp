#include "cli/RycutRun.h"
#include "cli/Terminal.h"
#include "support/Patience.h"
#include "support/TestClasses.h"

#include <QCryptographicHash>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;
using namespace RycutFiles;

namespace {

const QString sample = QStringLiteral(RY_SAMPLES_DIR "/coffee.session");
const QByteArray version = "rycut-session 1\n";
const QByteArray lasso = "lasso 130 60 480 60 540 200 480 340 130 340 70 200\n";

QByteArray pictureLine(const QString &fileName, const QByteArray &size)
{
    const auto hash = QCryptographicHash::hash(contents(fileName), QCryptographicHash::Sha256);
    return "picture " + size + ' ' + hash.toHex() + '\n';
}

/// What the report says of the result; empty when there was none.
QString hashes(const QStringList &arguments, const QByteArray &input = {})
{
    const RycutRun run = RycutRun::of(arguments + QStringList{u"--report"_s, u"-"_s}, input);
    return run.report()[u"mask_sha256"].toString() + run.report()[u"labels_sha256"].toString();
}

QString hashesOf(const QByteArray &gestures)
{
    return hashes({u"replay"_s, u"-"_s, coffee}, version + lasso + gestures);
}

} // namespace

/// Sessions from files, and to files.
class tst_rycutReplay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void repeatsASessionOnAnyNumberOfCores();
    void writesWhatItDid_data();
    void writesWhatItDid();
    void gesturesDoWhatTheySay_data();
    void gesturesDoWhatTheySay();
    void actsWhereItShouldAtReducedSize();
    void refusesWhatDoesNotFit_data();
    void refusesWhatDoesNotFit();
    void takesAnotherPictureWhenForced();
    void stopsOnInterrupt();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder; // a fresh one for every test
};

void tst_rycutReplay::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_rycutReplay::repeatsASessionOnAnyNumberOfCores()
{
    const QStringList replay{u"replay"_s, sample, coffee};
    const QString expected = hashes(replay);
    QVERIFY(!expected.isEmpty());
    QVERIFY(expected != hashes({u"cut"_s, coffee, u"--lasso"_s,
                                QStringLiteral(RY_SAMPLES_DIR "/coffee.lasso")}));
    for (const auto &cores : {u"1"_s, u"2"_s, u"7"_s})
        QCOMPARE(hashes(replay + QStringList{u"--cores"_s, cores}), expected);
}

void tst_rycutReplay::writesWhatItDid_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("settings"); // as the session tells them
    QTest::newRow("full size") << QStringList{u"--full-size"_s}
                               << QByteArray("longest-side 0\nmethod graph\n");
    QTest::newRow("reduced") << QStringList{u"--max-length"_s, u"217"_s}
                             << QByteArray("longest-side 217\nmethod graph\n");
    QTest::newRow("coloured") << QStringList{u"--mask-colour"_s, u"#800000ff"_s}
                              << QByteArray("longest-side 1200\ncolor #0000ff\nmethod graph\n");
    QTest::newRow("classic") << QStringList{u"--method"_s, u"classic"_s}
                             << QByteArray("longest-side 1200\n");
}

void tst_rycutReplay::writesWhatItDid()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, settings);
    const QByteArray gestures =
            "click 300.25 230.1\nwidth 7.3\nscribble bg final 200 200.7 300 250\n"
            "lasso 100 40 500 40 500 360 100 360\nhover fg 200 200 30\n"
            "paint bg temporary 350 250 400 200\n";
    store(path(u"g.session"_s), version + gestures);
    const QString done = path(u"done.session"_s);
    const RycutRun run = RycutRun::of(
            cut(coffee, options + QStringList{u"--gestures"_s, path(u"g.session"_s), u"--report"_s,
                                              u"-"_s, u"--write-session"_s, done}));
    QCOMPARE(run.status, 0);
    QCOMPARE(run.report()[u"gestures"].toInt(), 5);
    QCOMPARE(run.report()[u"lasso"][u"vertices"].toInt(), 4);
    QCOMPARE(contents(done),
             version + pictureLine(coffee, "600x400") + settings + lasso + gestures);
    const QString again = hashes({u"replay"_s, done, u"-"_s}, contents(coffee));
    QCOMPARE(again,
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
    const QByteArray paint = "paint bg temporary 250 150\n";
    row("scribble", dot, "", false);
    row("brush width", dot, "width 11\n" + dot, false);
    row("paint moves whole regions", "paint bg final 300 150\n", dot, false);
    row("temporary strokes show", preview, "", false);
    row("a gesture is undone as a whole", preview + dot + "undo\n", "", true);
    row("and done again as it was shown", preview + dot + "undo\nredo\n", preview, true);
    row("painting is undone as well", paint + "paint bg final 300 150\nundo\n", "", true);
    row("a final stroke alone stays", dot + "undo\n", dot, true);
    const QByteArray area = "area bg 250 100 350 100 350 200 250 200\n";
    row("area", area, "", false);
    row("area that crosses itself", area,
        "area bg 250 100 350 100 350 200 250 200 250 100 350 100 350 200 250 200\n", true);
    row("an area is not undone", area + "undo\n", area, true);
    row("click", "click 300 150\n", "", false);
    row("click twice", "click 300 150\nclick 300 150\n", "", true);
    row("hover is only shown", "hover bg 300 150 40\n", "", true);
    row("invert", "invert\n", "", false);
    row("invert twice", "invert\ninvert\n", "", true);
    row("colour leaves the sides alone", "color #00ff00\n" + dot, dot, true);
    row("a lasso begins anew", dot + lasso, "", true);
}

void tst_rycutReplay::gesturesDoWhatTheySay()
{
    QFETCH(QByteArray, gestures);
    QFETCH(QByteArray, others);
    QFETCH(bool, areTheSame);
    const QString first = hashesOf(gestures);
    QVERIFY(!first.isEmpty());
    QCOMPARE(first == hashesOf(others), areTheSame);
}

void tst_rycutReplay::actsWhereItShouldAtReducedSize()
{
    const auto maskAt = [this](const QPoint &point, const QByteArray &gestures) {
        RycutRun::of({u"replay"_s, u"-"_s, coffee, u"--max-length"_s, u"200"_s, u"--mask"_s,
                      path(u"m.png"_s)},
                     version + lasso + gestures);
        return qGray(QImage(path(u"m.png"_s)).pixel(point));
    };
    const QByteArray stroke = "width 40\nscribble bg final 440 200\n";
    QCOMPARE(maskAt({440, 200}, ""), 255);
    QCOMPARE(maskAt({440, 200}, "click 440 200\n"), 0);
    QCOMPARE(maskAt({440, 200}, "paint bg final 440 200\n"), 0);
    QCOMPARE(maskAt({424, 200}, stroke), 0);
    QCOMPARE(maskAt({414, 200}, stroke), 255);
}

void tst_rycutReplay::refusesWhatDoesNotFit_data()
{
    QTest::addColumn<QByteArray>("session");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("named"); // in the message
    const auto replay = [](const char *name, const QByteArray &session, const char *named) {
        QTest::newRow(name) << session << QStringList{u"replay"_s, u"s"_s, coffee} << 2
                            << QByteArray(named);
    };
    const QByteArray whole = version + lasso;
    replay("malformed line", whole + "click 1\n", "s, line 3");
    replay("no lasso", version + "click 1 2\n", "s holds no lasso");
    replay("another size", version + pictureLine(coffee, "400x600") + lasso, "400 x 600");
    replay("another hash", version + pictureLine(sample, "600x400") + lasso, "SHA-256");
    QTest::newRow("another picture for a cut")
            << version + pictureLine(sample, "600x400") << cut(coffee, {u"--gestures"_s, u"s"_s})
            << 2 << QByteArray("SHA-256");
    QTest::newRow("lasso beyond what sessions hold") << whole << QStringList{u"cut"_s,
                                                                             coffee,
                                                                             u"--polygon"_s,
                                                                             u"0,0 2e6,0 0,400"_s,
                                                                             u"--write-session"_s,
                                                                             u"new"_s}
                                                     << 2 << QByteArray("--write-session");
    QTest::newRow("all from standard input")
            << whole << QStringList{u"replay"_s, u"-"_s, u"-"_s} << 1 << QByteArray("input");
    QTest::newRow("no picture") << whole << QStringList{u"replay"_s, u"s"_s} << 1
                                << QByteArray("picture");
}

void tst_rycutReplay::refusesWhatDoesNotFit()
{
    QFETCH(QByteArray, session);
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, named);
    store(path(u"s"_s), session);
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    RycutRun::start(process, arguments + QStringList{u"--mask"_s, u"m.png"_s});
    process.closeWriteChannel();
    const RycutRun run = RycutRun::finished(process);
    QCOMPARE(run.status, status);
    QVERIFY2(run.errors.count('\n') == 1 && run.errors.contains(named), run.errors.constData());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{u"s"_s});
}

void tst_rycutReplay::takesAnotherPictureWhenForced()
{
    const QByteArray session = version + pictureLine(sample, "400x600") + lasso;
    QCOMPARE(hashes({u"replay"_s, u"-"_s, coffee, u"--force"_s}, session), hashesOf(""));
}

void tst_rycutReplay::stopsOnInterrupt()
{
    Terminal terminal;
    if (!terminal.isOpen())
        QSKIP("This system gives out no pseudo-terminals");
    store(path(u"s"_s), version + lasso + QByteArray("click 300 150\n").repeated(1000000));
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TERM"_s, u"xterm"_s);
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(terminal.deviceName());
    RycutRun::start(process, {u"replay"_s, path(u"s"_s), coffee, u"--mask"_s, path(u"m.png"_s)});
    QTRY_VERIFY_WITH_TIMEOUT(terminal.said().contains("100 %"),
                             patienceMs); // the clicks have begun
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    QCOMPARE(RycutRun::finished(process).status, 130);
    QVERIFY(!QFile::exists(path(u"m.png"_s)));
}

RY_TEST_CLASS(tst_rycutReplay, QCoreApplication)
#include "tst_rycutReplay.moc"
