#include "cli/RycutRun.h"
#include "support/Samples.h"
#include "support/TestClasses.h"

#include <QColorSpace>
#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <memory>

using namespace Qt::StringLiterals;
using namespace RycutFiles;

namespace {

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

/// The pixel with its alpha times the mask, as the program promises it.
QRgb masked(QRgb pixel, int mask)
{
    return qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), (qAlpha(pixel) * mask + 127) / 255);
}

QRect objectBox(const QImage &mask)
{
    QRect box;
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            if (qGray(mask.pixel(x, y)) != 0)
                box |= QRect(x, y, 1, 1);
    return box;
}

} // namespace

class tst_rycut : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void answersQuestions_data();
    void answersQuestions();
    void saysNothingStray();

    void writesWhatTheSessionFound();
    void writesLabelsInBothForms();
    void multipliesAlphaAndKeepsTheRest();
    void cropsToTheObject();
    void composesOverABackground_data();
    void composesOverABackground();
    void outlinesTheObject();
    void enlargesTheMask();
    void choosesTheCuttingSize_data();
    void choosesTheCuttingSize();
    void turnsPicturesUpright();
    void readsLassoFiles_data();
    void readsLassoFiles();
    void worksInPipes();
    void resultsDependOnTheKernelOnly_data();
    void resultsDependOnTheKernelOnly();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder; // a fresh one for every test
};

void tst_rycut::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_rycut::answersQuestions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("help") << QStringList{u"--help"_s} << QByteArray("cut ");
    QTest::newRow("version") << QStringList{u"--version"_s} << QByteArray("rycut 0.");
    QTest::newRow("help of cut") << QStringList{u"cut"_s, u"--help"_s} << QByteArray("--lasso ");
}

void tst_rycut::answersQuestions()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, expected);
    const RycutRun run = RycutRun::of(arguments);
    QCOMPARE(run.status, 0);
    QVERIFY2(run.output.contains(expected), run.output.constData());
    QCOMPARE(run.errors, QByteArray());
}

void tst_rycut::saysNothingStray()
{
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto &name :
         {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"XDG_RUNTIME_DIR"_s})
        environment.remove(name);
    process.setProcessEnvironment(environment);
    RycutRun::start(process, cut(coffee, {u"--mask"_s, path(u"m.png"_s)}));
    const RycutRun talking = RycutRun::finished(process);
    QCOMPARE(talking.status, 0);
    QVERIFY(talking.errors.contains("m.png"));
    for (const QByteArray &line : talking.errors.trimmed().split('\n'))
        QVERIFY2(line.startsWith("rycut: "), line.constData());
    RycutRun::start(process, cut(coffee, {u"--mask"_s, path(u"m.png"_s), u"--quiet"_s}));
    QCOMPARE(RycutRun::finished(process).errors, QByteArray());
}

void tst_rycut::writesWhatTheSessionFound()
{
    const RycutRun run = RycutRun::of(
            cut(coffee, {u"--output"_s, path(u"o.png"_s), u"--mask"_s, path(u"m.png"_s),
                         u"--contours"_s, path(u"c.png"_s), u"--report"_s, u"-"_s}));
    QCOMPARE(run.status, 0);
    const QImage picture = QImage(coffee).convertToFormat(QImage::Format_ARGB32);
    const QImage mask(path(u"m.png"_s));
    const QImage object(path(u"o.png"_s));
    QCOMPARE(mask.format(), QImage::Format_Grayscale8);
    QCOMPARE(object.format(), QImage::Format_ARGB32);
    QCOMPARE(mask.size(), picture.size());
    QCOMPARE(object.size(), picture.size());
    QCOMPARE(QImage(path(u"c.png"_s)).size(), picture.size());
    int foreground = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int value = mask.constScanLine(y)[x];
            QVERIFY(value == 0 || value == 255);
            QCOMPARE(object.pixel(x, y), masked(picture.pixel(x, y), value));
            foreground += value == 255;
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
    const RycutRun run =
            RycutRun::of(cut(coffee, {u"--labels"_s, path(u"l.raw"_s), u"--report"_s, u"-"_s}));
    QCOMPARE(run.status, 0);
    QCOMPARE(RycutRun::of(cut(coffee, {u"--labels"_s, path(u"l.png"_s)})).status, 0);
    const QByteArray raw = contents(path(u"l.raw"_s));
    const QImage picture(path(u"l.png"_s));
    const auto size = QJsonDocument::fromJson(contents(path(u"l.raw.json"_s))).object();
    QCOMPARE(QSize(size[u"width"].toInt(), size[u"height"].toInt()), QSize(600, 400));
    QCOMPARE(raw.size(), 600 * 400 * 4);
    QCOMPARE(run.report()[u"labels_sha256"].toString(), sha256(raw));
    QCOMPARE(picture.format(), QImage::Format_Grayscale16);
    quint32 largest = 0;
    for (int y = 0; y < 400; ++y) {
        const auto *const row = reinterpret_cast<const quint16 *>(picture.constScanLine(y));
        for (int x = 0; x < 600; ++x) {
            const auto label = qFromLittleEndian<quint32>(raw.constData() + 4 * (600 * y + x));
            QCOMPARE(quint32(row[x]), label);
            largest = std::max(largest, label);
        }
    }
    QCOMPARE(int(largest), run.report()[u"regions"].toInt());
}

void tst_rycut::multipliesAlphaAndKeepsTheRest()
{
    QImage picture = QImage(coffee).convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, masked(picture.pixel(x, y), y < 250 ? 255 : 128));
    picture.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    picture.setDotsPerMeterX(5000);
    picture.setDotsPerMeterY(4000);
    QVERIFY(picture.save(path(u"p.png"_s)));
    QCOMPARE(RycutRun::of(
                     cut(path(u"p.png"_s), {u"--output"_s, path(u"o.png"_s), u"--mask"_s,
                                            path(u"m.png"_s), u"--overlay"_s, path(u"v.png"_s)}))
                     .status,
             0);
    const QImage object(path(u"o.png"_s));
    const QImage mask(path(u"m.png"_s));
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            QCOMPARE(object.pixel(x, y), masked(picture.pixel(x, y), mask.constScanLine(y)[x]));
    for (const QImage &written : {object, QImage(path(u"v.png"_s))}) {
        QCOMPARE(written.colorSpace(), QColorSpace(QColorSpace::DisplayP3));
        QCOMPARE(written.dotsPerMeterX(), 5000);
        QCOMPARE(written.dotsPerMeterY(), 4000);
    }
}

void tst_rycut::cropsToTheObject()
{
    const auto run = [this](const QString &prefix, const QStringList &more) {
        return RycutRun::of(cut(coffee, QStringList{u"--output"_s, path(prefix + u"o.png"_s),
                                                    u"--mask"_s, path(prefix + u"m.png"_s),
                                                    u"--overlay"_s, path(prefix + u"v.png"_s)} +
                                                more))
                .status;
    };
    QCOMPARE(run(u"whole_"_s, {}), 0);
    QCOMPARE(run(u"cropped_"_s, {u"--crop"_s}), 0);
    const QRect box = objectBox(QImage(path(u"whole_m.png"_s)));
    QVERIFY(box.width() < 600 && box.height() < 400);
    for (const auto &name : {u"o.png"_s, u"m.png"_s, u"v.png"_s})
        QCOMPARE(QImage(path(u"cropped_"_s + name)), QImage(path(u"whole_"_s + name)).copy(box));
}

void tst_rycut::composesOverABackground_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("background");
    QTest::addColumn<QRgb>("expected");
    QTest::addColumn<int>("tolerance");
    QTest::newRow("opaque") << u"o.png"_s << u"#3080f0"_s << 0xFF3080F0U << 0;
    QTest::newRow("translucent") << u"o.png"_s << u"#80ff0000"_s << 0x80FF0000U << 0;
    QTest::newRow("lossy") << u"o.jpg"_s << u"white"_s << 0xFFFFFFFFU << 6;
}

void tst_rycut::composesOverABackground()
{
    QFETCH(QString, fileName);
    QFETCH(QString, background);
    QFETCH(QRgb, expected);
    QFETCH(int, tolerance);
    QCOMPARE(RycutRun::of(cut(coffee, {u"--output"_s, path(fileName), u"--mask"_s, path(u"m.png"_s),
                                       u"--background"_s, background}))
                     .status,
             0);
    const QImage result(path(fileName));
    QCOMPARE(result.size(), QSize(600, 400));
    const QRgb corner = result.pixel(0, 0);
    QCOMPARE(qAlpha(corner), qAlpha(expected));
    QVERIFY(std::abs(qRed(corner) - qRed(expected)) <= tolerance);
    QVERIFY(std::abs(qBlue(corner) - qBlue(expected)) <= tolerance);
    if (tolerance != 0)
        return;
    const QImage picture(coffee);
    const QImage mask(path(u"m.png"_s));
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            QCOMPARE(result.pixel(x, y),
                     mask.constScanLine(y)[x] != 0 ? picture.pixel(x, y) : expected);
}

void tst_rycut::outlinesTheObject()
{
    QCOMPARE(RycutRun::of(
                     cut(coffee, {u"--overlay"_s, path(u"v.png"_s), u"--mask"_s, path(u"m.png"_s)}))
                     .status,
             0);
    const QImage picture(coffee);
    const QImage overlay(path(u"v.png"_s));
    const QImage mask(path(u"m.png"_s));
    const auto isObject = [&](int x, int y) {
        return mask.valid(x, y) && mask.constScanLine(y)[x] != 0;
    };
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = overlay.pixel(x, y);
            const QRgb before = picture.pixel(x, y);
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
    const RycutRun run = RycutRun::of(cut(coffee, {u"--mask"_s, path(u"m.png"_s), u"--max-length"_s,
                                                   u"200"_s, u"--report"_s, u"-"_s}));
    QCOMPARE(run.status, 0);
    const QImage mask(path(u"m.png"_s));
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

void tst_rycut::choosesTheCuttingSize_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("cuttingWidth");
    QTest::newRow("by default") << QStringList() << 1200;
    QTest::newRow("full size") << QStringList{u"--full-size"_s} << 1500;
    QTest::newRow("no limit") << QStringList{u"--max-length"_s, u"0"_s} << 1500;
    QTest::newRow("another limit") << QStringList{u"--max-length"_s, u"300"_s} << 300;
    QTest::newRow("large limit") << QStringList{u"--max-length"_s, u"9000"_s} << 1500;
}

void tst_rycut::choosesTheCuttingSize()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, cuttingWidth);
    QVERIFY(Samples::photograph(u"coffee.png"_s, 1500).save(path(u"p.png"_s)));
    const RycutRun run = RycutRun::of(QStringList{u"cut"_s, path(u"p.png"_s), u"--polygon"_s,
                                                  u"325,150 1200,150 1350,500 1200,850 325,850"_s,
                                                  u"--output"_s, path(u"o.png"_s), u"--labels"_s,
                                                  path(u"l.png"_s), u"--report"_s, u"-"_s} +
                                      arguments);
    QCOMPARE(run.status, 0);
    QCOMPARE(QImage(path(u"o.png"_s)).size(), QSize(1500, 1000));
    QCOMPARE(QImage(path(u"l.png"_s)).size(), QSize(cuttingWidth, cuttingWidth * 2 / 3));
    QCOMPARE(run.report()[u"cutting"][u"width"].toInt(), cuttingWidth);
    QCOMPARE(run.report()[u"picture"][u"width"].toInt(), 1500);
}

void tst_rycut::turnsPicturesUpright()
{
    const QString sideways = path(u"p.jpg"_s);
    QVERIFY(QImage(coffee).transformed(QTransform().rotate(-90)).save(sideways));
    // Exif, big-endian, one entry: orientation 6, a quarter turn clockwise.
    const QByteArray note = QByteArray::fromHex("ffe10022457869660000"
                                                "4d4d002a00000008"
                                                "0001"
                                                "011200030000000100060000"
                                                "00000000");
    store(sideways, contents(sideways).insert(2, note));
    const RycutRun run = RycutRun::of(cut(sideways, {u"--output"_s, path(u"o.png"_s)}));
    QCOMPARE(run.status, 0);
    const QImage upright(path(u"o.png"_s));
    QCOMPARE(upright.size(), QSize(600, 400));
    const QRgb expected = QImage(coffee).pixel(300, 250);
    QVERIFY(std::abs(qRed(upright.pixel(300, 250)) - qRed(expected)) < 20);
}

void tst_rycut::readsLassoFiles_data()
{
    QTest::addColumn<QByteArray>("lasso");
    QTest::newRow("spaces") << QByteArray("130 60\n480 60\n540 200\n480 340\n130 340\n70 200");
    QTest::newRow("commas") << QByteArray("130,60\n480, 60\n540 ,200\n480.0,34e1\n130,340\n70,200");
    QTest::newRow("comments") << QByteArray(
            "# cup\n\n130 60 # first\r\n480\t60\r\n  540 200\n\n480 340\n130 340\n70 200\n#");
}

void tst_rycut::readsLassoFiles()
{
    QFETCH(QByteArray, lasso);
    store(path(u"lasso"_s), lasso);
    const RycutRun expected = RycutRun::of(cut(coffee, {u"--mask"_s, u"-"_s}));
    QCOMPARE(expected.status, 0);
    for (const QString &name : {path(u"lasso"_s), u"-"_s}) {
        const RycutRun run =
                RycutRun::of({u"cut"_s, coffee, u"--lasso"_s, name, u"--mask"_s, u"-"_s}, lasso);
        QCOMPARE(run.status, 0);
        QCOMPARE(run.output, expected.output);
    }
}

void tst_rycut::worksInPipes()
{
    QCOMPARE(RycutRun::of(cut(coffee, {u"--output"_s, path(u"o.png"_s)})).status, 0);
    const RycutRun run = RycutRun::of(cut(u"-"_s, {u"--output"_s, u"-"_s}), contents(coffee));
    QCOMPARE(run.status, 0);
    QCOMPARE(run.output, contents(path(u"o.png"_s)));
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
    for (int cores : {1, 2, 5}) {
        const RycutRun run = RycutRun::of(cut(coffee, {u"--report"_s, u"-"_s, u"--kernel"_s, kernel,
                                                       u"--cores"_s, QString::number(cores)}));
        if (run.errors.contains("this machine cannot run"))
            QSKIP("not on this processor");
        QCOMPARE(run.status, 0);
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
