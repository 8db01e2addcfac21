#include "regiongrowing/RyBackgroundExtractor.h"
#include "regiongrowing/RyHistogram3D.h"
#include "regiongrowing/RyHistogram3DIndex.h"
#include "support/TestClasses.h"

#include <QTest>

namespace {

constexpr QRgb colorOfCandidate = 0xFF508090;
constexpr QRgb otherColor = 0xFFF00010;

/// One row: pixels of the candidate's colour and others, marked by the mask, then the same
/// unmarked.
struct Strip
{
    QImage plane, mask;

    explicit Strip(const QList<int> &counts)
    {
        QList<QRgb> pixels, marks;
        for (int i = 0; i < 4; ++i) {
            pixels += QList<QRgb>(counts[i], i % 2 ? otherColor : colorOfCandidate);
            marks += QList<QRgb>(counts[i], i < 2 ? 0x01000000 : 0x00FFFFFF); // any alpha marks
        }
        plane = QImage(int(pixels.size()), 1, QImage::Format_ARGB32);
        mask = plane;
        std::copy(pixels.begin(), pixels.end(), reinterpret_cast<QRgb *>(plane.scanLine(0)));
        std::copy(marks.begin(), marks.end(), reinterpret_cast<QRgb *>(mask.scanLine(0)));
    }
};

} // namespace

class tst_RyBackgroundExtractor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsBins();
    void hashesInBase255();
    void comparesCounts();
};

void tst_RyBackgroundExtractor::findsBins()
{
    const RyHistogram3D empty;
    QCOMPARE(empty.createIndex(RyYCbCr(17, 255, 0)), 241);
    QCOMPARE(empty.createIndex(RyYCbCr(0, 0, 255)), 3840);
    QCOMPARE(empty.createIndex(RyYCbCr(255, 255, 255)), 4095);
    QCOMPARE(empty.value(RyYCbCr(0, 0, 0)), 0); // no bins at all
    QImage pixel(1, 1, QImage::Format_ARGB32);
    pixel.fill(0xFFFFFFFF);
    RyHistogram3D histogram(pixel, pixel, true);
    histogram.buildHistogram();
    QCOMPARE(histogram.size(), 1);
    QCOMPARE(histogram.value(RyYCbCr(240, 245, 255)), 1);
    QCOMPARE(histogram.value(RyYCbCr(255, 255, 256)), 0);          // beyond the bins
    QCOMPARE(histogram.value(RyYCbCr(0, 0, 0x0FFFFFFF)), 0);       // a negative index
    QCOMPARE(histogram.value(RyYCbCr(0xFFFFFFFF, 0xFFFF, 77)), 0); // a wrapped one
}

void tst_RyBackgroundExtractor::hashesInBase255()
{
    QCOMPARE(RyHistogram3DIndex(1, 2, 3).hash(), qint64(1 + 2 * 255 + 3 * 65025));
    QCOMPARE(RyHistogram3DIndex(0, 1, 0).hash(), RyHistogram3DIndex(255, 0, 0).hash());
    QCOMPARE(RyHistogram3DIndex(0, 0, 33026).hash(), qint64(33026) * 65025 - 4294967296);
    QVERIFY(RyHistogram3DIndex() == RyHistogram3DIndex(0, 0, 0));
    QVERIFY(!(RyHistogram3DIndex(0, 1, 0) == RyHistogram3DIndex(255, 0, 0)));
}

void tst_RyBackgroundExtractor::comparesCounts()
{
    // Marked: the candidate's pixels, others; unmarked the same.
    const std::pair<QList<int>, bool> cases[] = {
            {{0, 0, 3, 9}, false}, {{0, 5, 0, 9}, false},  {{1, 0, 0, 3}, false}, // 0.9, truncated
            {{1, 0, 0, 4}, true},  {{7, 0, 7, 20}, false}, {{8, 90, 7, 20}, true},
            {{8, 3, 0, 0}, false}, {{5, 0, 3, 0}, false},  {{5, 0, 4, 0}, true}};
    for (const auto &[counts, isTaken] : cases) {
        const Strip strip(counts);
        const RyImage image(strip.plane, strip.plane, QFileInfo());
        RyBackgroundExtractor extractor;
        extractor.setup(&image);
        extractor.setSuperPixelInformations({RySuperPixel(), RySuperPixel(0x5F, 0x8F, 0x9F, 0, 0)});
        const QSet<int> background = extractor.extractBackground({-1, 1, 2}, strip.mask);
        QCOMPARE(background, isTaken ? QSet<int>{1} : QSet<int>{}); // the others have no record
    }
}

RY_TEST_CLASS(tst_RyBackgroundExtractor, QCoreApplication)
#include "tst_RyBackgroundExtractor.moc"
