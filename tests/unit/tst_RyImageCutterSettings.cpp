#include "settings/RyImageCutterSettings.h"
#include "support/TestClasses.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QColor translucentRed(255, 0, 0, 128);
const QList<QColor> defaultColors{Qt::white, Qt::black, translucentRed};

RyImageCutterSettings &settings()
{
    return RyImageCutterSettings::instance();
}

} // namespace

class tst_RyImageCutterSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void bringsBackWhatWasSet();
    void readsFilesWrittenByHand_data();
    void readsFilesWrittenByHand();
    void leavesTheFileAloneWithoutNeed();
    void keepsWhatOthersChanged();
    void replacesADamagedFileWhenChanged();
    void triesAgainWhatCouldNotBeSaved();

private:
    void store(const QByteArray &text) const;
    QByteArray stored() const;

    const QTemporaryDir m_folder;
    QString m_fileName; // another one for every test
    int m_files = 0;
};

void tst_RyImageCutterSettings::init()
{
    QTest::failOnWarning(QRegularExpression(u"."_s));
    m_fileName = m_folder.filePath(u"%1.settings.ini"_s.arg(++m_files));
    RySettings::setFileName(m_fileName);
    settings().loadSettings();
}

void tst_RyImageCutterSettings::store(const QByteArray &text) const
{
    QFile file(m_fileName);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
}

QByteArray tst_RyImageCutterSettings::stored() const
{
    QFile file(m_fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_RyImageCutterSettings::bringsBackWhatWasSet()
{
    const std::pair<QString, QColor> odd[] = {
            {u" a, \"b\";\\x41\n=ä %41 "_s, QColor::fromRgba64(1, 2, 3, 4)},
            {u"@Variant("_s, QColor::fromHsv(10, 20, 30, 40)}};
    for (const auto &[folder, color] : odd) {
        settings().setDebugFolder(folder);
        settings().setMaximalImageLength(-7);
        settings().setBackgroundColors(1, color);
        settings().loadSettings();
        QCOMPARE(settings().debugFolder(), folder);
        QCOMPARE(settings().maximalImageLength(), -7);
        QCOMPARE(settings().backgroundColors(), (QList<QColor>{Qt::white, color, translucentRed}));
    }
}

void tst_RyImageCutterSettings::readsFilesWrittenByHand_data()
{
    using Colors = QList<QColor>;
    QTest::addColumn<Colors>("colors");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<int>("length");
    QTest::newRow("") << defaultColors << u"DEBUG"_s << 1200;
    QTest::newRow("backgroundColors=#80ff0000, black, nonsense")
            << Colors{translucentRed, Qt::black, QColor()} << u"DEBUG"_s << 1200;
    QTest::newRow("backgroundColors=red") << Colors{Qt::red} << u"DEBUG"_s << 1200;
    QTest::newRow("backgroundColors=\ndbgFolder=") << Colors() << u""_s << 1200;
    QTest::newRow("maxFotoLength=12px\ndbgFolder=a, b") << defaultColors << u"a, b"_s << 1200;
    QTest::newRow("maxFotoLength=99999999999") << defaultColors << u"DEBUG"_s << 1200;
    QTest::newRow("maxFotoLength=0") << defaultColors << u"DEBUG"_s << 0;
}

void tst_RyImageCutterSettings::readsFilesWrittenByHand()
{
    store(QByteArray("[ImageCutter]\n") + QTest::currentDataTag());
    settings().loadSettings();
    QTEST(settings().backgroundColors(), "colors");
    QTEST(settings().debugFolder(), "folder");
    QTEST(settings().maximalImageLength(), "length");
}

void tst_RyImageCutterSettings::leavesTheFileAloneWithoutNeed()
{
    const auto setNothingNew = [] {
        settings().setDebugFolder(settings().debugFolder());
        settings().setMaximalImageLength(settings().maximalImageLength());
        settings().setBackgroundColors(-1, Qt::green);
        settings().setBackgroundColors(3, Qt::green);
        QCOMPARE(settings().backgroundColors(), defaultColors);
    };
    setNothingNew();
    QVERIFY(!QFileInfo::exists(m_fileName));
    const QByteArray text = "[ImageCutter]\nmaxFotoLength=800\n";
    store(text);
    const QDateTime time(QDate(2000, 1, 1), QTime(1, 2, 3));
    QFile file(m_fileName);
    QVERIFY(file.open(QIODevice::Append) && file.setFileTime(time, QFile::FileModificationTime));
    settings().loadSettings();
    setNothingNew();
    QCOMPARE(stored(), text);
    QCOMPARE(QFileInfo(m_fileName).lastModified(), time);
}

void tst_RyImageCutterSettings::keepsWhatOthersChanged()
{
    store("[ImageCutter]\nmaxFotoLength=1300\n");
    settings().loadSettings();
    store("[ImageCutter]\nmaxFotoLength=1400\n"); // as large, and often in the same millisecond
    settings().setDebugFolder(u"here"_s);
    settings().loadSettings();
    QCOMPARE(settings().maximalImageLength(), 1400);
    QCOMPARE(settings().debugFolder(), u"here"_s);
    QVERIFY(stored().contains("backgroundColors"));
    store("[ImageCutter]\nbackgroundColors=red\n");
    settings().setBackgroundColors(1, Qt::black); // as it is here, but no longer there
    settings().loadSettings();
    QCOMPARE(settings().backgroundColors(), defaultColors);
}

void tst_RyImageCutterSettings::replacesADamagedFileWhenChanged()
{
    for (const QByteArray &text :
         {QByteArray("[ImageCutter]\nmaxFotoLength=5\nstray\n[a]\nb=c"),
          QByteArray("[a]\nb=c\n[Imag"), QByteArray(100, '\0').append("\n[a]\nb=c")}) {
        init();
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"settings.ini .*damaged"_s)); // once
        for (int i = 0; i < 2; ++i) {
            store(text);
            settings().loadSettings();
            QCOMPARE(settings().maximalImageLength(), 1200);
            settings().saveSettings();
            QCOMPARE(stored(), text);
        }
        settings().setDebugFolder(u"here"_s);
        settings().loadSettings();
        QCOMPARE(settings().debugFolder(), u"here"_s);
        QCOMPARE(settings().maximalImageLength(), 1200);
        QCOMPARE(settings().readVariant(u"a/b"_s, {}), u"c"_s); // somebody else's, and legible
    }
}

void tst_RyImageCutterSettings::triesAgainWhatCouldNotBeSaved()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"settings.ini cannot be read"_s));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"settings.ini cannot be written"_s));
    QVERIFY(QDir().mkpath(m_fileName));
    settings().loadSettings();
    settings().setBackgroundColors(0, Qt::blue);
    settings().setMaximalImageLength(700);
    QVERIFY(!RySettings::saveError().isEmpty());
    QVERIFY(QDir().rmdir(m_fileName));
    settings().setDebugFolder(u"here"_s);
    QCOMPARE(RySettings::saveError(), QString());
    settings().loadSettings();
    QCOMPARE(settings().maximalImageLength(), 700);
    QCOMPARE(settings().backgroundColors().first(), QColor(Qt::blue));
}

RY_TEST_CLASS(tst_RyImageCutterSettings, QCoreApplication)
#include "tst_RyImageCutterSettings.moc"
