#include "cli/RycutRun.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QTest>

#include <array>

using namespace Qt::StringLiterals;

namespace {

const QByteArray settings = "--settings s.ini settings ";

} // namespace

/// `rycut settings`, and what other commands make of it.
class tst_rycutSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhatWasSet();
    void refuses_data();
    void refuses();
    void saysWhatCannotBeWritten();
    void cutsAtTheLengthThatWasSet();
    void processesKeepEachOthersChanges();
};

void tst_rycutSettings::showsWhatWasSet()
{
    const RycutFolder folder;
    QCOMPARE(folder.run(settings + "set backgroundColors '#123456, red,#7f00ff00'").status, 0);
    QCOMPARE(folder.run(settings + "set dbgFolder '-a, b'").errors, QByteArray());
    QCOMPARE(folder.run(settings + "get dbgFolder").output, QByteArray("-a, b\n"));
    const QByteArray all = "backgroundColors = #ff123456,#ffff0000,#7f00ff00\n"
                           "dbgFolder = -a, b\nmaxFotoLength = 1200\n";
    QCOMPARE(folder.run("--settings=s.ini settings").output, all);
    QVERIFY(folder.run("settings").output.contains("= DEBUG\n")); // in the usual file
}

void tst_rycutSettings::refuses_data()
{
    QTest::addColumn<QByteArray>("named");
    QTest::newRow("get") << QByteArray("--help");
    QTest::newRow("set dbgFolder a b") << QByteArray("--help");
    QTest::newRow("reset") << QByteArray("--help");
    QTest::newRow("--all") << QByteArray("all");
    QTest::newRow("get maxPhotoLength") << QByteArray("only backgroundColors");
    QTest::newRow("set debug a") << QByteArray("'debug'");
    QTest::newRow("set maxFotoLength 0") << QByteArray("'0'");
    QTest::newRow("set maxFotoLength 1e3") << QByteArray("'1e3'");
    QTest::newRow("set backgroundColors red,bleu,red") << QByteArray("'bleu'");
    QTest::newRow("set backgroundColors red,blue") << QByteArray("2 were given");
}

void tst_rycutSettings::refuses()
{
    const RycutFolder folder;
    const RycutRun refused = folder.run(settings + QTest::currentDataTag());
    QFETCH(QByteArray, named);
    QCOMPARE(refused.status, 1);
    QCOMPARE(refused.errors.count('\n'), 1);
    QVERIFY2(refused.errors.contains(named), refused.errors.constData());
    QCOMPARE(folder.files(), QStringList());
}

void tst_rycutSettings::saysWhatCannotBeWritten()
{
    const RycutRun unwritten =
            RycutFolder().run("--settings /proc/none/s.ini settings set dbgFolder a");
    QCOMPARE(unwritten.status, 4);
    QVERIFY(unwritten.errors.contains("rycut: /proc/none/s.ini"));
}

void tst_rycutSettings::cutsAtTheLengthThatWasSet()
{
    const RycutFolder folder;
    QVERIFY(Samples::photograph(u"coffee.png"_s, 1500).save(folder.path(u"p.bmp"_s)));
    for (const int length : {300, 0}) {
        folder.store(u"s.ini"_s, "[ImageCutter]\nmaxFotoLength=" + QByteArray::number(length));
        const RycutRun done = folder.run("--settings s.ini " + folder.cut("--report -", "p.bmp"));
        QCOMPARE(done.report()[u"cutting"][u"width"].toInt(), length > 0 ? length : 1200);
    }
}

void tst_rycutSettings::processesKeepEachOthersChanges()
{
    const RycutFolder folder;
    for (int i = 1; i <= 25; ++i) {
        QFile::remove(folder.path(u"s.ini"_s)); // so that each also writes what it believes missing
        const QByteArray value = QByteArray::number(i);
        std::array<QProcess, 2> processes;
        folder.start(processes[0], settings + "set dbgFolder " + value);
        folder.start(processes[1], settings + "set maxFotoLength " + value);
        for (QProcess &process : processes)
            QCOMPARE(RycutRun::finished(process).status, 0);
        const QByteArray all = folder.run(settings).output;
        QVERIFY2(all.contains("dbgFolder = " + value + "\nmaxFotoLength = " + value + '\n'),
                 all.constData());
    }
    QCOMPARE(folder.files().size(), 1); // no lock is left
}

RY_TEST_CLASS(tst_rycutSettings, QCoreApplication)
#include "tst_rycutSettings.moc"
