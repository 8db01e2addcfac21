#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"
#include "support/TestPictures.h"

#include <QAbstractButton>
#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>

#include <memory>

/// Pictures that come and go, and the window round them.
class tst_Studio : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void badPicturesAreExplained_data();
    void badPicturesAreExplained();
    void pastedPicture();
    void droppedPicture();
    void unsavedChangesAreAskedAbout();
    void everythingHasAName();

private:
    QTemporaryDir m_folder;
    std::unique_ptr<StudioDriver> m_studio;
};

void tst_Studio::init()
{
    RySettings::setFileName(m_folder.filePath(QStringLiteral("settings.ini")));
    m_studio = std::make_unique<StudioDriver>();
}

void tst_Studio::cleanup()
{
    m_studio.reset();
}

void tst_Studio::badPicturesAreExplained_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("said");
    QTest::addRow("text") << QByteArray("no picture") << QStringLiteral("Unsupported image format");
    QTest::addRow("cut off") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << QString();
    QImage huge(20001, 10000, QImage::Format_Mono); // one bit a pixel: cheap to make
    huge.fill(0);
    QBuffer buffer;
    QVERIFY(huge.save(&buffer, "png"));
    QTest::addRow("huge") << buffer.data()
                          << QStringLiteral("20001 x 10000 pixels are more than 200 megapixels");
}

void tst_Studio::badPicturesAreExplained()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, said);
    QFile file(m_folder.filePath(QStringLiteral("bad")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QVERIFY(m_studio->openCoffee());
    m_studio->window.openFile(file.fileName());
    const auto box = [&] { return m_studio->window.findChild<QMessageBox *>(); };
    QTRY_VERIFY_WITH_TIMEOUT(box(), patienceMs);
    QVERIFY2(box()->text().contains(said), qPrintable(box()->text()));
    QVERIFY(box()->text().contains(QStringLiteral("“bad”")));
    box()->accept();
    QCOMPARE(m_studio->document().opened().fileName, StudioDriver::coffee()); // still there
}

void tst_Studio::pastedPicture()
{
    QGuiApplication::clipboard()->setImage(TestPictures::gradient(80, 60));
    m_studio->action("paste").trigger();
    QTRY_VERIFY_WITH_TIMEOUT(m_studio->document().hasPicture(), patienceMs);
    QCOMPARE(m_studio->document().picture().size(), QSize(80, 60));
    QVERIFY(m_studio->document().opened().fileName.isEmpty());
}

void tst_Studio::droppedPicture()
{
    const QString file = m_folder.filePath(QStringLiteral("dropped.png"));
    QVERIFY(TestPictures::gradient(70, 50).save(file));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&m_studio->window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&m_studio->window, &event);
    QTRY_COMPARE_WITH_TIMEOUT(m_studio->document().opened().fileName, file, patienceMs);
}

void tst_Studio::unsavedChangesAreAskedAbout()
{
    QVERIFY(m_studio->cutCoffee());
    const auto answer = [&](QMessageBox::StandardButton button) {
        QTimer::singleShot(0, this, [button] {
            auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box);
            box->button(button)->click();
        });
    };
    answer(QMessageBox::Cancel);
    QVERIFY(!m_studio->window.close());
    QVERIFY(m_studio->window.isVisible());
    m_studio->document().setSaved();
    QVERIFY(!m_studio->window.isWindowModified());
    m_studio->action("invert").trigger();
    QVERIFY(m_studio->settle());
    answer(QMessageBox::Discard);
    QVERIFY(m_studio->window.close());
}

void tst_Studio::everythingHasAName()
{
    QVERIFY(m_studio->cutCoffee());
    for (const char *const tool : {"lasso", "scissors", "brush", "click", "scribble"}) {
        m_studio->action(tool).trigger();
        const QList<QWidget *> widgets = m_studio->window.findChildren<QWidget *>();
        for (const QWidget *const widget : widgets) {
            const bool isControl = qobject_cast<const QAbstractButton *>(widget) ||
                                   qobject_cast<const QSpinBox *>(widget) ||
                                   qobject_cast<const QSlider *>(widget) ||
                                   qobject_cast<const QComboBox *>(widget);
            if (!isControl || widget->objectName().startsWith(QStringLiteral("qt_")))
                continue; // parts of Qt's own widgets
            const auto *const button = qobject_cast<const QAbstractButton *>(widget);
            const bool hasText = button && !button->text().isEmpty();
            QVERIFY2(hasText || !widget->accessibleName().isEmpty(),
                     widget->metaObject()->className());
        }
    }
    QStringList shortcuts;
    for (const QAction *const action : m_studio->window.actions()) {
        QVERIFY2(!action->text().isEmpty(), qPrintable(action->objectName()));
        QVERIFY2(!action->shortcut().isEmpty(), qPrintable(action->text()));
        for (const QKeySequence &shortcut : action->shortcuts())
            shortcuts.append(shortcut.toString());
        const QList<QObject *> menus = action->associatedObjects();
        QVERIFY2(std::any_of(menus.begin(), menus.end(),
                             [](const QObject *menu) { return qobject_cast<const QMenu *>(menu); }),
                 qPrintable(action->text()));
    }
    QCOMPARE(shortcuts.removeDuplicates(), 0);
}

RY_TEST_CLASS(tst_Studio, QApplication)
#include "tst_Studio.moc"
