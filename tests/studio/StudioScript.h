#pragma once

#include "StudioDriver.h"
#include "ThreadStopwatch.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QRandomGenerator>
#include <QSpinBox>
#include <QUndoStack>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

/// A person's work on a large picture, with every tool.
class StudioScript
{
public:
    /// Hears what has just been done.
    using Report = std::function<void(const char *what)>;

    StudioScript(StudioDriver &studio, const QSize &picture, const Report &report)
        : m_studio(studio)
        , m_centre(picture.width() / 2.0, picture.height() / 2.0)
        , m_radius(picture.height() / 3.0)
        , m_report(report)
    {}

    /// A textured disc on a textured ground.
    static QImage picture(const QSize &size)
    {
        QImage picture(size, QImage::Format_RGB32);
        QRandomGenerator random(11);
        const int radius = size.height() / 3;
        for (int y = 0; y < picture.height(); ++y) {
            auto *const row = reinterpret_cast<QRgb *>(picture.scanLine(y));
            for (int x = 0; x < picture.width(); ++x) {
                const int dx = x - size.width() / 2, dy = y - size.height() / 2;
                const int grain = int(random.bounded(24u)), wave = (x / 37 + y / 53) % 40;
                row[x] = dx * dx + dy * dy < radius * radius
                                 ? qRgb(170 + grain + wave, 90 + grain, 40 + wave)
                                 : qRgb(30 + wave, 80 + grain, 120 + grain + wave);
            }
        }
        return picture;
    }

    /// False as soon as something has no end.
    bool run()
    {
        return cut() && correct() && layWire() && look() && edges() && undoAndRedo() && cancel();
    }
    ThreadStopwatch::Lap slowestHover() const { return m_slowestHover; } ///< from move to paint

private:
    QPolygonF circle(double share, int points) const
    {
        QPolygonF polygon;
        for (int i = 0; i < points; ++i) {
            const double angle = 2.0 * std::numbers::pi * i / points;
            polygon << m_centre + share * m_radius * QPointF(std::cos(angle), std::sin(angle));
        }
        return polygon;
    }

    void drag(const QPolygonF &points, Qt::MouseButton button = Qt::LeftButton)
    {
        m_studio.press(points.first(), button);
        for (const QPointF &point : points) {
            m_studio.move(point, button);
            StudioDriver::pause(pauseMs);
        }
        m_studio.release(points.last(), button);
    }

    bool done(const char *what)
    {
        const bool isSettled = m_studio.settle();
        m_report(what);
        return isSettled;
    }

    void use(const char *action) { m_studio.action(action).trigger(); }

    bool cut()
    {
        drag(circle(1.15, 120));
        return done("lasso and cut") && m_studio.document().hasCut();
    }

    bool correct()
    {
        use("brush");
        for (const QPointF &point : circle(0.9, 100))
            hover(point);
        if (!done("hover"))
            return false;
        drag(circle(1.05, 100), Qt::RightButton);
        if (!done("region brush"))
            return false;
        use("scribble");
        drag(circle(0.7, 100));
        if (!done("scribble"))
            return false;
        use("click");
        for (const QPointF &point : circle(0.5, 10)) {
            m_studio.move(point);
            m_studio.click(point);
            StudioDriver::pause(pauseMs);
        }
        return done("click");
    }

    /// Round the disc, without waiting for any stretch, and changed once it is closed.
    bool layWire()
    {
        use("scissors");
        const QPolygonF nodes = circle(1.0, 12);
        for (const QPointF &node : nodes) {
            m_studio.move(node);
            StudioDriver::pause(pauseMs);
            m_studio.click(node);
            for (int i = 1; i < 10; ++i) {
                m_studio.move(node + (m_centre - node) * i / 20.0);
                StudioDriver::pause(pauseMs);
            }
        }
        m_studio.key(Qt::Key_Return);
        m_report("scissors");
        drag({nodes.at(3), nodes.at(3) * 0.99 + m_centre * 0.01,
              nodes.at(3) * 0.97 + m_centre * 0.03});
        m_report("drag a node");
        const int steps = m_studio.document().undoStack()->count();
        m_studio.key(Qt::Key_Return);
        const bool isUsed = StudioDriver::waitFor(
                [&] { return m_studio.document().undoStack()->count() > steps; });
        return done("use the wire") && isUsed;
    }

    void hover(const QPointF &point)
    {
        PaintWatch watch(m_studio.canvas());
        const QDeadlineTimer end(patienceMs);
        ThreadStopwatch stopwatch;
        m_studio.move(point);
        while (!watch.isPainted && !end.hasExpired())
            QCoreApplication::processEvents(); // returns when the painting is over
        const ThreadStopwatch::Lap lap = stopwatch.lap();
        m_slowestHover = {std::max(m_slowestHover.ms, lap.ms),
                          std::max(m_slowestHover.ownMs, lap.ownMs)};
        StudioDriver::pause(pauseMs);
    }

    bool look()
    {
        for (const char *const view :
             {"viewOutline", "viewCheckerboard", "viewOverlay", "contours"}) {
            use(view);
            if (!m_studio.settle())
                return false;
        }
        m_report("views");
        for (int i = 0; i < 12; ++i) {
            m_studio.canvas().zoomTo(m_studio.canvas().view().scale * 1.25, {400, 300});
            StudioDriver::pause(pauseMs);
        }
        if (!done("zoom"))
            return false;
        QTest::mousePress(&m_studio.canvas(), Qt::MiddleButton, {}, {400, 300});
        for (int i = 0; i < 60; ++i) {
            m_studio.moveOnCanvas(QPointF(400 - 5 * i, 300 - 3 * i), Qt::MiddleButton);
            StudioDriver::pause(pauseMs);
        }
        QTest::mouseRelease(&m_studio.canvas(), Qt::MiddleButton, {}, {100, 120});
        const bool hasPanned = done("pan");
        use("zoomFit");
        return hasPanned;
    }

    /// A slider on its way, then two more controls, and a stroke whose mask follows them all.
    bool edges()
    {
        const auto set = [this](const char *control, int value) {
            m_studio.window.findChild<QSpinBox *>(QLatin1StringView(control))->setValue(value);
            StudioDriver::pause(pauseMs);
        };
        for (int feather = 1; feather <= 20; ++feather)
            set("edgeFeather", feather);
        set("edgeSmooth", 5);
        set("edgeDrop", 100);
        if (!done("edge controls"))
            return false;
        use("viewCheckerboard");
        set("edgeClean", 4);
        if (!done("clean colours"))
            return false;
        use("scribble");
        drag(circle(0.6, 40));
        if (!done("scribble under a soft edge"))
            return false;
        use("viewOverlay");
        QGuiApplication::clipboard()->setText(QStringLiteral("something else"));
        use("copyCutout");
        const bool isCopied = StudioDriver::waitFor([] {
            const QMimeData *const data = QGuiApplication::clipboard()->mimeData();
            return data && data->hasImage();
        });
        m_report("copy");
        return isCopied;
    }

    bool undoAndRedo()
    {
        for (const char *const direction : {"undo", "redo"}) {
            while (m_studio.action(direction).isEnabled()) {
                use(direction);
                if (!m_studio.settle())
                    return false;
            }
            m_report(direction);
        }
        return m_studio.document().hasCut();
    }

    bool cancel()
    {
        use("lasso");
        drag(circle(1.15, 120));
        use("cancel");
        return done("cancel") && m_studio.document().hasCut();
    }

    class PaintWatch : public QObject
    {
    public:
        explicit PaintWatch(QWidget &widget) { widget.installEventFilter(this); }
        bool eventFilter(QObject *, QEvent *event) override
        {
            isPainted = isPainted || event->type() == QEvent::Paint;
            return false;
        }

        bool isPainted = false;
    };

    static constexpr int pauseMs = 4; // as often as a good mouse tells

    StudioDriver &m_studio;
    const QPointF m_centre;
    const double m_radius;
    const Report m_report;
    ThreadStopwatch::Lap m_slowestHover;
};
