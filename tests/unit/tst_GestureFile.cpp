#include "cutout/AppError.h"
#include "gestures/GestureFile.h"
#include "support/TestClasses.h"

#include <QTest>

#include <bit>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QByteArray begin = "rycut-session 1\n";
const QByteArray hash(64, 'a');

} // namespace

class tst_GestureFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesWhatItRead_data();
    void writesWhatItRead();
    void understandsFields();
    void keepsEveryBitOfANumber();
    void namesTheMalformedLine_data();
    void namesTheMalformedLine();
};

void tst_GestureFile::writesWhatItRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("written"); // without the first line
    const auto row = [](const QByteArray &text, const QByteArray &written = {}) {
        QTest::newRow(text.simplified().constData())
                << QByteArray(begin + text) << (written.isEmpty() ? text : written);
    };
    row("picture 600x400 " + hash + '\n');
    row("lasso 1 2 3 4 5 6\n");
    row("file ../cats/my%20%23%201%20%C3%A4.jpg\n");
    row("longest-side 0\n");
    row("file :/a\nlongest-side 1200\nundo\n");
    row("area bg 1 2 3 4 5 6.5\n");
    row("click 1.5 -2\n");
    row("width 3\nscribble fg final 1 2 3 4\nwidth 12\npaint bg temporary 1 2\n");
    row("hover bg 1 2 30\n");
    row("color #ff8000\n");
    row("method graph\nmethod classic\n");
    row("drop 3\nfill 4\nsmooth 0\ngrow -6\nfeather 7\nclean 8\n");
    row("grow 2\nsmooth 1\nundo\ngrow -200\n", "undo\nsmooth 1\ngrow -200\n");
    row("recut\ninvert\nundo\nredo\n");
    row("seed 1 2\nwire 3 4\nclick 9 9\nclose\nseed 5 6\nclose\n");
    row("click +1e1 2.50\n", "click 10 2.5\n");
    row("width 5\nclick 1 2\nwidth 7\nwidth 12\npaint fg final 1 2",
        "click 1 2\npaint fg final 1 2\n");
    row("# all\r\n\r\n\tundo # it\r\n  redo#it\r\n", "undo\nredo\n");
    row("color #FF8000 # orange\ncolor #00ff00# green\n", "color #ff8000\ncolor #00ff00\n");
}

void tst_GestureFile::writesWhatItRead()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, written);
    QCOMPARE(GestureFile::parse("# before\n\n" + text, u"s"_s).text(), QByteArray(begin + written));
}

void tst_GestureFile::understandsFields()
{
    const GestureFile file =
            GestureFile::parse(begin + "picture 600x400 " + hash +
                                       "\nfile my%20cat.jpg\nwidth 5\nscribble bg final 1 2 3 "
                                       "4\npaint fg temporary 5 6\nhover bg 7 8 9",
                               u"s"_s);
    QCOMPARE(file.picture->size, QSize(600, 400));
    QCOMPARE(file.picture->sha256, hash);
    QCOMPARE(file.pictureFile, u"my cat.jpg"_s);
    const auto scribble = std::get<Gesture::Scribble>(file.gestures.at(0).step);
    QCOMPARE(scribble.width, 5.0);
    QVERIFY(!scribble.isForeground && !scribble.isTemporary);
    QCOMPARE(scribble.points, QPolygonF(QList<QPointF>{{1, 2}, {3, 4}}));
    const auto paint = std::get<Gesture::Paint>(file.gestures.at(1).step);
    QVERIFY(paint.isForeground && paint.isTemporary);
    const auto hover = std::get<Gesture::Hover>(file.gestures.at(2).step);
    QVERIFY(!hover.isForeground && hover.point == QPointF(7, 8) && hover.diameter == 9);
}

void tst_GestureFile::keepsEveryBitOfANumber()
{
    const QList<double> numbers{1.0 / 3.0, -0.0, std::nextafter(1e6, 0.0), 4.9e-324};
    GestureFile file;
    for (const double number : numbers)
        file.gestures.append(Gesture(Gesture::Click{{number, -number}}));
    const GestureFile read = GestureFile::parse(file.text(), u"s"_s);
    for (qsizetype i = 0; i < numbers.size(); ++i) {
        const QPointF point = std::get<Gesture::Click>(read.gestures.at(i).step).point;
        QCOMPARE(std::bit_cast<quint64>(point.x()), std::bit_cast<quint64>(numbers.at(i)));
        QCOMPARE(std::bit_cast<quint64>(point.y()), std::bit_cast<quint64>(-numbers.at(i)));
    }
}

void tst_GestureFile::namesTheMalformedLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("named"); // in the message
    const auto whole = [](const QByteArray &text, int line, const QString &named) {
        QTest::newRow(text.left(40).simplified().constData()) << text << line << named;
    };
    whole("", 1, u"'rycut-session 1'"_s);
    whole("\n# none\nclick 1 2\n", 3, u"'rycut-session 1'"_s);
    whole("rycut-session 2\nwire\n", 1, u"version '2'"_s);
    whole("rycut-session\n", 1, u"version ''"_s);
    whole("rycut-session 1 2\n", 1, u"end of the line"_s);
    const auto row = [whole](const QByteArray &line, const QString &named) {
        whole(begin + "undo\n\n" + line + "\nundo", 4, named);
    };
    row("picture 600x400 " + hash, u"right below"_s);
    row("file a", u"above the first"_s);
    row("longest-side 1", u"above the first"_s);
    row("area fg 1 2 3 4", u"the line ends"_s);
    row("Click 1 2", u"click"_s);
    row("click 1", u"'click x y'"_s);
    row("click 1 2 3", u"'3'"_s);
    row("click 1 nan", u"'nan'"_s);
    row("click 1 -1000000.1", u"1000000"_s);
    row("lasso 1 2 3 4", u"the line ends"_s);
    row("lasso 1 2 3 4 5 6 7", u"the line ends"_s);
    row("paint fg final", u"the line ends"_s);
    row("paint ground final 1 2", u"'fg'"_s);
    row("scribble fg 1 2", u"'temporary'"_s);
    for (const char *const width : {"0", "-1", "nan", "100001", "", "1 2"})
        row(QByteArray("width ") + width, u"expected"_s);
    for (const char *const diameter : {"0", "1.5", "", "99999999999"})
        row(QByteArray("hover fg 1 2 ") + diameter, u"whole number"_s);
    for (const char *const color : {"", "red", "#ff800", "#ff80001", "#gg0000", "# red"})
        row(QByteArray("color ") + color, u"#ff8000"_s);
    row("undo 2", u"'2'"_s);
    row("smooth 201", u"from 0 to 200"_s);
    row("grow -201", u"'-201'; write 'grow PIXELS'"_s);
    row("feather 1.5", u"'1.5'"_s);
    row("drop", u"the line ends"_s);
    row("fill 100000001", u"'100000001'"_s);
    row("clean 51", u"from 0 to 50"_s);
    row("soft 2", u"smooth"_s);
    row("wire 1 2", u"seed"_s);
    row("close", u"seed"_s);
    whole(begin + "file\n", 2, u"name"_s);
    whole(begin + "longest-side -1\n", 2, u"from 0 up"_s);
    whole(begin + "seed 1 2\nclose\nwire 3 4\n", 4, u"seed"_s);
    for (const QByteArray &picture :
         {QByteArray("600 400 " + hash), QByteArray("600x0 " + hash), QByteArray("x400 " + hash),
          QByteArray("600x400"), QByteArray("600x400 " + hash.chopped(1)),
          QByteArray("600x400 " + hash.toUpper()), QByteArray("600x400 " + hash + " 1")})
        whole(begin + "picture " + picture, 2, u"expected"_s);
}

void tst_GestureFile::namesTheMalformedLine()
{
    QFETCH(QByteArray, text);
    QFETCH(int, line);
    QFETCH(QString, named);
    try {
        GestureFile::parse(text, u"my.session"_s);
        QFAIL("it was taken for a session");
    } catch (const AppError &error) {
        const QString message = error.message();
        QVERIFY2(message.startsWith(u"my.session, line %1: "_s.arg(line)), qPrintable(message));
        QVERIFY2(message.contains(named), qPrintable(message));
    }
}

RY_TEST_CLASS(tst_GestureFile, QCoreApplication)
#include "tst_GestureFile.moc"
