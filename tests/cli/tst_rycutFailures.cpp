#include "cli/RycutRun.h"
#include "cli/Terminal.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

/// What the program does when it cannot do what it was asked for.
class tst_rycutFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failsInOneLine_data();
    void failsInOneLine();
    void reportsAnEmptyResult_data();
    void reportsAnEmptyResult();
    void leavesNothingWhenStandardOutputFails();
    void showsProgressAndStopsOnInterrupt_data();
    void showsProgressAndStopsOnInterrupt();
    void stopsWaitingForInputOnInterrupt();
};

void tst_rycutFailures::failsInOneLine_data()
{
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("named"); // in the message
    const auto row = [](const QByteArray &arguments, int status, const char *named) {
        QTest::newRow(arguments.constData()) << arguments << status << QByteArray(named);
    };
    // old.png exists, and has to stay as it is.
    const auto mask = [](const QByteArray &more) {
        return RycutFolder::cut("--mask old.png " + more);
    };
    row("", 1, "--help");
    row("paste", 1, "paste");
    row("cut", 1, "picture");
    row(mask("@coffee.png"), 1, "2");
    row("cut @coffee.png --mask old.png", 1, "--lasso");
    row(mask("--lasso bad.lasso"), 1, "--polygon");
    row(RycutFolder::cut(""), 1, "--output");
    row(mask("--colour"), 1, "colour");
    row("cut - --lasso - --mask old.png", 1, "standard input");
    row(RycutFolder::cut("--mask - --report -"), 1, "standard output");
    row(mask("--output ./old.png"), 1, "old.png");
    row(mask("--output o.jpg"), 1, "o.jpg");
    row(mask("--output o.jpg --background #80ffffff"), 1, "o.jpg");
    row(mask("--output o.what"), 1, "o.what");
    row(RycutFolder::cut("--mask m.jpg"), 1, "m.jpg");
    row(mask("--background bleu"), 1, "bleu");
    row(mask("--kernel mmx"), 1, "mmx");
    row(mask("--cores 0"), 1, "--cores");
    row(mask("--full-size --max-length 9"), 1, "--full-size");
    row(RycutFolder::cut("--mask old.png", "none.png"), 2, "none.png");
    row(RycutFolder::cut("--mask old.png", "."), 2, "folder");
    row(RycutFolder::cut("--mask old.png", "bad.lasso"), 2, "bad.lasso");
    row(RycutFolder::cut("--mask old.png", "huge.png"), 2, "--allow-huge");
    row("cut @coffee.png --mask old.png --polygon '1,2 3,4'", 2, "3 vertices");
    row("cut @coffee.png --mask old.png --polygon '1,2 3,x 5,6'", 2, "vertex 2");
    row("cut @coffee.png --mask old.png --polygon '1,2 3,4 5,inf'", 2, "vertex 3");
    row("cut @coffee.png --mask old.png --lasso bad.lasso", 2, "bad.lasso, line 4");
    row("cut @coffee.png --mask old.png --polygon '900,900 990,900 950,990'", 3, "coffee.png");
    row(mask("--output none/o.png"), 4, "none/o.png");
    row(mask("--output folder.png"), 4, "folder.png");

    row(mask("--smooth 201"), 1, "from 0 to 200");
    row(mask("--feather 1.5"), 1, "'1.5'");
    row(mask("--drop few"), 1, "'few'");
    row(mask("--grow -201"), 1, "from -200 to 200");
    row(mask("--fill 100000001"), 1, "--fill");
    row(mask("--clean 51"), 1, "from 0 to 50");
    row(mask("--outline new.json"), 1, ".svg");
    row(mask("--drop 1000000"), 3, "drop, smooth or grow");

    const QByteArray wire = "wire @coffee.png --points '1,2 3,4' ";
    row("wire @coffee.png --overlay v.png", 1, "--points");
    row(wire, 1, "--outline");
    row(wire + "--mask m.png", 1, "--close");
    row(wire + "--overlay v.png --grow 1", 1, "--grow needs");
    row(wire + "--overlay v.png --crop", 1, "--crop needs");
    row(wire + "--overlay v.png --cost grey", 1, "grey");
    row(wire + "--outline new.txt", 1, ".svg or .json");
    row(wire + "--overlay v.png --report v.png", 1, "v.png");
    row("wire @coffee.png --overlay v.png --points 1,2", 2, "at least 2");
    row("wire @coffee.png --overlay v.png --points '1,2 x,4'", 2, "--points, vertex 2");
    row("wire none.png --overlay v.png --points '1,2 3,4'", 2, "none.png");
    row("wire @coffee.png --close --mask m.png --report r --points '30,40 30,40'", 3, "nothing");

    row("replay malformed @coffee.png --mask m.png", 2, "malformed, line 3");
    row("replay empty @coffee.png --mask m.png", 2, "empty holds no lasso");
    row("replay other @coffee.png --mask m.png", 2, "400 x 600");
    row("replay hash @coffee.png --mask m.png", 2, "SHA-256");
    row(mask("--gestures hash"), 2, "SHA-256");
    row("cut @coffee.png --mask m.png --polygon '0,0 2e6,0 0,400' --write-session new", 2,
        "--write-session");
    row("replay - - --mask m.png", 1, "input");
    row("replay other --mask m.png", 1, "picture");
}

void tst_rycutFailures::failsInOneLine()
{
    QFETCH(QByteArray, arguments);
    QFETCH(QByteArray, named);
    const RycutFolder folder;
    folder.store(u"old.png"_s, "precious");
    folder.store(u"bad.lasso"_s, "1 2\n3 4\n\n5 6 7\n");
    const QByteArray version = "rycut-session 1\n", lasso = "lasso 130 60 480 60 540 200\n";
    folder.store(u"malformed"_s, version + lasso + "click 1\n");
    folder.store(u"empty"_s, version + "click 1 2\n");
    folder.store(u"other"_s, version + "picture 400x600 " + QByteArray(64, 'a') + '\n' + lasso);
    folder.store(u"hash"_s, version + "picture 600x400 " + QByteArray(64, 'a') + '\n' + lasso);
    QImage huge(20001, 10000, QImage::Format_Mono); // one bit a pixel: cheap to write
    huge.fill(0);
    QVERIFY(named != "--allow-huge" || huge.save(folder.path(u"huge.png"_s)));
    QVERIFY(QDir(folder.path({})).mkdir(u"folder.png"_s));
    const QStringList before = folder.files();
    const RycutRun run = folder.run(arguments);
    QTEST(run.status, "status");
    QCOMPARE(run.output, QByteArray());
    QVERIFY2(run.errors.startsWith("rycut: ") && run.errors.count('\n') == 1,
             run.errors.constData());
    QVERIFY2(run.errors.contains(named), run.errors.constData());
    QCOMPARE(folder.files(), before);
    QCOMPARE(folder.contents(u"old.png"_s), QByteArray("precious"));
}

void tst_rycutFailures::reportsAnEmptyResult_data()
{
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<bool>("cutsSomething");
    QTest::newRow("cut") << QByteArray("cut @coffee.png --polygon '900,900 990,900 950,990'")
                         << false;
    QTest::newRow("edge") << RycutFolder::cut("--drop 1000000") << true;
}

void tst_rycutFailures::reportsAnEmptyResult()
{
    QFETCH(QByteArray, arguments);
    const RycutFolder folder;
    QCOMPARE(folder.run(arguments + " --mask m.png --report r.json").status, 3);
    QCOMPARE(folder.files(), QStringList{u"r.json"_s});
    const auto report = QJsonDocument::fromJson(folder.contents(u"r.json"_s)).object();
    QTEST(report[u"foreground_pixels"].toInt(-1) > 0, "cutsSomething");
}

void tst_rycutFailures::leavesNothingWhenStandardOutputFails()
{
    const RycutFolder folder;
    QProcess process;
    process.setStandardOutputFile(u"/dev/full"_s);
    folder.start(process, folder.cut("--output o.png --mask -"));
    const RycutRun run = RycutRun::finished(process);
    QCOMPARE(run.status, 4);
    QVERIFY(run.errors.contains("standard output"));
    QCOMPARE(folder.files(), QStringList());
}

void tst_rycutFailures::showsProgressAndStopsOnInterrupt_data()
{
    QTest::addColumn<QByteArray>("arguments"); // for something that takes seconds
    QTest::addColumn<QByteArray>("said");      // when it is at work
    QTest::addColumn<QString>("noColour");
    const QByteArray cut = "cut p.bmp --polygon '500,300 4500,300 4500,3000 500,3000' --full-size ";
    QTest::newRow("coloured") << cut << QByteArray(" %") << QString();
    QTest::newRow("plain") << cut << QByteArray(" %") << u"1"_s;
    QTest::newRow("replay") << QByteArray("replay s @coffee.png ") << QByteArray("100 %") << u"1"_s;
    const QByteArray there = "0,0 4999,3000 ";
    QTest::newRow("wire") << "wire p.bmp --close --full-size --points '" + there.repeated(200) +
                                     "' "
                          << QByteArray(" %") << u"1"_s;
}

void tst_rycutFailures::showsProgressAndStopsOnInterrupt()
{
    QFETCH(QByteArray, arguments);
    QFETCH(QByteArray, said);
    QFETCH(QString, noColour);
    Terminal terminal;
    if (!terminal.isOpen())
        QSKIP("This system gives out no pseudo-terminals");
    const RycutFolder folder;
    QVERIFY(Samples::photograph(u"coffee.png"_s, 5000).save(folder.path(u"p.bmp"_s)));
    folder.store(u"s"_s, "rycut-session 1\nlasso 130 60 480 60 540 200 480 340 130 340 70 200\n" +
                                 QByteArray("click 300 150\n").repeated(1000000));
    folder.store(u"o.png"_s, "precious");
    const QStringList before = folder.files();
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TERM"_s, u"xterm"_s);
    environment.insert(u"NO_COLOR"_s, noColour);
    process.setProcessEnvironment(environment);
    process.setStandardErrorFile(terminal.deviceName());
    folder.start(process, arguments + "--output o.png");
    QTRY_VERIFY_WITH_TIMEOUT(terminal.said().contains(said), patienceMs);
    QCOMPARE(terminal.said().contains("\033[32m"), noColour.isEmpty());
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    QCOMPARE(RycutRun::finished(process).status, 130);
    QTRY_VERIFY_WITH_TIMEOUT(
            terminal.said().endsWith("\033[Krycut: interrupted, nothing written\r\n"), patienceMs);
    QCOMPARE(folder.files(), before);
    QCOMPARE(folder.contents(u"o.png"_s), QByteArray("precious"));
}

void tst_rycutFailures::stopsWaitingForInputOnInterrupt()
{
    const RycutFolder folder;
    QProcess process;
    folder.start(process, folder.cut("--output o.png", "-"));
    process.write(QByteArray(1 << 20, 'x')); // more than a pipe holds: the last byte needs a reader
    while (process.bytesToWrite() > 0)
        QVERIFY(process.waitForBytesWritten());
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    const RycutRun run = RycutRun::finished(process);
    QCOMPARE(run.status, 130);
    QCOMPARE(run.errors, QByteArray("rycut: interrupted, nothing written\n"));
    QCOMPARE(folder.files(), QStringList());
}

RY_TEST_CLASS(tst_rycutFailures, QCoreApplication)
#include "tst_rycutFailures.moc"
