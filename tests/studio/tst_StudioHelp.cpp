#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"
#include "settings/RyImageCutterSettings.h"
#include "settings/StudioSettings.h"
#include "settings/WindowSettings.h"
#include "widgets/ColorButton.h"
#include "window/PreferencesDialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QDockWidget>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextBrowser>

#include <memory>

/// The help sheet and the preferences.
class tst_StudioHelp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void helpListsEveryAction();
    void preferencesPersist();
    void cancelledPreferencesChangeNothing();
    void keysAreApplied();
    void conflictsAreRefused();
    void everyControlHasAName();
    void windowIsRemembered();
    void lostScreensDoNoHarm_data();
    void lostScreensDoNoHarm();

private:
    PreferencesDialog &openPreferences();
    QKeySequenceEdit &keyOf(const char *action);
    template <typename T>
    T &control(const char *name)
    {
        return *m_studio->window.findChild<T *>(QString::fromLatin1(name));
    }

    std::unique_ptr<QTemporaryDir> m_folder; // stands for the one with everybody's settings
    std::unique_ptr<StudioDriver> m_studio;
};

void tst_StudioHelp::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    RySettings::setFileName(m_folder->filePath(QStringLiteral("settings.ini")));
    StudioSettings::instance().loadSettings();
    WindowSettings::instance().loadSettings();
    RyImageCutterSettings::instance().loadSettings();
    m_studio = std::make_unique<StudioDriver>();
}

void tst_StudioHelp::cleanup()
{
    m_studio.reset();
    StudioSettings::instance().loadSettings(); // what is still being saved is for this file
}

PreferencesDialog &tst_StudioHelp::openPreferences()
{
    m_studio->action("preferences").trigger();
    return *m_studio->window.findChild<PreferencesDialog *>();
}

QKeySequenceEdit &tst_StudioHelp::keyOf(const char *action)
{
    return *m_studio->window.findChild<QKeySequenceEdit *>(QStringLiteral("key_") +
                                                           QString::fromLatin1(action));
}

void tst_StudioHelp::helpListsEveryAction()
{
    m_studio->action("preferences").setShortcut(Qt::CTRL | Qt::ALT | Qt::Key_F5);
    QTest::keyClick(&m_studio->window, Qt::Key_F1);
    auto *const text = m_studio->window.findChild<QTextBrowser *>();
    QVERIFY(text);
    const QString help = text->toPlainText();
    for (const QAction *const action : m_studio->window.actions()) {
        QVERIFY2(help.contains(action->iconText()), qPrintable(action->iconText()));
        for (const QKeySequence &key : action->shortcuts())
            QVERIFY2(help.contains(key.toString(QKeySequence::NativeText)),
                     qPrintable(action->iconText()));
    }
    for (const Tool *const tool : m_studio->tools().tools())
        QVERIFY2(help.contains(tool->description().hint), qPrintable(tool->description().name));
    QVERIFY(StudioDriver::photograph(*text->window(), QStringLiteral("help")));
}

void tst_StudioHelp::preferencesPersist()
{
    PreferencesDialog &dialog = openPreferences();
    auto *const pages = dialog.findChild<QTabWidget *>();
    for (int page = 0; page < pages->count(); ++page) {
        pages->setCurrentIndex(page);
        QVERIFY(StudioDriver::photograph(dialog, QStringLiteral("preferences-%1").arg(page + 1)));
    }
    control<QSpinBox>("longestSide").setValue(777);
    control<QLineEdit>("debugFolder").setText(QDir::temp().filePath(QStringLiteral("elsewhere")));
    control<ColorButton>("maskColor").setColor(QColor(200, 10, 20, 99));
    control<ColorButton>("backgroundColor2").setColor(QColor(1, 2, 3));
    control<QSpinBox>("regionBrush").setValue(61);
    control<QSpinBox>("pixelBrush").setValue(7);
    keyOf("lasso").setKeySequence(Qt::Key_Q);
    dialog.accept();

    StudioSettings &settings = StudioSettings::instance();
    RyImageCutterSettings &library = RyImageCutterSettings::instance();
    settings.loadSettings(); // as the next start does
    library.loadSettings();
    QCOMPARE(StudioSettings::longestSideForCutting(), 777);
    QCOMPARE(library.debugFolder(), QDir::temp().filePath(QStringLiteral("elsewhere")));
    QCOMPARE(settings.maskColor(), QColor(200, 10, 20, 99));
    QCOMPARE(library.backgroundColors().at(1), QColor(1, 2, 3));
    QCOMPARE(settings.regionBrushWidth().value(), 61);
    QCOMPARE(settings.pixelBrushWidth().value(), 7);
    m_studio = std::make_unique<StudioDriver>();
    QCOMPARE(m_studio->action("lasso").shortcut(), QKeySequence(Qt::Key_Q));
    QCOMPARE(m_studio->action("brush").shortcut(), QKeySequence(Qt::Key_B));
}

void tst_StudioHelp::cancelledPreferencesChangeNothing()
{
    PreferencesDialog &dialog = openPreferences();
    control<QSpinBox>("longestSide").setValue(555);
    keyOf("lasso").setKeySequence(Qt::Key_Q);
    dialog.reject();
    QVERIFY(StudioSettings::longestSideForCutting() != 555);
    QCOMPARE(m_studio->action("lasso").shortcut(), QKeySequence(Qt::Key_L));
}

void tst_StudioHelp::keysAreApplied()
{
    QVERIFY(m_studio->openCoffee());
    PreferencesDialog &dialog = openPreferences();
    QTest::keyClick(&keyOf("scribble"), Qt::Key_J);
    QTest::keyClick(&keyOf("scribble"), Qt::Key_K); // the last one counts
    keyOf("hide").setKeySequence(Qt::Key_J);
    dialog.accept();
    m_studio->canvas().setFocus();
    m_studio->key(Qt::Key_K);
    QCOMPARE(m_studio->tools().current()->description().id, QStringLiteral("scribble"));
    QVERIFY(m_studio->action("scribble").toolTip().contains(QStringLiteral("(K)")));
    QTest::keyPress(&m_studio->canvas(), Qt::Key_J);
    QVERIFY(m_studio->canvas().hidesMask());
    QTest::keyRelease(&m_studio->canvas(), Qt::Key_J);
    QVERIFY(!m_studio->canvas().hidesMask());
}

void tst_StudioHelp::conflictsAreRefused()
{
    PreferencesDialog &dialog = openPreferences();
    const QPushButton *const ok =
            dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    QVERIFY(ok->isEnabled());
    keyOf("lasso").setKeySequence(Qt::Key_B);
    QVERIFY(!ok->isEnabled());
    QVERIFY(control<QLabel>("conflict").text().contains(QStringLiteral("Brush")));
    keyOf("brush").clear();
    QVERIFY(ok->isEnabled());
    const QKeySequence second = m_studio->action("zoomIn").shortcuts().last();
    for (const QKeySequence &taken : {second, QKeySequence(Qt::Key_BracketLeft)}) {
        keyOf("scissors").setKeySequence(taken);
        QVERIFY(!ok->isEnabled());
    }
    keyOf("scissors").setKeySequence(m_studio->action("scissors").shortcut());
    QVERIFY(ok->isEnabled());
    dialog.accept();
    QVERIFY(m_studio->action("brush").shortcut().isEmpty());
    QCOMPARE(m_studio->action("lasso").shortcut(), QKeySequence(Qt::Key_B));
}

void tst_StudioHelp::everyControlHasAName()
{
    const PreferencesDialog &dialog = openPreferences();
    for (const QWidget *const widget : dialog.findChildren<QWidget *>()) {
        const bool isControl = widget->focusPolicy() != Qt::NoFocus;
        const auto *const button = qobject_cast<const QAbstractButton *>(widget);
        const bool hasText = button && !button->text().isEmpty();
        const bool isPartOfAnother = qobject_cast<const QAbstractSpinBox *>(widget->parent()) ||
                                     widget->objectName().startsWith(QStringLiteral("qt_"));
        QVERIFY2(!isControl || isPartOfAnother || hasText || !widget->accessibleName().isEmpty(),
                 widget->metaObject()->className());
    }
}

void tst_StudioHelp::windowIsRemembered()
{
    const auto dock = [this](const char *name) {
        return m_studio->window.findChild<QDockWidget *>(QString::fromLatin1(name));
    };
    const auto restart = [this] {
        QVERIFY(m_studio->window.close());
        m_studio.reset();
        WindowSettings::instance().loadSettings();
        m_studio = std::make_unique<StudioDriver>();
    };
    QVERIFY(m_studio->openCoffee());
    m_studio->window.setGeometry(20, 40, 700, 600);
    m_studio->action("edges").trigger(); // closes it
    m_studio->window.addDockWidget(Qt::LeftDockWidgetArea, dock("historyDock"));
    const QRect geometry = m_studio->window.geometry();
    const bool fits = m_studio->window.screen()->availableGeometry().contains(geometry);
    restart();
    QVERIFY(!fits || m_studio->window.geometry() == geometry);
    QVERIFY(!dock("historyDock")->isVisible()); // there is no picture yet
    restart();                                  // and there was none
    QVERIFY(m_studio->openCoffee());
    QVERIFY(dock("historyDock")->isVisible() && !dock("edgesDock")->isVisible());
    QCOMPARE(m_studio->window.dockWidgetArea(dock("historyDock")), Qt::LeftDockWidgetArea);
}

void tst_StudioHelp::lostScreensDoNoHarm_data()
{
    QTest::addColumn<QByteArray>("geometry");
    QWidget window;
    window.setGeometry(9000, 7000, 600, 500);
    QTest::addRow("far away") << window.saveGeometry();
    window.setGeometry(-3000, 10, 9000, 9000);
    QTest::addRow("too large") << window.saveGeometry();
    window.setGeometry(-550, 100, 600, 500);
    QTest::addRow("mostly out of sight") << window.saveGeometry();
    QTest::addRow("damaged") << QByteArray("no geometry");
}

void tst_StudioHelp::lostScreensDoNoHarm()
{
    QFETCH(QByteArray, geometry);
    WindowSettings::instance().setWindow(geometry, QByteArray("no layout"));
    m_studio = std::make_unique<StudioDriver>();
    const QRect screen = m_studio->window.screen()->availableGeometry();
    QVERIFY(screen.contains(m_studio->window.geometry().topLeft()));
    QVERIFY(m_studio->openCoffee());
    QVERIFY(m_studio->window.findChild<QDockWidget *>(QStringLiteral("edgesDock"))->isVisible());
}

RY_TEST_CLASS(tst_StudioHelp, QApplication)
#include "tst_StudioHelp.moc"
