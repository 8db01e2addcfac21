#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"

#include <QApplication>
#include <QDockWidget>
#include <QPalette>
#include <QTemporaryDir>

#include <memory>

namespace {

QPalette darkPalette()
{
    QPalette palette(QColor(53, 53, 56), QColor(42, 42, 45));
    palette.setColor(QPalette::Base, QColor(34, 34, 36));
    palette.setColor(QPalette::Highlight, QColor(70, 120, 200));
    return palette;
}

} // namespace

/// The main views, as pictures to be looked at; what is tested is that the window gets there.
class tst_StudioViews : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void views_data();
    void views();

private:
    void grab(const QString &name);

    QTemporaryDir m_folder;
    std::unique_ptr<StudioDriver> m_studio;
};

void tst_StudioViews::init()
{
    RySettings::setFileName(m_folder.filePath(QStringLiteral("settings.ini")));
    QFETCH(bool, isDark);
    QApplication::setPalette(isDark ? darkPalette() : QPalette());
    m_studio = std::make_unique<StudioDriver>();
}

void tst_StudioViews::cleanup()
{
    m_studio.reset();
}

void tst_StudioViews::grab(const QString &name)
{
    QFETCH(bool, isDark);
    QVERIFY(StudioDriver::photograph(
            m_studio->window, QStringLiteral("%1-%2").arg(name, isDark ? u"dark" : u"light")));
}

void tst_StudioViews::views_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::addRow("light") << false;
    QTest::addRow("dark") << true;
}

void tst_StudioViews::views()
{
    QTest::qWait(200); // thumbnails
    grab(QStringLiteral("start"));
    QVERIFY(m_studio->openCoffee());
    QVERIFY(m_studio->settle());
    const QPolygonF lasso = StudioDriver::coffeeLasso();
    for (const QPointF &point : lasso.mid(0, lasso.size() - 4))
        m_studio->click(point);
    m_studio->move(lasso.last());
    grab(QStringLiteral("lasso"));
    m_studio->key(Qt::Key_Return);
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->document().hasCut());
    for (const char *const view : {"viewOverlay", "viewOutline", "viewCheckerboard",
                                   "viewBlackAndWhite", "viewBackground"}) {
        m_studio->action(view).trigger();
        QVERIFY(m_studio->settle());
        grab(QString::fromLatin1(view));
    }
    m_studio->action("viewOverlay").trigger();
    m_studio->action("contours").trigger();
    m_studio->action("brush").trigger();
    m_studio->canvas().zoomTo(m_studio->canvas().view().scale * 2.0, {500, 500});
    m_studio->move({390, 250});
    QVERIFY(m_studio->settle());
    grab(QStringLiteral("brush"));
}

RY_TEST_CLASS(tst_StudioViews, QApplication)
#include "tst_StudioViews.moc"
