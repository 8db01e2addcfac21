#include "cutout/MaskOutline.h"
#include "cutout/SvgOutline.h"
#include "support/Masks.h"
#include "support/SvgPath.h"
#include "support/TestClasses.h"

#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QImage hard(QImage mask)
{
    std::transform(mask.bits(), mask.bits() + mask.sizeInBytes(), mask.bits(),
                   [](uchar value) { return value >= 128 ? uchar(255) : uchar(0); });
    return mask;
}

} // namespace

class tst_MaskOutline : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coversTheObject();
    void hasPiecesAndHoles();
    void writesTheView();
};

void tst_MaskOutline::coversTheObject()
{
    QList<QImage> masks{Masks::filled({9, 7}, 0), Masks::filled({9, 7}, 255),
                        Masks::filled({9, 7}, 127), Masks::random({9000, 40}, false, 1)};
    for (const QSize &size : {QSize(1, 1), QSize(1, 30), QSize(30, 1), QSize(40, 30)})
        for (quint32 seed = 0; seed < 6; ++seed)
            masks << Masks::random(size, seed % 2 == 0, seed);
    for (const QImage &mask : std::as_const(masks)) {
        const QPainterPath path = MaskOutline::path(mask);
        QCOMPARE(SvgPath::filled(path, mask.size()), hard(mask));
        const QByteArray svg = SvgOutline::filled(path, mask.rect());
        QCOMPARE(SvgPath::filled(SvgPath::parse(svg), mask.size()), hard(mask));
    }
}

void tst_MaskOutline::hasPiecesAndHoles()
{
    struct Shape
    {
        QByteArray rows;
        int subpaths;
        int corners;
    };
    for (const auto &[rows, subpaths, corners] :
         {Shape{"...", 0, 0}, Shape{"##/##", 1, 4}, Shape{"###/#.#/###", 2, 8}, Shape{"#.#", 2, 8},
          Shape{"#./.#", 1, 8}, // corners hold pieces together
          Shape{".#/#.", 1, 8}, Shape{"###/#.#/##.", 2, 10}}) {
        const QList<QPolygonF> found = MaskOutline::path(Masks::drawn(rows)).toSubpathPolygons();
        QCOMPARE(found.size(), subpaths);
        qsizetype vertices = 0;
        for (const QPolygonF &polygon : found) {
            QVERIFY(polygon.isClosed());
            vertices += polygon.size() - 1;
        }
        QCOMPARE(vertices, corners);
    }
}

void tst_MaskOutline::writesTheView()
{
    QPainterPath path;
    path.addPolygon(QPolygonF{{1.25, 2}, {30000.125, 2}, {7, 9}, {1.25, 2}});
    const QByteArray svg = SvgOutline::filled(path, {10, 20, 300, 200});
    QCOMPARE(SvgPath::parse(svg), path);
    QXmlStreamReader reader(svg);
    QVERIFY(reader.readNextStartElement());
    QCOMPARE(reader.name(), u"svg"_s);
    QCOMPARE(reader.attributes().value(u"viewBox"_s), u"10 20 300 200"_s);
    QCOMPARE(reader.attributes().value(u"width"_s), u"300"_s);
    while (!reader.atEnd())
        reader.readNext();
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
}

RY_TEST_CLASS(tst_MaskOutline, QCoreApplication)
#include "tst_MaskOutline.moc"
