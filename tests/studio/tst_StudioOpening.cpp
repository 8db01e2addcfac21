#include "Answerer.h"
#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"
#include "files/PicturesFolder.h"
#include "files/StateFolder.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTemporaryDir>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString coffee = QStringLiteral(RY_SAMPLES_DIR "/coffee.png");
const QString coffeeSession = QStringLiteral(RY_SAMPLES_DIR "/coffee.session");

/// Something unsaved, at once.
void work(Document &document)
{
    EdgeSettings edges;
    edges.feather = 3;
    document.setEdgeSettings(edges, u"Feather"_s);
}

} // namespace

/// What is opened, where from, and what becomes of the work that it replaces.
class tst_StudioOpening : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_studio.reset(); }

    void whatIsDoneWhileLoadingIsAskedAbout_data();
    void whatIsDoneWhileLoadingIsAskedAbout();
    void takesWhatIsDropped_data();
    void takesWhatIsDropped();
    void dialogsBeginWherePeopleAre_data();
    void dialogsBeginWherePeopleAre();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StudioDriver> m_studio;
    std::unique_ptr<Answerer> m_answerer;
};

void tst_StudioOpening::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_STATE_HOME", path(u"state"_s).toLocal8Bit());
    RySettings::setFileName(path(u"settings.ini"_s));
    m_studio = std::make_unique<StudioDriver>();
    m_answerer = std::make_unique<Answerer>();
}

void tst_StudioOpening::whatIsDoneWhileLoadingIsAskedAbout_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("isDoneBefore");
    QTest::addColumn<QMessageBox::StandardButton>("button");
    QTest::addRow("picture, kept") << u"cup.png"_s << false << QMessageBox::Cancel;
    QTest::addRow("picture, given up") << u"cup.png"_s << false << QMessageBox::Discard;
    QTest::addRow("picture, asked once") << u"cup.png"_s << true << QMessageBox::Discard;
    QTest::addRow("session, kept") << u"cup.session"_s << false << QMessageBox::Cancel;
    QTest::addRow("session, given up") << u"cup.session"_s << false << QMessageBox::Discard;
    QTest::addRow("session, asked once") << u"cup.session"_s << true << QMessageBox::Discard;
}

void tst_StudioOpening::whatIsDoneWhileLoadingIsAskedAbout()
{
    QFETCH(QString, file);
    QFETCH(bool, isDoneBefore);
    QFETCH(QMessageBox::StandardButton, button);
    QVERIFY(QFile::copy(coffee, path(u"cup.png"_s)));
    QVERIFY(QFile::copy(coffeeSession, path(u"cup.session"_s)));
    QVERIFY(m_studio->open(coffee));
    Document &document = m_studio->document();
    if (isDoneBefore)
        work(document);
    m_answerer->answer(button);
    m_studio->window.openFile(path(file));
    if (!isDoneBefore)
        work(document);
    const auto isReplaced = [&] { return document.opened().fileName == path(u"cup.png"_s); };
    const bool isKept = button == QMessageBox::Cancel;
    QTRY_VERIFY_WITH_TIMEOUT(isReplaced() || (isKept && m_answerer->count() > 0), patienceMs);
    QCOMPARE(m_answerer->count(), 1);
    QCOMPARE(isReplaced(), !isKept);
    QCOMPARE(document.isModified() && !document.isReplaying(), isKept);
    QCOMPARE(document.edgeSettings() == EdgeSettings(), !isKept);
}

void tst_StudioOpening::takesWhatIsDropped_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<bool>("isTaken");
    QTest::addRow("file") << QUrl::fromLocalFile(coffee) << true;
    QTest::addRow("elsewhere") << QUrl(u"https://example.org/cup.png"_s) << false;
}

/// Whoever it is dragged from does not wait for the question.
void tst_StudioOpening::takesWhatIsDropped()
{
    QFETCH(QUrl, url);
    QFETCH(bool, isTaken);
    const QString rocket = QStringLiteral(RY_SAMPLES_DIR "/rocket.jpg");
    QVERIFY(m_studio->open(rocket));
    work(m_studio->document());
    QMimeData data;
    data.setUrls({url});
    QDragEnterEvent enter({}, Qt::CopyAction, &data, Qt::LeftButton, {});
    enter.ignore();
    QCoreApplication::sendEvent(&m_studio->window, &enter);
    QCOMPARE(enter.isAccepted(), isTaken);
    m_answerer->answer(QMessageBox::Discard);
    QDropEvent drop({}, Qt::CopyAction, &data, Qt::LeftButton, {});
    drop.ignore();
    QCoreApplication::sendEvent(&m_studio->window, &drop);
    QCOMPARE(drop.isAccepted(), isTaken);
    QCOMPARE(m_answerer->count(), 0);
    const QString expected = isTaken ? coffee : rocket;
    QTRY_COMPARE_WITH_TIMEOUT(m_studio->document().opened().fileName, expected, patienceMs);
    QCOMPARE(m_answerer->count(), isTaken ? 1 : 0);
}

void tst_StudioOpening::dialogsBeginWherePeopleAre_data()
{
    QTest::addColumn<QString>("picture"); // in the test's folder, but for the sample
    QTest::addColumn<bool>("isBesideIt");
    QTest::addRow("own") << u"cup.png"_s << true;
    QTest::addRow("pasted") << QString() << false;
    QTest::addRow("sample") << u":/samples/coffee.png"_s << false;
    QTest::addRow("kept") << u"state/rycut-studio/kept.png"_s << false;
    QTest::addRow("kept, by another way") << u"link/kept.png"_s << false;
    QTest::addRow("gone") << u"gone/cup.png"_s << false;
}

void tst_StudioOpening::dialogsBeginWherePeopleAre()
{
    QFETCH(QString, picture);
    QFETCH(bool, isBesideIt);
    QVERIFY(QDir().mkpath(StateFolder::path()));
    QVERIFY(QFile::link(StateFolder::path(), path(u"link"_s)));
    const bool isInFolder = !picture.isEmpty() && !picture.startsWith(u':');
    const QString folder = PicturesFolder::around(isInFolder ? path(picture) : picture);
    QCOMPARE(folder, isBesideIt ? m_folder->path() : PicturesFolder::path());
}

RY_TEST_CLASS(tst_StudioOpening, QApplication)
#include "tst_StudioOpening.moc"
