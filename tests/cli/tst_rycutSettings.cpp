#include "cli/RycutRun.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QDir>
#include <QTest>

#include <array>

using namespace Qt::StringLiterals;
using namespace RycutFiles;

/// `rycut settings`, and what other commands make of it.
class tst_rycutSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QFile::remove(m_fileName); }

    void showsWhatWasSet();
    void refuses_data();
    void refuses();
    void saysWhatCannotBeWritten();
    void cutsAtTheLengthThatWasSet();
    void processesKeepEachOthersChanges();

private:
    RycutRun run(const QStringList &words) const
    {
        return RycutRun::of(QStringList{u"--settings"_s, m_fileName, u"settings"_s} + words);
    }

    const QTemporaryDir m_folder;
    const QString m_fileName = m_folder.filePath(u"settings.ini"_s);
};

void tst_rycutSettings::showsWhatWasSet()
{
    QCOMPARE(run({u"set"_s, u"backgroundColors"_s, u"#123456, red,#7f00ff00"_s}).status, 0);
    QCOMPARE(run({u"set"_s, u"dbgFolder"_s, u"-a, b"_s}).errors, QByteArray());
    QCOMPARE(run({u"get"_s, u"dbgFolder"_s}).output, QByteArray("-a, b\n"));
    const QByteArray all = "backgroundColors = #ff123456,#ffff0000,#7f00ff00\n"
                           "dbgFolder = -a, b\nmaxFotoLength = 1200\n";
    QCOMPARE(RycutRun::of({u"--settings="_s + m_fileName, u"settings"_s}).output, all);
    QVERIFY(RycutRun::of({u"settings"_s}).output.contains("= DEBUG\n")); // in the usual file
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
    const RycutRun refused = run(QString::fromLatin1(QTest::currentDataTag()).split(u' '));
    QFETCH(QByteArray, named);
    QCOMPARE(refused.status, 1);
    QCOMPARE(refused.errors.count('\n'), 1);
    QVERIFY2(refused.errors.contains(named), refused.errors.constData());
    QVERIFY(!QFile::exists(m_fileName));
}

void tst_rycutSettings::saysWhatCannotBeWritten()
{
    const RycutRun unwritten = RycutRun::of({u"--settings"_s, u"/proc/none/s.ini"_s, u"settings"_s,
                                             u"set"_s, u"dbgFolder"_s, u"a"_s});
    QCOMPARE(unwritten.status, 4);
    QVERIFY(unwritten.errors.contains("rycut: /proc/none/s.ini"));
}

void tst_rycutSettings::cutsAtTheLengthThatWasSet()
{
    const QString picture = m_folder.filePath(u"p.bmp"_s);
    QVERIFY(Samples::photograph(u"coffee.png"_s, 1500).save(picture));
    for (const int length : {300, 0}) {
        store(m_fileName, "[ImageCutter]\nmaxFotoLength=" + QByteArray::number(length));
        const RycutRun done = RycutRun::of(QStringList{u"--settings"_s, m_fileName} +
                                           cut(picture, {u"--report"_s, u"-"_s}));
        QCOMPARE(done.report()[u"cutting"][u"width"].toInt(), length > 0 ? length : 1200);
    }
    QVERIFY(QFile::remove(picture));
}

void tst_rycutSettings::processesKeepEachOthersChanges()
{
    for (int i = 1; i <= 25; ++i) {
        QFile::remove(m_fileName); // so that each also writes what it believes to be missing
        const QString value = QString::number(i);
        std::array<QProcess, 2> processes;
        for (int key : {0, 1})
            RycutRun::start(processes.at(key),
                            {u"--settings"_s, m_fileName, u"settings"_s, u"set"_s,
                             key == 0 ? u"dbgFolder"_s : u"maxFotoLength"_s, value});
        for (QProcess &process : processes)
            QCOMPARE(RycutRun::finished(process).status, 0);
        const QByteArray all = run({}).output;
        QVERIFY2(all.contains(u"dbgFolder = %1\nmaxFotoLength = %1\n"_s.arg(value).toUtf8()),
                 all.constData());
    }
    QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files).size(), 1); // no lock is left
}

RY_TEST_CLASS(tst_rycutSettings, QCoreApplication)
#include "tst_rycutSettings.moc"
