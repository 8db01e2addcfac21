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

QImage drawn(const QStringList &rows)
{
    QImage mask = Masks::filled({int(rows.first().size()), int(rows.size())}, 0);
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            mask.scanLine(y)[x] = rows.at(y).at(x) == u'#' ? 255 : 0;
    return mask;
}

} // namespace

class tst_MaskOutline : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coversTheObject_data();
    void coversTheObject();
    void hasPiecesAndHoles_data();
    void hasPiecesAndHoles();
    void writesTheView();
};

void tst_MaskOutline::coversTheObject_data()
{
    QTest::addColumn<QImage>("mask");
    for (const QSize &size : {QSize(1, 1), QSize(1, 30), QSize(30, 1), QSize(40, 30)}) {
        for (quint32 seed = 0; seed < 6; ++seed)
            QTest::addRow("%d x %d, %u", size.width(), size.height(), seed)
                    << Masks::random(size, seed % 2 == 0, seed);
    }
    QTest::newRow("empty") << Masks::filled({9, 7}, 0);
    QTest::newRow("full") << Masks::filled({9, 7}, 255);
    QTest::newRow("less than half") << Masks::filled({9, 7}, 127);
    QTest::newRow("wide") << Masks::random({9000, 40}, false, 1);
}

void tst_MaskOutline::coversTheObject()
{
    QFETCH(QImage, mask);
    const QPainterPath path = MaskOutline::path(mask);
    QCOMPARE(SvgPath::filled(path, mask.size()), hard(mask));
    const QByteArray svg = SvgOutline::filled(path, mask.rect());
    QCOMPARE(SvgPath::filled(SvgPath::parse(svg), mask.size()), hard(mask));
}

void tst_MaskOutline::hasPiecesAndHoles_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<int>("subpaths");
    QTest::addColumn<int>("corners");
    QTest::newRow("nothing") << QStringList{u"..."_s} << 0 << 0;
    QTest::newRow("square") << QStringList{u"##"_s, u"##"_s} << 1 << 4;
    QTest::newRow("ring") << QStringList{u"###"_s, u"#.#"_s, u"###"_s} << 2 << 8;
    QTest::newRow("pieces") << QStringList{u"#.#"_s, u"..."_s} << 2 << 8;
    QTest::newRow("corners hold falling") << QStringList{u"#."_s, u".#"_s} << 1 << 8;
    QTest::newRow("corners hold rising") << QStringList{u".#"_s, u"#."_s} << 1 << 8;
    QTest::newRow("hole at a corner") << QStringList{u"###"_s, u"#.#"_s, u"##."_s} << 2 << 10;
}

void tst_MaskOutline::hasPiecesAndHoles()
{
    QFETCH(QStringList, rows);
    QFETCH(int, subpaths);
    QFETCH(int, corners);
    const QList<QPolygonF> found = MaskOutline::path(drawn(rows)).toSubpathPolygons();
    QCOMPARE(found.size(), subpaths);
    qsizetype vertices = 0;
    for (const QPolygonF &polygon : found) {
        QVERIFY(polygon.isClosed());
        vertices += polygon.size() - 1;
    }
    QCOMPARE(vertices, corners);
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
