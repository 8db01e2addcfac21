#include "segmentation/RyMaskBuffers.h"
#include "segmentation/RyPackedMask.h"
#include "support/TestClasses.h"

#include <QRandomGenerator>
#include <QTest>

/// Masks in memory that is used again, or that is saved.
class tst_RyMaskBuffers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void masksKeepTheirPixels();
    void masksOutliveTheirBuffers();
    void packsMasks();
};

namespace {

/// A mask and what it has to look like, in memory of its own.
struct Pair
{
    QImage mask;
    QImage expected;
};

QImage plainMask(const QSize &size, QRgb color)
{
    QImage mask(size, QImage::Format_ARGB32_Premultiplied);
    mask.fill(color);
    return mask;
}

QImage randomMask(const QSize &size, QRgb first, QRgb second)
{
    QRandomGenerator random(7);
    QImage mask = plainMask(size, first);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            if (random.bounded(2) == 1)
                reinterpret_cast<QRgb *>(mask.scanLine(y))[x] = second;
        }
    }
    return mask;
}

} // namespace

void tst_RyMaskBuffers::masksKeepTheirPixels()
{
    QRandomGenerator random(3);
    const auto buffers = RyMaskBuffers::create();
    const QList<QSize> sizes{{300, 200}, {300, 200}, {300, 200}, {65, 129}};
    std::vector<Pair> pairs;
    for (int step = 0; step < 4000; ++step) {
        const QSize size = sizes.at(random.bounded(int(sizes.size())));
        if (pairs.empty() || random.bounded(12) == 0) { // a mask from elsewhere
            const QImage plain = plainMask(size, random.generate());
            pairs.push_back({plain, plain.copy()});
        }
        const Pair from = pairs[std::size_t(random.bounded(int(pairs.size())))];
        RyMaskBuffers::Draft draft = buffers->copyOf(from.mask);
        QImage expected = from.expected.copy();
        for (int run = random.bounded(4); run > 0; --run) {
            const int y = random.bounded(draft.height());
            const int left = random.bounded(draft.width());
            const int right = random.bounded(left, draft.width()) + 1;
            const QRgb color = random.generate();
            std::fill(draft.row(y) + left, draft.row(y) + right, color);
            draft.touched().markRun(y, left, right);
            auto *const row = reinterpret_cast<QRgb *>(expected.scanLine(y));
            std::fill(row + left, row + right, color);
        }
        if (random.bounded(10) == 0)
            continue; // given up half-way
        pairs.push_back({draft.finish(), expected});
        QCOMPARE(pairs.back().mask, expected);
        if (random.bounded(3) == 0) { // a host draws into what it was given
            pairs.back().mask.invertPixels();
            pairs.back().expected.invertPixels();
        }
        while (pairs.size() > 5)
            pairs.erase(pairs.begin() + random.bounded(int(pairs.size())));
    }
    for (const Pair &pair : pairs)
        QCOMPARE(pair.mask, pair.expected);
}

void tst_RyMaskBuffers::masksOutliveTheirBuffers()
{
    QImage mask;
    {
        const auto buffers = RyMaskBuffers::create();
        mask = buffers->copyOf(plainMask({100, 100}, 0xFF112233)).finish();
        buffers->retire();
        buffers->copyOf(mask).finish();
    }
    QCOMPARE(mask, plainMask({100, 100}, 0xFF112233));
}

void tst_RyMaskBuffers::packsMasks()
{
    QList<QImage> masks{plainMask({70, 5}, 0xFF123456), randomMask({70, 5}, 0xFF0000FF, 0)};
    for (const QSize &size : {QSize(1, 1), QSize(63, 3), QSize(64, 2), QSize(65, 2), QSize(200, 9)})
        masks << randomMask(size, 0, 0xFFFFFFFF);
    for (const QImage &mask : std::as_const(masks)) {
        const auto packed = RyPackedMask::pack(mask);
        QVERIFY(packed);
        QCOMPARE(packed->unpacked(), mask);
    }
    QImage threeColors = randomMask({130, 5}, 0, 0xFFFFFFFF);
    threeColors.setPixel(129, 4, 0xFF0000FF);
    for (const QImage &mask : {threeColors, QImage(), QImage(9, 9, QImage::Format_Mono)})
        QVERIFY(!RyPackedMask::pack(mask));
}

RY_TEST_CLASS(tst_RyMaskBuffers, QCoreApplication)
#include "tst_RyMaskBuffers.moc"
