#include "cutout/CutoutPicture.h"
#include "cutout/EdgeOperations.h"
#include "support/Masks.h"
#include "support/TestClasses.h"

#include <QColorSpace>
#include <QPainter>
#include <QTest>

namespace {

constexpr QRgb objectColour = 0xFFB03020U;
constexpr QRgb backgroundColour = 0xFF20C040U;
constexpr QRgb lineColour = 0xFF2040E0U;

/// A disc, a line beside it that is too thin to have an inside, and a background; between them two
/// pixels of mixed colours, as a lens would leave them.
struct Scene
{
    Scene()
        : picture(120, 100, QImage::Format_ARGB32)
        , mask(Masks::filled(picture.size(), 0))
    {
        picture.fill(QColor(backgroundColour));
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(176, 48, 32, 128));
        painter.drawEllipse(QPointF(50, 50), 31, 31);
        painter.setBrush(QColor(objectColour));
        painter.drawEllipse(QPointF(50, 50), 29, 29);
        painter.fillRect(100, 20, 2, 60, QColor(lineColour));
        painter.end();
        QPainter maskPainter(&mask);
        maskPainter.setBrush(Qt::white);
        maskPainter.setPen(Qt::NoPen);
        maskPainter.drawEllipse(QPointF(50, 50), 30, 30);
        maskPainter.fillRect(100, 20, 2, 60, Qt::white);
    }

    QImage picture;
    QImage mask;
};

} // namespace

class tst_CutoutPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void removesTheRim();
    void keepsColours();
    void ignoresWhatCannotBeSeen();
    void composes();
};

void tst_CutoutPicture::removesTheRim()
{
    const Scene scene;
    for (const int feather : {0, 2, 12}) { // the last is softer than the line is wide
        const CutoutMask mask = EdgeOperations::apply(scene.mask, {.feather = feather});
        const auto shown = [&](int cleanPixels, auto isCounted) {
            const QImage cutout =
                    CutoutPicture::compose(scene.picture, mask, {.cleanPixels = cleanPixels});
            int found = 0;
            for (int y = 0; y < cutout.height(); ++y)
                for (int x = 0; x < cutout.width(); ++x)
                    found += qAlpha(cutout.pixel(x, y)) > 0 &&
                             isCounted(x, cutout.pixel(x, y) | 0xFF000000U);
            return found;
        };
        const auto isForeign = [](int x, QRgb colour) { return x < 50 && colour != objectColour; };
        const auto isLine = [](int, QRgb colour) { return colour == lineColour; };
        QVERIFY(shown(0, isForeign) > 50);
        QCOMPARE(shown(3, isForeign), 0);
        QVERIFY(shown(3, isLine) >= 120);
    }
}

void tst_CutoutPicture::keepsColours()
{
    const Scene scene;
    const std::pair<QImage, int> cases[] = {{scene.mask, 0}, // not asked for
                                            {Masks::filled({120, 100}, 0), 3},
                                            {Masks::filled({120, 100}, 255), 3}};
    for (const auto &[mask, cleanPixels] : cases) {
        const QImage result = CutoutPicture::compose(scene.picture, EdgeOperations::apply(mask, {}),
                                                     {.cleanPixels = cleanPixels});
        QCOMPARE(result.convertToFormat(QImage::Format_RGB32),
                 scene.picture.convertToFormat(QImage::Format_RGB32));
    }
}

/// Transparent pixels of a picture have colours too.
void tst_CutoutPicture::ignoresWhatCannotBeSeen()
{
    QImage picture(40, 40, QImage::Format_ARGB32);
    picture.fill(QColor(objectColour));
    for (int y = 0; y < 40; ++y)
        picture.setPixel(18, y, 0x0000FF00U);
    QImage mask = Masks::filled(picture.size(), 0);
    for (int y = 0; y < 40; ++y)
        std::fill_n(mask.scanLine(y), 20, uchar(255));
    const CutoutMask cut = EdgeOperations::apply(mask, {});
    const QImage result = CutoutPicture::compose(picture, cut, {.cleanPixels = 1});
    QCOMPARE(result.pixel(18, 20) & 0xFFFFFFU, objectColour & 0xFFFFFFU);
    QCOMPARE(qAlpha(result.pixel(18, 20)), 0);
}

void tst_CutoutPicture::composes()
{
    Scene scene;
    scene.picture.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    scene.picture.setDotsPerMeterX(5000);
    const CutoutMask mask = EdgeOperations::apply(scene.mask, {});
    constexpr QRgb unseen = backgroundColour & 0xFFFFFFU;
    const std::tuple<CutoutPicture::Options, QSize, QRgb> cases[] = {
            {{}, {120, 100}, unseen},
            {{.crop = true}, {82, 60}, unseen},
            {{.background = Qt::white}, {120, 100}, 0xFFFFFFFFU}};
    for (const auto &[options, size, inTheCorner] : cases) {
        const QImage result = CutoutPicture::compose(scene.picture, mask, options);
        QCOMPARE(result.size(), size);
        QCOMPARE(result.pixel(0, 0), inTheCorner);
        QCOMPARE(result.colorSpace(), scene.picture.colorSpace());
        QCOMPARE(result.dotsPerMeterX(), 5000);
        QCOMPARE(CutoutPicture::cropped(mask.alpha, mask, options).size(), size);
    }
}

RY_TEST_CLASS(tst_CutoutPicture, QCoreApplication)
#include "tst_CutoutPicture.moc"
