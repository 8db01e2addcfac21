#include "ContactSheet.h"

#include "Masks.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int cellSide = 360, captionHeight = 20, gap = 4;
constexpr QRgb truthColor = 0xFF00FF40, resultColor = 0xFFFF00C0;
const QColor lassoColor(255, 220, 0);

QImage thumbnail(const QImage &image)
{
    return image.scaled(cellSide, cellSide, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
}

void drawOutline(QImage &picture, const QImage &mask, QRgb color)
{
    const QImage boundary = Masks::boundary(Masks::thresholded(
            mask.scaled(picture.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (boundary.constScanLine(y)[x] != 0)
                picture.setPixel(x, y, color);
}

void drawLasso(QImage &picture, const CutCase &cutCase)
{
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(double(picture.width()) / cutCase.picture.width(),
                  double(picture.height()) / cutCase.picture.height());
    QPen pen(lassoColor);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.drawPolygon(cutCase.lasso);
}

} // namespace

void ContactSheet::beginRow(const CutCase &cutCase)
{
    m_picture = thumbnail(cutCase.picture);
    QImage picture = m_picture;
    drawOutline(picture, cutCase.truth, truthColor);
    drawLasso(picture, cutCase);
    const QString caption = u"%1 (%2): truth and lasso"_s.arg(
            cutCase.name, cutCase.isWholeThing ? u"whole thing"_s : u"part"_s);
    m_rows.append(Row{{picture, caption}});
}

void ContactSheet::addResult(const QString &method, const QImage &mask, const MaskScore &score)
{
    QImage picture = m_picture;
    drawOutline(picture, mask, resultColor);
    const QString caption =
            u"%1: IoU %2, F %3"_s.arg(method, QString::number(score.intersectionOverUnion, 'f', 3),
                                      QString::number(score.boundaryF(), 'f', 3));
    m_rows.last().append({picture, caption});
}

int ContactSheet::heightOf(const Row &row)
{
    return row.first().picture.height() + captionHeight + gap;
}

QImage ContactSheet::drawn() const
{
    qsizetype columns = 0;
    int height = 0;
    for (const Row &row : m_rows) {
        columns = std::max(columns, row.size());
        height += heightOf(row);
    }
    QImage sheet(int(columns) * (cellSide + gap), height, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    int top = 0;
    for (const Row &row : m_rows) {
        int left = 0;
        for (const Cell &cell : row) {
            painter.drawText(left, top, cellSide, captionHeight, Qt::AlignVCenter, cell.caption);
            painter.drawImage(left, top + captionHeight, cell.picture);
            left += cellSide + gap;
        }
        top += heightOf(row);
    }
    return sheet;
}
