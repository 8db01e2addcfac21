#include "Answerer.h"
#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"
#include "document/EditedMask.h"
#include "files/Autosave.h"
#include "files/StateFolder.h"
#include "settings/StudioSettings.h"
#include "support/TestPictures.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUndoCommand>
#include <QUndoStack>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString coffee = QStringLiteral(RY_SAMPLES_DIR "/coffee.png");
const QString coffeeSession = QStringLiteral(RY_SAMPLES_DIR "/coffee.session");
const QPolygonF lasso{{130, 60}, {480, 60}, {540, 200}, {480, 340}, {130, 340}, {70, 200}};

/// What a person might do; nothing but the lasso can be recorded without a cut.
void work(StudioDriver &studio)
{
    Document &document = studio.document();
    studio.drag(lasso);
    QVERIFY(studio.settle());
    studio.action("brush").trigger();
    studio.drag({{150, 110}, {170, 120}, {190, 150}}, Qt::RightButton);
    studio.action("click").trigger();
    studio.click({330, 150});
    studio.action("scribble").trigger();
    studio.drag({{300, 200}, {320, 220}});
    document.useWire({{400, 100}, {450, 110.55}, {420, 180}}, WireUse::Add);
    document.invert();
    QVERIFY(studio.settle());
    document.undo();
    QVERIFY(studio.settle());
}

/// As the edge controls do.
void workOnEdge(StudioDriver &studio)
{
    EdgeSettings edges;
    edges.drop = 40;
    edges.grow = -2;
    edges.feather = 3;
    studio.document().setEdgeSettings(edges, u"Feather"_s);
    edges.clean = 4;
    studio.document().setEdgeSettings(edges, u"Clean"_s);
}

/// As it is exported.
QImage maskOf(const Document &document)
{
    return EditedMask::make(document.cutoutSource(), {}).alpha;
}

QByteArray contentsOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString &fileName, const QByteArray &contents)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

QStringList keptSessions()
{
    return QDir(StateFolder::path()).entryList({u"*.session"_s}, QDir::Files);
}

} // namespace

/// Sessions that are saved, opened, played elsewhere, and found again after a crash.
class tst_StudioSessions : public QObject
{
    Q_OBJECT

public:
    /// As another process: works until it is killed.
    static int beKilled();

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void savedSessionsComeBack_data();
    void savedSessionsComeBack();
    void sessionsOfOthersArePlayed_data();
    void sessionsOfOthersArePlayed();
    void pastedPicturesAreSavedAlong();
    void savesAreNotedWhereTheyBelong_data();
    void savesAreNotedWhereTheyBelong();
    void saysWhatIsWrong_data();
    void saysWhatIsWrong();
    void anotherPictureIsAskedAbout();
    void cancelledWhilePlayed();
    void nothingIsUnsavedWhilePlayed();
    void unsavedWorkIsSavedOnRequest();
    void keepsWhatIsUnsaved();
    void restoredPicturesStay();
    void restoresAfterACrash_data();
    void restoresAfterACrash();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    bool openSession(const QString &fileName);
    bool save(const QString &fileName);
    QImage replayed(const QString &session, const QString &picture);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StudioDriver> m_studio;
    std::unique_ptr<Answerer> m_answerer;
};

int tst_StudioSessions::beKilled()
{
    StudioDriver studio;
    if (!studio.open(qEnvironmentVariable("RY_VICTIM_PICTURE")))
        return 1;
    work(studio);
    workOnEdge(studio);
    return QTest::qWaitFor([] { return false; }, patienceMs);
}

void tst_StudioSessions::initTestCase()
{
    RySettings::setFileName(QDir::temp().filePath(u"no-such-settings.ini"_s));
}

void tst_StudioSessions::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_STATE_HOME", path(u"state"_s).toLocal8Bit());
    RySettings::setFileName(path(u"settings.ini"_s));
    m_studio = std::make_unique<StudioDriver>();
    m_answerer = std::make_unique<Answerer>();
}

void tst_StudioSessions::cleanup()
{
    m_studio.reset();
}

bool tst_StudioSessions::openSession(const QString &fileName)
{
    QSignalSpy ended(&m_studio->document(), &Document::replayEnded);
    m_studio->window.openFile(fileName);
    return QTest::qWaitFor([&] { return !ended.isEmpty(); }, patienceMs) &&
           ended.first().first().toBool() && m_studio->settle();
}

bool tst_StudioSessions::save(const QString &fileName)
{
    QSignalSpy saved(&m_studio->window.sessions(), &SessionController::saved);
    m_studio->window.sessions().saveTo(fileName);
    return QTest::qWaitFor([&] { return !saved.isEmpty(); }, patienceMs);
}

/// The mask that "rycut replay" makes of it, at the size it is cut at.
QImage tst_StudioSessions::replayed(const QString &session, const QString &picture)
{
    QProcess::execute(
            QStringLiteral(RY_RYCUT_PROGRAM),
            {u"replay"_s, session, picture, u"--quiet"_s, u"--mask"_s, path(u"mask.png"_s)});
    return QImage(path(u"mask.png"_s)).convertToFormat(QImage::Format_Grayscale8);
}

void tst_StudioSessions::savedSessionsComeBack_data()
{
    QTest::addColumn<QString>("picture");
    QTest::addColumn<bool>("hasEdges");
    QTest::addRow("beside its picture") << u"my #1 cup.png"_s << false;
    QTest::addRow("elsewhere") << u"elsewhere/cup.png"_s << false;
    QTest::addRow("with its edge") << u"cup.png"_s << true;
}

void tst_StudioSessions::savedSessionsComeBack()
{
    QFETCH(QString, picture);
    QFETCH(bool, hasEdges);
    QVERIFY(QDir().mkpath(QFileInfo(path(picture)).absolutePath()));
    QVERIFY(QFile::copy(coffee, path(picture)));
    QVERIFY(m_studio->open(path(picture)));
    work(*m_studio);
    if (hasEdges)
        workOnEdge(*m_studio);
    QVERIFY(m_studio->window.isWindowModified());
    const QString session = path(u"saved.session"_s);
    QVERIFY(save(session));
    QVERIFY(!m_studio->window.isWindowModified());
    const QImage mask = maskOf(m_studio->document());
    QCOMPARE(replayed(session, path(picture)), mask);

    const int steps = m_studio->document().undoStack()->index() - (hasEdges ? 1 : 0);
    const EdgeSettings edges = m_studio->document().edgeSettings();
    const QByteArray gestures = [&] {
        GestureFile file;
        file.gestures = m_studio->document().gestures();
        return file.text();
    }();
    m_studio = std::make_unique<StudioDriver>();
    QVERIFY(openSession(session));
    Document &document = m_studio->document();
    QCOMPARE(maskOf(document), mask);
    QVERIFY(!document.isModified());
    QVERIFY(document.edgeSettings() == edges);
    QCOMPARE(document.opened().fileName, path(picture));
    QCOMPARE(document.undoStack()->index(), steps);
    GestureFile again;
    again.gestures = document.gestures();
    QCOMPARE(again.text(), gestures);
    document.undo();
    QVERIFY(m_studio->settle());
    QVERIFY(document.isModified());
    QVERIFY(maskOf(document) != mask);
}

void tst_StudioSessions::sessionsOfOthersArePlayed_data()
{
    QTest::addColumn<QByteArray>("gestures"); // empty for the sample
    QTest::addRow("sample") << QByteArray();
    QTest::addRow("wire") << QByteArray("seed 290 18\nwire 398 84\nhover fg 1 1 2\nwire 290 207\n"
                                        "color #ff0000\nclose\nclick 300 110\n");
    QTest::addRow("graph cut") << QByteArray(
            "lasso 130 60 480 60 540 200 480 340 130 340 70 200\nmethod graph\n"
            "scribble bg final 300 150 320 160\nrecut\n");
    QTest::addRow("lasso within a lasso")
            << QByteArray("lasso 130 60 480 60 540 200 480 340 130 340 70 200\n"
                          "lasso 150 80 460 80 460 320 150 320\ninvert\n");
    QTest::addRow("reduced") << QByteArray(
            "longest-side 300\nlasso 130 60 480 60 540 200 480 340 130 340 70 200\n"
            "area bg 250 100 350 100 300 200\n");
}

void tst_StudioSessions::sessionsOfOthersArePlayed()
{
    QFETCH(QByteArray, gestures);
    QString session = coffeeSession;
    if (!gestures.isEmpty()) {
        session = path(u"other.session"_s);
        const bool isReduced = gestures.startsWith("longest-side");
        QVERIFY(write(session, "rycut-session 1\nfile " + coffee.toUtf8() + '\n' +
                                       (isReduced ? "" : "longest-side 0\n") + gestures));
    }
    QVERIFY(openSession(session));
    QVERIFY(!m_studio->document().isModified());
    const QString saved = path(u"saved.session"_s);
    const QImage expected = replayed(session, coffee);
    QVERIFY(save(saved));
    QCOMPARE(replayed(saved, coffee), expected);
    QCOMPARE(maskOf(m_studio->document()), expected);
}

void tst_StudioSessions::pastedPicturesAreSavedAlong()
{
    QGuiApplication::clipboard()->setImage(QImage(coffee));
    m_studio->action("paste").trigger();
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->document().hasPicture(), patienceMs);
    work(*m_studio);
    const QImage mask = m_studio->document().mask();
    m_studio->window.sessions().saveTo(path(u"pasted.session"_s));
    QVERIFY(save(path(u"pasted.session"_s))); // one answer; the other one is still to come
    QTRY_VERIFY_WITH_TIMEOUT(!m_studio->document().isModified(), patienceMs);
    QVERIFY(QFileInfo::exists(path(u"pasted.png"_s)));
    QVERIFY(save(path(u"pasted.session"_s)));
    QVERIFY(!QFileInfo::exists(path(u"pasted-2.png"_s))); // it is there already
    m_studio = std::make_unique<StudioDriver>();
    QVERIFY(openSession(path(u"pasted.session"_s)));
    QCOMPARE(m_studio->document().mask(), mask);
}

void tst_StudioSessions::savesAreNotedWhereTheyBelong_data()
{
    using Deed = std::function<void(MainWindow &, const QString &)>;
    QTest::addColumn<Deed>("deed"); // while it is saved, and before the event loop hears of it
    QTest::addColumn<bool>("isNamed");
    QTest::addColumn<QList<bool>>("isModified"); // after each of the saves
    QTest::addRow("unchanged") << Deed([](auto &, auto &) {}) << true << QList<bool>{false};
    const Deed doOtherwise = [](MainWindow &window, auto &) {
        window.document().undoStack()->undo();
        window.document().undoStack()->push(new QUndoCommand(u"Another"_s)); // which it takes
    };
    QTest::addRow("undone and done otherwise") << doOtherwise << true << QList<bool>{true};
    const Deed saveAgain = [](MainWindow &window, const QString &session) {
        window.document().undoStack()->undo();
        window.sessions().saveTo(session);
    };
    QTest::addRow("saved again") << saveAgain << true << QList<bool>{true, false};
    const Deed openAnother = [](MainWindow &window, auto &) {
        OpenedPicture other = window.document().opened();
        other.fileName = u"other.png"_s;
        window.document().setPicture(other);
    };
    QTest::addRow("another picture") << openAnother << false << QList<bool>{false};
}

void tst_StudioSessions::savesAreNotedWhereTheyBelong()
{
    using Deed = std::function<void(MainWindow &, const QString &)>;
    QFETCH(Deed, deed);
    QFETCH(bool, isNamed);
    QFETCH(QList<bool>, isModified);
    Document &document = m_studio->document();
    SessionController &sessions = m_studio->window.sessions();
    QVERIFY(m_studio->open(coffee));
    work(*m_studio);
    QList<bool> found;
    connect(&sessions, &SessionController::saved, &document,
            [&] { found.append(document.isModified()); });
    const QString session = path(u"saved.session"_s);
    sessions.saveTo(session);
    deed(m_studio->window, session);
    QTRY_COMPARE_WITH_TIMEOUT(found.size(), isModified.size(), patienceMs);
    QCOMPARE(found, isModified);
    QCOMPARE(sessions.fileName(), isNamed ? session : QString());
    QCOMPARE(document.opened().fileName, isNamed ? coffee : u"other.png"_s);
}

void tst_StudioSessions::saysWhatIsWrong_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("said");
    QTest::addRow("malformed") << QByteArray("rycut-session 1\nlasso 1\n") << u"line 2"_s;
    QTest::addRow("not a picture")
            << QByteArray("rycut-session 1\nfile bad.session\n") << u"bad.session"_s;
}

void tst_StudioSessions::saysWhatIsWrong()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, said);
    QVERIFY(write(path(u"bad.session"_s), text));
    m_studio->window.openFile(path(u"bad.session"_s));
    const auto box = [&] { return m_studio->window.findChild<QMessageBox *>(); };
    QTRY_VERIFY_WITH_TIMEOUT(box(), patienceMs);
    QVERIFY2(box()->text().contains(said), qPrintable(box()->text()));
    QVERIFY(!m_studio->window.sessions().isOpening());
}

void tst_StudioSessions::anotherPictureIsAskedAbout()
{
    QVERIFY(TestPictures::gradient(600, 400).save(path(u"cup.png"_s)));
    QVERIFY(QFile::copy(coffeeSession, path(u"cup.session"_s)));
    for (const auto button : {QMessageBox::No, QMessageBox::Yes}) {
        m_answerer->answer(button);
        m_studio->window.openFile(path(u"cup.session"_s));
        QTRY_VERIFY_WITH_TIMEOUT(!m_studio->window.sessions().isOpening(), patienceMs);
        QVERIFY(m_studio->settle());
        QCOMPARE(m_studio->document().hasPicture(), button == QMessageBox::Yes);
    }
}

void tst_StudioSessions::cancelledWhilePlayed()
{
    m_studio->window.openFile(coffeeSession);
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->document().isReplaying(), patienceMs);
    QVERIFY(!m_studio->canvas().isEnabled());
    m_studio->action("cancel").trigger();
    QVERIFY(!m_studio->document().isReplaying());
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->canvas().isEnabled());
    QVERIFY(m_studio->window.sessions().fileName().isEmpty()); // half of it must not replace it
    QVERIFY(!m_studio->document().isBusy());
}

void tst_StudioSessions::nothingIsUnsavedWhilePlayed()
{
    SessionController &sessions = m_studio->window.sessions();
    Document &document = m_studio->document();
    m_answerer->answer(QMessageBox::Cancel);
    bool mayBeDiscarded = false, isNamed = true; // after the first of several steps
    const auto look = [&] {
        isNamed = !sessions.fileName().isEmpty();
        mayBeDiscarded = sessions.mayDiscardChanges();
    };
    connect(&document, &Document::replayProgress, &document, look, Qt::SingleShotConnection);
    QVERIFY(openSession(coffeeSession));
    QVERIFY(mayBeDiscarded);
    QCOMPARE(m_answerer->count(), 0);
    QVERIFY(!isNamed); // half of it must not replace it
    QCOMPARE(sessions.fileName(), coffeeSession);
    QVERIFY(!document.isModified());
}

void tst_StudioSessions::unsavedWorkIsSavedOnRequest()
{
    QVERIFY(m_studio->open(coffee));
    work(*m_studio);
    const QString session = path(u"saved.session"_s);
    QVERIFY(save(session));
    m_studio->document().invert();
    QVERIFY(m_studio->settle());
    m_answerer->answer(QMessageBox::Save);
    QVERIFY(m_studio->window.close());
    QVERIFY(contentsOf(session).contains("invert"));
}

void tst_StudioSessions::keepsWhatIsUnsaved()
{
    QVERIFY(m_studio->open(coffee));
    work(*m_studio);
    QTRY_COMPARE_WITH_TIMEOUT(keptSessions().size(), 1, patienceMs);
    QVERIFY(Autosave(m_studio->document()).takeOver().isEmpty()); // somebody works on it
    m_studio->document().setSaved();
    QTRY_VERIFY_WITH_TIMEOUT(keptSessions().isEmpty(), patienceMs);
    m_studio.reset();
    QVERIFY(QDir(StateFolder::path()).isEmpty());
}

/// The one that was pasted before a crash has no file but the one that is kept for a while.
void tst_StudioSessions::restoredPicturesStay()
{
    const QString kept = StateFolder::path() + u"/kept.session"_s;
    const QString picture = StateFolder::path() + u"/kept.png"_s;
    QVERIFY(QDir().mkpath(StateFolder::path()));
    QVERIFY(QFile::copy(coffee, picture));
    QVERIFY(write(kept, "rycut-session 1\nfile kept.png\nlongest-side 0\n"
                        "lasso 130 60 480 60 540 200 480 340 130 340 70 200\n"));
    Document &document = m_studio->document();
    SessionController &sessions = m_studio->window.sessions();
    QSignalSpy ended(&document, &Document::replayEnded);
    m_answerer->answer(QMessageBox::Yes);
    m_studio->window.begin({});
    QTRY_COMPARE_WITH_TIMEOUT(ended.size(), 1, patienceMs);
    QVERIFY(m_studio->settle());
    QVERIFY(!StudioSettings::instance().recentFiles().contains(picture));
    QVERIFY(!document.opened().title.contains(u"kept"));
    QVERIFY(m_answerer->lastQuestion().contains(document.opened().title));

    QSignalSpy failed(&sessions, &SessionController::failed);
    for (const QString &name : {u"/kept.session"_s, u"/other.session"_s})
        QVERIFY(!sessions.saveTo(StateFolder::path() + name));
    QCOMPARE(failed.size(), 2);
    QVERIFY(document.isModified());
    QVERIFY(QFileInfo::exists(kept) && QFileInfo::exists(picture));

    const QImage mask = maskOf(document);
    QVERIFY(save(path(u"saved.session"_s)));
    QCOMPARE(document.opened().fileName, path(u"saved.png"_s));
    QVERIFY(!document.isModified());
    QTRY_VERIFY_WITH_TIMEOUT(!QFileInfo::exists(kept) && !QFileInfo::exists(picture), patienceMs);
    m_studio = std::make_unique<StudioDriver>();
    QVERIFY(openSession(path(u"saved.session"_s)));
    QCOMPARE(maskOf(m_studio->document()), mask);
}

void tst_StudioSessions::restoresAfterACrash_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("button");
    QTest::addColumn<QString>("named"); // the picture that the program is started with
    const QString rocket = QStringLiteral(RY_SAMPLES_DIR "/rocket.jpg");
    QTest::addRow("restored") << QMessageBox::Yes << QString();
    QTest::addRow("discarded") << QMessageBox::Discard << QString();
    QTest::addRow("left") << QMessageBox::Cancel << QString();
    QTest::addRow("restored instead of a picture") << QMessageBox::Yes << rocket;
    QTest::addRow("discarded for a picture") << QMessageBox::Discard << rocket;
    QTest::addRow("left for a picture") << QMessageBox::Cancel << rocket;
}

void tst_StudioSessions::restoresAfterACrash()
{
    QFETCH(QMessageBox::StandardButton, button);
    QFETCH(QString, named);
    const bool isRestored = button == QMessageBox::Yes;
    QProcess victim;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"RY_VICTIM_PICTURE"_s, coffee);
    victim.setProcessEnvironment(environment);
    victim.start(QCoreApplication::applicationFilePath(), {u"tst_StudioSessions"_s});
    QTRY_COMPARE_WITH_TIMEOUT(keptSessions().size(), 1, patienceMs);
    m_studio->window.begin({}); // nothing is offered that somebody works on
    QVERIFY(!m_studio->document().hasPicture());
    const auto isWhole = [] {
        return contentsOf(StateFolder::path() + u'/' + keptSessions().value(0)).contains("clean 4");
    };
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(), patienceMs);
    victim.kill();
    QVERIFY(victim.waitForFinished(patienceMs));

    QSignalSpy ended(&m_studio->document(), &Document::replayEnded);
    const QString session = StateFolder::path() + u'/' + keptSessions().constFirst();
    const QByteArray kept = contentsOf(session);
    m_answerer->answer(button);
    m_studio->window.begin(named);
    QVERIFY(m_answerer->lastQuestion().contains(u"coffee.png"));
    if (isRestored) {
        QCOMPARE(StudioSettings::instance().recentFiles().contains(named), !named.isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(ended.size(), 1, patienceMs);
        QVERIFY(m_studio->settle());
        QVERIFY(m_studio->window.isWindowModified());
        QCOMPARE(m_studio->document().opened().fileName, coffee);
        const QImage mask = maskOf(m_studio->document());
        QVERIFY(save(path(u"restored.session"_s)));
        QCOMPARE(replayed(path(u"restored.session"_s), coffee), mask);
    }
    const bool isLeft = button == QMessageBox::Cancel;
    QTRY_COMPARE_WITH_TIMEOUT(keptSessions().size(), isLeft ? 1 : 0, patienceMs);
    if (named.isEmpty() || isRestored)
        return;
    QTRY_COMPARE_WITH_TIMEOUT(m_studio->document().opened().fileName, named, patienceMs);
    m_studio->drag({{200, 50}, {400, 50}, {400, 300}, {200, 300}}); // its work is kept beside it
    QTRY_COMPARE_WITH_TIMEOUT(keptSessions().size(), isLeft ? 2 : 1, patienceMs);
    QCOMPARE(contentsOf(session), isLeft ? kept : QByteArray());
}

static int runOrBeKilled(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("RY_VICTIM_PICTURE"))
        return TestClasses::run<tst_StudioSessions, QApplication>(argc, argv);
    const QApplication application(argc, argv);
    return tst_StudioSessions::beKilled();
}
static const bool isAdded = TestClasses::add("tst_StudioSessions", runOrBeKilled);
#include "tst_StudioSessions.moc"
