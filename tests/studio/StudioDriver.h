#pragma once

#include "RyHeapPolicy.h"
#include "background/PaintThreads.h"
#include "canvas/Canvas.h"
#include "support/Patience.h"
#include "support/Samples.h"
#include "window/MainWindow.h"

#include <QAction>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPixmap>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QWheelEvent>
#include <QtMath>

#include <algorithm>

/// A real window, and a hand on its mouse, in pixels of the picture.
class StudioDriver
{
public:
    StudioDriver()
    {
        RyHeapPolicy::returnLargeBlocks(); // as main() does
        PaintThreads::reserve();
        window.show();
        const bool isExposed = QTest::qWaitForWindowExposed(&window);
        Q_UNUSED(isExposed)
    }

    Document &document() { return window.document(); }
    ToolSet &tools() { return window.tools(); }
    Canvas &canvas() { return window.canvas(); }
    QAction &action(const char *id)
    {
        const QList<QAction *> actions = window.actions();
        return **std::find_if(actions.begin(), actions.end(), [id](const QAction *action) {
            return action->objectName() == QLatin1StringView(id);
        });
    }

    /// The current tool's control of this kind.
    template <typename Control>
    Control *toolOption()
    {
        return window.findChild<QToolBar *>(QStringLiteral("optionsBar"))->findChild<Control *>();
    }

    /// True when the picture is there.
    bool open(const QString &fileName)
    {
        window.openFile(fileName);
        return waitFor([&] {
            return document().hasPicture() && document().opened().fileName == fileName;
        });
    }

    /// The sample that most tests work on, 600 x 400 pixels, which is its cutting size too.
    static QString coffee() { return QStringLiteral(":/samples/coffee.png"); }
    bool openCoffee() { return open(coffee()); }
    static QPolygonF coffeeLasso()
    {
        QPolygonF points = Samples::lasso(QStringLiteral("coffee")).toSubpathPolygons().first();
        points.removeLast(); // closes the path
        return points;
    }
    /// True when the cup has been cut out.
    bool cutCoffee()
    {
        if (!openCoffee())
            return false;
        drag(coffeeLasso());
        return settle() && document().hasCut();
    }

    /// True when everything is done and drawn.
    bool settle()
    {
        return waitFor([&] { return !document().isBusy() && canvas().isUpToDate(); });
    }

    /// The event loop turns whenever it has something to do; QTest's functions let it sleep for up
    /// to 10 ms, whatever happens. False when patience is at its end.
    template <typename Predicate>
    static bool waitFor(const Predicate &isTrue, int mostMs = patienceMs)
    {
        const QDeadlineTimer end(mostMs);
        QTimer alarm; // wakes the loop for another look
        alarm.start(1);
        while (!isTrue() && !end.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return isTrue();
    }

    static void pause(int ms)
    {
        waitFor([] { return false; }, ms);
    }

    QPoint onCanvas(const QPointF &point)
    {
        return canvas().view().toWidget(PicturePoint(point)).toPoint();
    }
    void press(const QPointF &point, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(&canvas(), button, modifiers, onCanvas(point));
    }
    void release(const QPointF &point, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseRelease(&canvas(), button, {}, onCanvas(point));
    }
    void move(const QPointF &point, Qt::MouseButtons held = {})
    {
        moveOnCanvas(onCanvas(point), held);
    }
    void moveOnCanvas(const QPointF &local, Qt::MouseButtons held)
    {
        QMouseEvent event(QEvent::MouseMove, local, canvas().mapToGlobal(local), Qt::NoButton, held,
                          {});
        QCoreApplication::sendEvent(&canvas(), &event);
    }
    void drag(const QPolygonF &points, Qt::MouseButton button = Qt::LeftButton,
              Qt::KeyboardModifiers modifiers = {})
    {
        press(points.first(), button, modifiers);
        for (const QPointF &point : points)
            move(point, button);
        release(points.last(), button);
    }
    void click(const QPointF &point, Qt::MouseButton button = Qt::LeftButton)
    {
        press(point, button);
        release(point, button);
    }
    void wheel(const QPointF &point, int steps, Qt::KeyboardModifiers modifiers = {})
    {
        const QPointF local = canvas().view().toWidget(PicturePoint(point));
        QWheelEvent event(local, canvas().mapToGlobal(local), {}, {0, 120 * steps}, {}, modifiers,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&canvas(), &event);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&canvas(), key, modifiers);
    }

    /// The point in pixels of the mask.
    bool isObject(const QPointF &point)
    {
        return qAlpha(document().mask().pixel(point.toPoint())) == 0;
    }
    /// The share of the picture that is object.
    double objectShare()
    {
        const QImage mask = document().mask();
        qint64 count = 0;
        for (int y = 0; y < mask.height(); ++y) {
            const auto *const row = reinterpret_cast<const QRgb *>(mask.constScanLine(y));
            count += std::count_if(row, row + mask.width(),
                                   [](QRgb pixel) { return qAlpha(pixel) == 0; });
        }
        return mask.isNull() ? 0.0 : double(count) / (double(mask.width()) * mask.height());
    }

    /// To be looked at; false when it cannot be written.
    static bool photograph(QWidget &widget, const QString &name)
    {
        const QPixmap picture = widget.grab();
        const QString file = QStringLiteral(RY_SCREENSHOTS_DIR "/%1-%2x.png");
        return QDir().mkpath(QStringLiteral(RY_SCREENSHOTS_DIR)) &&
               picture.save(file.arg(name).arg(picture.devicePixelRatio()));
    }

    MainWindow window;
};
