#include "cli/RycutRun.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QColorSpace>
#include <QCryptographicHash>
#include <QTest>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

const QImage &coffee()
{
    static const QImage picture =
            Samples::photograph(u"coffee.png"_s).convertToFormat(QImage::Format_ARGB32);
    return picture;
}

QByteArray rowsWithoutPadding(const QImage &image)
{
    QByteArray bytes;
    for (int y = 0; y < image.height(); ++y)
        bytes.append(reinterpret_cast<const char *>(image.constScanLine(y)),
                     qsizetype(image.width()) * image.depth() / 8);
    return bytes;
}

QString sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

} // namespace

class tst_rycut : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersQuestions();
    void saysNothingStray();
    void writesWhatTheSessionFound();
    void writesLabelsInBothForms();
    void composesOverABackground();
    void outlinesTheObject();
    void enlargesTheMask();
    void choosesTheCuttingSize();
    void turnsPicturesUpright();
    void readsLassoFiles();
    void worksInPipes();
    void resultsDependOnTheKernelOnly_data();
    void resultsDependOnTheKernelOnly();
};

void tst_rycut::answersQuestions()
{
    for (const auto &[arguments, expected] :
         {std::pair("--help", "cut "), {"--version", "rycut 0."}, {"cut --help", "--lasso "}}) {
        const RycutRun run = RycutFolder().run(arguments);
        QCOMPARE(run.status, 0);
        QVERIFY2(run.output.contains(expected), run.output.constData());
        QCOMPARE(run.errors, QByteArray());
    }
}

void tst_rycut::saysNothingStray()
{
    const RycutFolder folder;
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto &name :
         {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"XDG_RUNTIME_DIR"_s})
        environment.remove(name);
    process.setProcessEnvironment(environment);
    folder.start(process, folder.cut("--mask m.png"));
    const RycutRun talking = RycutRun::finished(process);
    QCOMPARE(talking.status, 0);
    QVERIFY(talking.errors.contains("m.png"));
    for (const QByteArray &line : talking.errors.trimmed().split('\n'))
        QVERIFY2(line.startsWith("rycut: "), line.constData());
    QCOMPARE(folder.run(folder.cut("--mask m.png --quiet")).errors, QByteArray());
}

void tst_rycut::writesWhatTheSessionFound()
{
    const RycutFolder folder;
    const RycutRun run = folder.run(
            folder.cut("--output o.png --mask m.png --contours c.png --report - --method classic"));
    QCOMPARE(run.status, 0);
    const QImage mask = folder.picture(u"m.png"_s);
    const QImage object = folder.picture(u"o.png"_s);
    QCOMPARE(mask.format(), QImage::Format_Grayscale8);
    QCOMPARE(object.format(), QImage::Format_ARGB32);
    QCOMPARE(folder.picture(u"c.png"_s).size(), coffee().size());
    int foreground = 0;
    for (int y = 0; y < coffee().height(); ++y) {
        for (int x = 0; x < coffee().width(); ++x) {
            const bool isObject = mask.constScanLine(y)[x] == 255;
            QVERIFY(isObject || mask.constScanLine(y)[x] == 0);
            QCOMPARE(object.pixel(x, y), coffee().pixel(x, y) & (isObject ? ~0U : 0xFFFFFFU));
            foreground += isObject;
        }
    }
    const QJsonObject report = run.report();
    QVERIFY(foreground > 0);
    QCOMPARE(report[u"foreground_pixels"].toInt(), foreground);
    QCOMPARE(report[u"mask_sha256"].toString(), sha256(rowsWithoutPadding(mask)));
    QCOMPARE(report[u"lasso"][u"vertices"].toInt(), 6);
    QCOMPARE(report[u"lasso"][u"width"].toDouble(), 470.0);
    QVERIFY(report[u"regions"].toInt() >= report[u"foreground_regions"].toInt());
    QVERIFY(report[u"foreground_regions"].toInt() > 0);
    QVERIFY(report[u"milliseconds"][u"session_total"].toDouble() >=
            report[u"milliseconds"][u"superpixels"].toDouble());
}

void tst_rycut::writesLabelsInBothForms()
{
    const RycutFolder folder;
    const RycutRun run = folder.run(folder.cut("--labels l.raw --report -"));
    QCOMPARE(folder.run(folder.cut("--labels l.png")).status, 0);
    const QByteArray raw = folder.contents(u"l.raw"_s);
    const QImage picture = folder.picture(u"l.png"_s);
    const auto size = QJsonDocument::fromJson(folder.contents(u"l.raw.json"_s)).object();
    QCOMPARE(QSize(size[u"width"].toInt(), size[u"height"].toInt()), QSize(600, 400));
    QCOMPARE(raw.size(), 600 * 400 * 4);
    QCOMPARE(run.report()[u"labels_sha256"].toString(), sha256(raw));
    QCOMPARE(picture.format(), QImage::Format_Grayscale16);
    quint32 largest = 0;
    for (int i = 0; i < 600 * 400; ++i) {
        const auto *const row = reinterpret_cast<const quint16 *>(picture.constScanLine(i / 600));
        const auto label = qFromLittleEndian<quint32>(raw.constData() + 4 * i);
        QCOMPARE(quint32(row[i % 600]), label);
        largest = std::max(largest, label);
    }
    QCOMPARE(int(largest), run.report()[u"regions"].toInt());
}

void tst_rycut::composesOverABackground()
{
    const RycutFolder folder;
    QImage picture = coffee();
    picture.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    QVERIFY(picture.save(folder.path(u"p.png"_s)));
    const auto corner = [&](const QByteArray &name, const QByteArray &background) {
        folder.run(folder.cut("--output " + name + " --background " + background, "p.png"));
        const QImage result = folder.picture(QString::fromLatin1(name));
        return result.colorSpace() == picture.colorSpace() ? result.pixel(0, 0) : 0U;
    };
    QCOMPARE(corner("o.png", "#3080f0"), 0xFF3080F0U);
    QCOMPARE(corner("o.png", "#80ff0000"), 0x80FF0000U);
    QVERIFY(qRed(corner("o.jpg", "white")) > 248);
}

void tst_rycut::outlinesTheObject()
{
    const RycutFolder folder;
    QCOMPARE(folder.run(folder.cut("--overlay v.png --mask m.png")).status, 0);
    const QImage overlay = folder.picture(u"v.png"_s);
    const QImage mask = folder.picture(u"m.png"_s);
    const auto isObject = [&](int x, int y) {
        return mask.valid(x, y) && mask.constScanLine(y)[x] != 0;
    };
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            const QRgb pixel = overlay.pixel(x, y);
            const QRgb before = coffee().pixel(x, y);
            if (isObject(x, y))
                QCOMPARE(pixel, before);
            else if (isObject(x - 1, y) || isObject(x + 1, y) || isObject(x, y - 1) ||
                     isObject(x, y + 1))
                QCOMPARE(pixel, 0xFFFFD800U);
            else if (pixel != 0xFFFFD800U)
                QVERIFY(2 * qRed(pixel) <= qRed(before) && 2 * qGreen(pixel) <= qGreen(before));
        }
    }
}

void tst_rycut::enlargesTheMask()
{
    constexpr int factor = 3; // odd, so that a pixel lies in the middle of every enlarged one
    const RycutFolder folder;
    const RycutRun run = folder.run(folder.cut("--mask m.png --max-length 200 --report -"));
    const QImage mask = folder.picture(u"m.png"_s);
    QCOMPARE(mask.size(), QSize(600, 400));
    QImage middles(200, 133, QImage::Format_Grayscale8);
    for (int y = 0; y < middles.height(); ++y)
        for (int x = 0; x < middles.width(); ++x)
            middles.scanLine(y)[x] =
                    mask.constScanLine(factor * y + 1)[factor * x + 1] >= 128 ? 255 : 0;
    QCOMPARE(run.report()[u"mask_sha256"].toString(), sha256(rowsWithoutPadding(middles)));
    const QByteArray values = rowsWithoutPadding(mask);
    QVERIFY(values.size() - values.count('\0') - values.count('\xFF') > 1000); // soft edges
}

void tst_rycut::choosesTheCuttingSize()
{
    const RycutFolder folder;
    QVERIFY(Samples::photograph(u"coffee.png"_s, 1500).save(folder.path(u"p.png"_s)));
    for (const auto &[option, width] : {std::pair("", 1200),
                                        {"--full-size", 1500},
                                        {"--max-length 0", 1500},
                                        {"--max-length 300", 300}}) {
        const RycutRun run = folder.run(folder.cut(
                QByteArray("--output o.png --labels l.png --report - ") + option, "p.png"));
        QCOMPARE(folder.picture(u"o.png"_s).size(), QSize(1500, 1000));
        QCOMPARE(folder.picture(u"l.png"_s).size(), QSize(width, width * 2 / 3));
        QCOMPARE(run.report()[u"cutting"][u"width"].toInt(), width);
        QCOMPARE(run.report()[u"picture"][u"width"].toInt(), 1500);
    }
}

void tst_rycut::turnsPicturesUpright()
{
    const RycutFolder folder;
    QVERIFY(coffee().transformed(QTransform().rotate(-90)).save(folder.path(u"p.jpg"_s)));
    // Exif, big-endian, one entry: orientation 6, a quarter turn clockwise.
    const QByteArray note = QByteArray::fromHex("ffe10022457869660000"
                                                "4d4d002a00000008"
                                                "0001"
                                                "011200030000000100060000"
                                                "00000000");
    folder.store(u"p.jpg"_s, folder.contents(u"p.jpg"_s).insert(2, note));
    QCOMPARE(folder.run(folder.cut("--output o.png", "p.jpg")).status, 0);
    const QImage upright = folder.picture(u"o.png"_s);
    QCOMPARE(upright.size(), QSize(600, 400));
    QVERIFY(std::abs(qRed(upright.pixel(300, 250)) - qRed(coffee().pixel(300, 250))) < 20);
}

void tst_rycut::readsLassoFiles()
{
    const RycutFolder folder;
    const RycutRun expected = folder.run(folder.cut("--mask -"));
    QCOMPARE(expected.status, 0);
    for (const QByteArray lasso :
         {"130,60\n480, 60\n540 ,200\n480.0,34e1\n130,340\n70,200",
          "# cup\n\n130 60 # first\r\n480\t60\r\n  540 200\n\n480 340\n130 340\n70 200\n#"}) {
        folder.store(u"lasso"_s, lasso);
        for (const auto &name : {"lasso", "-"})
            QCOMPARE(folder.run(QByteArray("cut @coffee.png --mask - --lasso ") + name, lasso)
                             .output,
                     expected.output);
    }
}

void tst_rycut::worksInPipes()
{
    const RycutFolder folder;
    QVERIFY(coffee().save(folder.path(u"p.png"_s)));
    QCOMPARE(folder.run(folder.cut("--output o.png")).status, 0);
    const RycutRun run = folder.run(folder.cut("--output -", "-"), folder.contents(u"p.png"_s));
    QCOMPARE(run.output, folder.contents(u"o.png"_s));
}

void tst_rycut::resultsDependOnTheKernelOnly_data()
{
    QTest::addColumn<QString>("kernel");
    for (const char *name : {"scalar", "sse", "avx2"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_rycut::resultsDependOnTheKernelOnly()
{
    QFETCH(QString, kernel);
    QString hashes;
    for (const int cores : {1, 5}) {
        const RycutRun run =
                RycutFolder().run(RycutFolder::cut("--report - --kernel " + kernel.toLatin1() +
                                                   " --cores " + QByteArray::number(cores)));
        if (run.errors.contains("this machine cannot run"))
            QSKIP("not on this processor");
        const QJsonObject report = run.report();
        QCOMPARE(report[u"kernel"].toString(), kernel);
        QCOMPARE(report[u"cores"].toInt(), cores);
        const QString found =
                report[u"mask_sha256"].toString() + report[u"labels_sha256"].toString();
        QCOMPARE(found, hashes.isEmpty() ? found : hashes);
        hashes = found;
    }
}

RY_TEST_CLASS(tst_rycut, QCoreApplication)
#include "tst_rycut.moc"
