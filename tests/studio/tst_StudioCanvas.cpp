#include "StudioDriver.h"
#include "support/TestClasses.h"

#include "RySettings.h"

#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTemporaryDir>
#include <QUndoStack>

#include <memory>

/// What a person sees of the picture.
class tst_StudioCanvas : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void zoomKeepsThePointUnderThePointer();
    void touchpadsZoomAtThePointer();
    void fingersZoomAndMove_data();
    void fingersZoomAndMove();
    void spaceAndMiddleButtonPan();
    void keyHidesTheCut();
    void zoomsThereAndBack();

private:
    QTemporaryDir m_folder;
    std::unique_ptr<StudioDriver> m_studio;
};

void tst_StudioCanvas::init()
{
    RySettings::setFileName(m_folder.filePath(QStringLiteral("settings.ini")));
    m_studio = std::make_unique<StudioDriver>();
}

void tst_StudioCanvas::cleanup()
{
    m_studio.reset();
}

void tst_StudioCanvas::zoomKeepsThePointUnderThePointer()
{
    QVERIFY(m_studio->openCoffee());
    m_studio->canvas().zoomTo(3.0, {400, 300});
    const PicturePoint point(250, 180);
    const QPointF place = m_studio->canvas().view().toWidget(point);
    for (const int steps : {1, 3, -2}) {
        const double before = m_studio->canvas().view().scale;
        m_studio->wheel(point, steps);
        QVERIFY(qFuzzyCompare(m_studio->canvas().view().scale, before * std::pow(1.25, steps)));
        const QPointF moved = m_studio->canvas().view().toWidget(point) - place;
        QVERIFY(std::abs(moved.x()) <= 2.0 && std::abs(moved.y()) <= 2.0);
    }
    m_studio->action("zoomOriginal").trigger();
    QCOMPARE(m_studio->canvas().view().scale, 1.0);
    m_studio->action("zoomFit").trigger();
    const QRectF whole = m_studio->canvas().view().toWidget(QRectF(0, 0, 600, 400));
    QVERIFY(QRectF(m_studio->canvas().rect()).contains(whole));
}

void tst_StudioCanvas::touchpadsZoomAtThePointer()
{
    QVERIFY(m_studio->openCoffee());
    Canvas &canvas = m_studio->canvas();
    canvas.zoomTo(12.0, {400, 300}); // it need not be kept in the middle
    const WidgetPoint centre(310, 220);
    const PicturePoint point = canvas.view().toPicture(centre);
    for (const double value : {0.25, 0.5, -0.4}) {
        const double before = canvas.view().scale;
        QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(),
                                  2, centre, canvas.mapTo(&m_studio->window, centre),
                                  canvas.mapToGlobal(centre), value, {});
        QCoreApplication::sendEvent(&canvas, &event);
        QVERIFY(qFuzzyCompare(canvas.view().scale, before * (1.0 + value)));
        QVERIFY(QLineF(canvas.view().toWidget(point), centre).length() <= 2.0);
    }
}

void tst_StudioCanvas::fingersZoomAndMove_data()
{
    QTest::addColumn<QByteArray>("tool");
    QTest::addColumn<int>("spread"); // of each finger, in pixels of the canvas
    QTest::addColumn<QPoint>("way"); // of both
    for (const char *const tool : {"lasso", "scissors", "brush", "click"}) {
        QTest::addRow("%s, apart", tool) << QByteArray(tool) << 60 << QPoint();
        QTest::addRow("%s, together", tool) << QByteArray(tool) << -30 << QPoint();
        QTest::addRow("%s, apart and aside", tool) << QByteArray(tool) << 50 << QPoint(40, -20);
    }
}

/// The first finger comes before the second one, and does nothing to the cut all the same.
void tst_StudioCanvas::fingersZoomAndMove()
{
    QFETCH(QByteArray, tool);
    QFETCH(int, spread);
    QFETCH(QPoint, way);
    static QPointingDevice *const screen = QTest::createTouchDevice();
    QVERIFY(m_studio->cutCoffee());
    const QImage mask = m_studio->document().mask();
    Canvas &canvas = m_studio->canvas();
    canvas.zoomTo(12.0, {200, 150});
    m_studio->action(tool.constData()).trigger();

    const QPoint centre(180, 140), reach(50, 0);
    const PicturePoint point = canvas.view().toPicture(WidgetPoint(centre));
    QTest::touchEvent(&canvas, screen).press(0, centre - reach, &canvas);
    QTest::touchEvent(&canvas, screen).stationary(0).press(1, centre + reach, &canvas);
    constexpr int steps = 10;
    for (int step = 0; step <= steps; ++step) {
        const QPoint out(spread * step / steps, 0), at = centre + way * step / steps;
        QTest::touchEvent(&canvas, screen)
                .move(0, at - reach - out, &canvas)
                .move(1, at + reach + out, &canvas);
    }
    const double expected = 12.0 * (50.0 + spread) / 50.0;
    QVERIFY2(std::abs(canvas.view().scale / expected - 1.0) < 0.05,
             qPrintable(QString::number(canvas.view().scale)));
    const QPointF now = canvas.view().toWidget(point);
    QVERIFY2(QLineF(now, centre + way).length() <= 1.5, // pixels are whole
             qPrintable(QStringLiteral("%1, %2").arg(now.x()).arg(now.y())));
    QTest::touchEvent(&canvas, screen)
            .release(0, centre - reach, &canvas)
            .release(1, centre + reach, &canvas);
    QVERIFY(m_studio->settle());
    QVERIFY(m_studio->tools().current()->undoText().isEmpty());
    QCOMPARE(m_studio->document().mask(), mask);
    QCOMPARE(m_studio->document().undoStack()->count(), 1);
}

void tst_StudioCanvas::spaceAndMiddleButtonPan()
{
    QVERIFY(m_studio->openCoffee());
    m_studio->canvas().zoomTo(4.0, {400, 300});
    const auto panned = [&](Qt::MouseButton button) {
        const QPoint before = m_studio->canvas().view().origin;
        QTest::mousePress(&m_studio->canvas(), button, {}, {300, 300});
        m_studio->moveOnCanvas({280, 270}, button);
        QTest::mouseRelease(&m_studio->canvas(), button, {}, {280, 270});
        return QPointF(m_studio->canvas().view().origin - before) /
               m_studio->canvas().view().devicePixelRatio;
    };
    QCOMPARE(panned(Qt::MiddleButton), QPointF(-20, -30));
    QTest::keyPress(&m_studio->canvas(), Qt::Key_Space);
    QCOMPARE(panned(Qt::LeftButton), QPointF(-20, -30));
    QTest::keyRelease(&m_studio->canvas(), Qt::Key_Space);
    QVERIFY(!m_studio->tools().current()->hasUnfinishedGesture());
}

void tst_StudioCanvas::keyHidesTheCut()
{
    QVERIFY(m_studio->cutCoffee());
    const auto shown = [&] {
        const bool isThere = m_studio->settle();
        return isThere ? m_studio->canvas().grab().toImage() : QImage();
    };
    const QImage before = shown();
    QTest::keyPress(&m_studio->canvas(), Qt::Key_H);
    const QImage hidden = shown();
    QVERIFY(hidden != before);
    QVERIFY(m_studio->action("hide").isChecked());
    QTest::keyRelease(&m_studio->canvas(), Qt::Key_H);
    QCOMPARE(shown(), before);
    QVERIFY(!m_studio->action("hide").isChecked());
    m_studio->action("hide").trigger(); // stays, wherever the keys go
    QFocusEvent focusOut(QEvent::FocusOut);
    QCoreApplication::sendEvent(&m_studio->canvas(), &focusOut);
    QCOMPARE(shown(), hidden);
}

/// Drawings that are on their way come to tiles which have been forgotten and are there again.
void tst_StudioCanvas::zoomsThereAndBack()
{
    QVERIFY(m_studio->cutCoffee());
    Canvas &canvas = m_studio->canvas();
    for (int i = 0; i < 30; ++i) {
        canvas.setShowsContours(i % 2 == 0);
        for (const double scale : {1.5, 3.0, 1.5}) {
            canvas.zoomTo(scale, {200, 150});
            canvas.repaint();
        }
        QVERIFY(m_studio->settle());
    }
}

RY_TEST_CLASS(tst_StudioCanvas, QApplication)
#include "tst_StudioCanvas.moc"
