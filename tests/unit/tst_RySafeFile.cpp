#include "RySafeFile.h"
#include "RySettings.h"
#include "settings/RyImageCutterSettings.h"
#include "support/SmallDisk.h"
#include "support/TestClasses.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("nothing");
}

void store(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

} // namespace

/// Files that appear whole or not at all, and settings, which are such files.
class tst_RySafeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replaces_data();
    void replaces();
    void appearTogetherOrNotAtAll();
    void refuses_data();
    void refuses();
    void leavesAFullDiskAlone_data();
    void leavesAFullDiskAlone();
    void settingsOutliveAFullDisk();
    void settingsWaitForTheirTurn();
};

void tst_RySafeFile::replaces_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("place"); // where it is found then
    QTest::newRow("new") << u"new"_s << u"new"_s;
    QTest::newRow("present") << u"present"_s << u"present"_s;
    QTest::newRow("link") << u"link"_s << u"present"_s;
    QTest::newRow("link to a link") << u"second link"_s << u"present"_s;
    QTest::newRow("link to nothing") << u"loose link"_s << u"nowhere yet"_s;
}

void tst_RySafeFile::replaces()
{
    QFETCH(QString, name);
    QFETCH(QString, place);
    const QTemporaryDir folder;
    const QDir dir(folder.path());
    store(dir.filePath(u"present"_s), "before");
    QVERIFY(QFile::setPermissions(dir.filePath(u"present"_s), QFile::Permissions(0x6440)));
    QVERIFY(QFile::link(u"present"_s, dir.filePath(u"link"_s)));
    QVERIFY(QFile::link(u"link"_s, dir.filePath(u"second link"_s)));
    QVERIFY(QFile::link(u"nowhere yet"_s, dir.filePath(u"loose link"_s)));
    const QString path = dir.filePath(place);
    const QByteArray before = contentOf(path);
    const bool isThere = QFile::exists(path);
    const auto permissions = QFile::permissions(path);
    const QStringList names = dir.entryList(QDir::Files | QDir::System);
    {
        RySafeFile abandoned(dir.filePath(name));
        QVERIFY(abandoned.open() && abandoned.write("half of it") > 0 && abandoned.finish());
    }
    RySafeFile file(dir.filePath(name));
    QVERIFY(file.open());
    QCOMPARE(file.write("after and before"), 16);
    QVERIFY(file.seek(0));
    QCOMPARE(file.write("AFTER"), 5);
    QCOMPARE(file.size(), 16);
    QCOMPARE(contentOf(path), before);
    QVERIFY(file.commit());
    QCOMPARE(contentOf(path), "AFTER and before");
    if (isThere)
        QCOMPARE(QFile::permissions(path), permissions);
    QCOMPARE(dir.entryList(QDir::Files | QDir::System).size(), names.size() + !isThere);
    QCOMPARE(QFileInfo(dir.filePath(name)).isSymLink(), name != place);
}

void tst_RySafeFile::appearTogetherOrNotAtAll()
{
    const QTemporaryDir folder;
    const QDir dir(folder.path());
    store(dir.filePath(u"present"_s), "before");
    const auto commit = [&dir](const QString &last) {
        RySafeFile present(dir.filePath(u"present"_s)), fresh(dir.filePath(u"new"_s)),
                spoilt(dir.filePath(last));
        const std::array files{&present, &fresh, &spoilt};
        for (RySafeFile *const file : files)
            QVERIFY(file->open() && file->write("after") == 5);
        const bool isSpoilt = last == "in the way"_L1;
        QVERIFY(!isSpoilt || dir.mkdir(last));
        QCOMPARE(RySafeFile::commitAll(files), isSpoilt ? &spoilt : nullptr);
    };
    commit(u"in the way"_s);
    QCOMPARE(contentOf(dir.filePath(u"present"_s)), "before");
    QCOMPARE(dir.entryList(QDir::Files | QDir::System), QStringList{u"present"_s});
    commit(u"third"_s);
    QCOMPARE(contentOf(dir.filePath(u"present"_s)), "after");
    QCOMPARE(dir.entryList(QDir::Files | QDir::System).size(), 3);
}

void tst_RySafeFile::refuses_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("folder") << u"/tmp"_s;
    QTest::newRow("device") << u"/dev/full"_s;
    QTest::newRow("no such folder") << u"/nowhere/file"_s;
    QTest::newRow("not to be written to") << u"/proc/file"_s;
}

void tst_RySafeFile::refuses()
{
    QFETCH(QString, name);
    RySafeFile file(name);
    QVERIFY(!file.open());
    QVERIFY(!file.errorString().isEmpty());
    QVERIFY(!file.commit());
}

void tst_RySafeFile::leavesAFullDiskAlone_data()
{
    QTest::addColumn<int>("pieceBytes");
    for (const int bytes : {1, 5000, 100'000})
        QTest::addRow("%d bytes at a time", bytes) << bytes;
}

void tst_RySafeFile::leavesAFullDiskAlone()
{
    QFETCH(int, pieceBytes);
    const SmallDisk disk(64 << 10);
    if (!disk.isMounted())
        QSKIP("only root can make a small disk");
    const QString path = disk.filePath(u"file"_s);
    store(path, QByteArray(20 << 10, 'a'));
    const QByteArray before = contentOf(path);
    RySafeFile file(path);
    QVERIFY(file.open());
    const QByteArray piece(pieceBytes, 'b');
    for (int bytes = 0; bytes < 50'000; bytes += pieceBytes)
        file.write(piece); // whatever it returns
    QVERIFY(!file.commit());
    QVERIFY2(file.errorString().contains(disk.path()), qPrintable(file.errorString()));
    QCOMPARE(contentOf(path), before);
    QCOMPARE(QDir(disk.path()).entryList(QDir::Files), QStringList{u"file"_s});
}

void tst_RySafeFile::settingsOutliveAFullDisk()
{
    const SmallDisk disk(16 << 10);
    if (!disk.isMounted())
        QSKIP("only root can make a small disk");
    RySettings::setFileName(disk.filePath(u"settings.ini"_s));
    RyImageCutterSettings &settings = RyImageCutterSettings::instance();
    settings.setDebugFolder(u"before"_s);
    const QByteArray before = contentOf(RySettings::fileName());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"is full"_s));
    settings.setDebugFolder(QString(20 << 10, u'x'));
    QVERIFY(RySettings::saveError().contains(disk.path()));
    QCOMPARE(contentOf(RySettings::fileName()), before);
    settings.setDebugFolder(u"after"_s);
    QCOMPARE(RySettings::saveError(), QString());
}

void tst_RySafeFile::settingsWaitForTheirTurn()
{
    const QTemporaryDir folder;
    RySettings::setFileName(folder.filePath(u"settings.ini"_s));
    const std::jthread greedy([name = RySettings::fileName()](const std::stop_token &stop) {
        QLockFile lock(name + u".lock"_s);
        while (!stop.stop_requested()) {
            if (!lock.tryLock(0))
                continue;
            std::this_thread::sleep_for(std::chrono::milliseconds(4)); // as saving takes
            lock.unlock();
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    for (int i = 0; i < 5; ++i) {
        RyImageCutterSettings::instance().setMaximalImageLength(1000 + i);
        QCOMPARE(RySettings::saveError(), QString());
    }
}

RY_TEST_CLASS(tst_RySafeFile, QCoreApplication)
#include "tst_RySafeFile.moc"
