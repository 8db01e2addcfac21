#include "cli/RycutRun.h"
#include "cli/Terminal.h"
#include "support/Patience.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;
using namespace RycutFiles;

/// What the program does when it cannot do what it was asked for.
class tst_rycutFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void failsInOneLine_data();
    void failsInOneLine();
    void reportsAnEmptyResult();
    void leavesNothingWhenStandardOutputFails();
    void showsProgressAndStopsOnInterrupt_data();
    void showsProgressAndStopsOnInterrupt();
    void stopsWaitingForInputOnInterrupt();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files); }

    std::unique_ptr<QTemporaryDir> m_folder; // a fresh one for every test
};

void tst_rycutFailures::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_rycutFailures::failsInOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("named"); // in the message
    const QString old = u"old.png"_s;      // exists, and has to stay as it is
    const auto row = [](const char *name, const QStringList &arguments, int status,
                        const char *named) {
        QTest::newRow(name) << arguments << status << QByteArray(named);
    };
    const auto lasso = [old](const QString &polygon) {
        return QStringList{u"cut"_s, coffee, u"--polygon"_s, polygon, u"--mask"_s, old};
    };
    const auto mask = [old](const QStringList &more) {
        return cut(coffee, QStringList{u"--mask"_s, old} + more);
    };
    row("no command", {}, 1, "--help");
    row("unknown command", {u"paste"_s}, 1, "paste");
    row("no picture", {u"cut"_s}, 1, "picture");
    row("two pictures", cut(coffee, {coffee, u"--mask"_s, old}), 1, "2");
    row("no lasso", {u"cut"_s, coffee, u"--mask"_s, old}, 1, "--lasso");
    row("two lassos", mask({u"--lasso"_s, u"bad.lasso"_s}), 1, "--polygon");
    row("no output", cut(coffee, {}), 1, "--output");
    row("unknown option", mask({u"--colour"_s}), 1, "colour");
    row("all from standard input", {u"cut"_s, u"-"_s, u"--lasso"_s, u"-"_s, u"--mask"_s, old}, 1,
        "standard input");
    row("all to standard output", cut(coffee, {u"--mask"_s, u"-"_s, u"--report"_s, u"-"_s}), 1,
        "standard output");
    row("one file twice", mask({u"--output"_s, u"./old.png"_s}), 1, "old.png");
    row("no alpha", mask({u"--output"_s, u"o.jpg"_s}), 1, "o.jpg");
    row("background not opaque",
        mask({u"--output"_s, u"o.jpg"_s, u"--background"_s, u"#80ffffff"_s}), 1, "o.jpg");
    row("unknown format", mask({u"--output"_s, u"o.what"_s}), 1, "o.what");
    row("mask is png", cut(coffee, {u"--mask"_s, u"m.jpg"_s}), 1, "m.jpg");
    row("bad colour", mask({u"--background"_s, u"bleu"_s}), 1, "bleu");
    row("bad kernel", mask({u"--kernel"_s, u"mmx"_s}), 1, "mmx");
    row("bad cores", mask({u"--cores"_s, u"0"_s}), 1, "--cores");
    row("two sizes", mask({u"--full-size"_s, u"--max-length"_s, u"9"_s}), 1, "--full-size");

    row("no such picture", cut(u"none.png"_s, {u"--mask"_s, old}), 2, "none.png");
    row("folder as picture", cut(u"."_s, {u"--mask"_s, old}), 2, "folder");
    row("not a picture", cut(u"bad.lasso"_s, {u"--mask"_s, old}), 2, "bad.lasso");
    row("too many pixels", cut(u"huge.png"_s, {u"--mask"_s, old}), 2, "--allow-huge");
    row("two vertices", lasso(u"1,2 3,4"_s), 2, "3 vertices");
    row("not a number", lasso(u"1,2 3,x 5,6"_s), 2, "vertex 2");
    row("not finite", lasso(u"1,2 3,4 5,inf"_s), 2, "vertex 3");
    row("bad line", {u"cut"_s, coffee, u"--lasso"_s, u"bad.lasso"_s, u"--mask"_s, old}, 2,
        "bad.lasso, line 4");

    row("empty result", lasso(u"900,900 990,900 950,990"_s), 3, "coffee.png");
    row("no such folder", mask({u"--output"_s, u"none/o.png"_s}), 4, "none/o.png");
    row("folder as output", mask({u"--output"_s, u"folder.png"_s}), 4, "folder.png");
}

void tst_rycutFailures::failsInOneLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, named);
    store(path(u"old.png"_s), "precious");
    store(path(u"bad.lasso"_s), "1 2\n3 4\n\n5 6 7\n");
    QImage huge(20001, 10000, QImage::Format_Mono); // one bit a pixel: cheap to write
    huge.fill(0);
    if (named == "--allow-huge")
        QVERIFY(huge.save(path(u"huge.png"_s)));
    QVERIFY(QDir(m_folder->path()).mkdir(u"folder.png"_s));
    const QStringList before = files();

    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    RycutRun::start(process, arguments);
    process.closeWriteChannel();
    const RycutRun run = RycutRun::finished(process);
    QCOMPARE(run.status, status);
    QCOMPARE(run.output, QByteArray());
    QVERIFY2(run.errors.startsWith("rycut: ") && run.errors.count('\n') == 1,
             run.errors.constData());
    QVERIFY2(run.errors.contains(named), run.errors.constData());
    QCOMPARE(files(), before);
    QCOMPARE(contents(path(u"old.png"_s)), QByteArray("precious"));
}

void tst_rycutFailures::reportsAnEmptyResult()
{
    const RycutRun run =
            RycutRun::of({u"cut"_s, coffee, u"--polygon"_s, u"900,900 990,900 950,990"_s,
                          u"--mask"_s, path(u"m.png"_s), u"--report"_s, path(u"r.json"_s)});
    QCOMPARE(run.status, 3);
    QCOMPARE(files(), QStringList{u"r.json"_s});
    const auto report = QJsonDocument::fromJson(contents(path(u"r.json"_s))).object();
    QCOMPARE(report[u"foreground_pixels"].toInt(-1), 0);
}

void tst_rycutFailures::leavesNothingWhenStandardOutputFails()
{
    QProcess process;
    process.setStandardOutputFile(u"/dev/full"_s);
    RycutRun::start(process, cut(coffee, {u"--output"_s, path(u"o.png"_s), u"--mask"_s, u"-"_s}));
    const RycutRun run = RycutRun::finished(process);
    QCOMPARE(run.status, 4);
    QVERIFY(run.errors.contains("standard output"));
    QCOMPARE(files(), QStringList());
}

void tst_rycutFailures::showsProgressAndStopsOnInterrupt_data()
{
    QTest::addColumn<QString>("noColour");
    QTest::addColumn<bool>("isColoured");
    QTest::newRow("coloured") << QString() << true;
    QTest::newRow("plain") << u"1"_s << false;
}

void tst_rycutFailures::showsProgressAndStopsOnInterrupt()
{
    QFETCH(QString, noColour);
    QFETCH(bool, isColoured);
    Terminal terminal;
    if (!terminal.isOpen())
        QSKIP("This system gives out no pseudo-terminals");
    QVERIFY(Samples::photograph(u"coffee.png"_s, 5000).save(path(u"p.bmp"_s))); // takes seconds
    store(path(u"o.png"_s), "precious");
    const QStringList before = files();
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TERM"_s, u"xterm"_s);
    environment.insert(u"NO_COLOR"_s, noColour);
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(terminal.deviceName());
    RycutRun::start(process, {u"cut"_s, path(u"p.bmp"_s), u"--polygon"_s,
                              u"500,300 4500,300 4500,3000 500,3000"_s, u"--full-size"_s,
                              u"--output"_s, path(u"o.png"_s)});
    QTRY_VERIFY_WITH_TIMEOUT(terminal.said().contains(" %"), patienceMs); // the session is at work
    QCOMPARE(terminal.said().contains("\033[32m"), isColoured);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    QCOMPARE(RycutRun::finished(process).status, 130);
    QTRY_VERIFY_WITH_TIMEOUT(
            terminal.said().endsWith("\033[Krycut: interrupted, nothing written\r\n"), patienceMs);
    QCOMPARE(files(), before);
    QCOMPARE(contents(path(u"o.png"_s)), QByteArray("precious"));
}

void tst_rycutFailures::stopsWaitingForInputOnInterrupt()
{
    QProcess process;
    RycutRun::start(process, cut(u"-"_s, {u"--output"_s, path(u"o.png"_s)}));
    process.write(QByteArray(1 << 20, 'x')); // more than a pipe holds: the last byte needs a reader
    while (process.bytesToWrite() > 0)
        QVERIFY(process.waitForBytesWritten());
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    const RycutRun run = RycutRun::finished(process);
    QCOMPARE(run.status, 130);
    QCOMPARE(run.errors, QByteArray("rycut: interrupted, nothing written\n"));
    QCOMPARE(files(), QStringList());
}

RY_TEST_CLASS(tst_rycutFailures, QCoreApplication)
#include "tst_rycutFailures.moc"
