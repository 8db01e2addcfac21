#include "image/RyImage.h"

#include "RyCpuFeatures.h"
#include "image/RyConcurrent.h"
#include "image/RyImage_p.h"

#include <QMutexLocker>

#include <algorithm>

namespace {

// Up to here a picture is converted faster than the thread pool wakes up. Only rows count: a low
// and very wide picture stays in one thread as well.
constexpr int mostRowsInOneThread = 200;

/// The picture as RGB words; formats that are as wide but order their channels otherwise do not
/// pass for such.
QImage as32Bit(const QImage &picture)
{
    switch (picture.format()) {
    case QImage::Format_Invalid:
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return picture;
    default:
        return picture.convertToFormat(QImage::Format_ARGB32);
    }
}

struct ConversionBlock
{
    RyIntRange rows;
    const uchar *rgb = nullptr;
    uchar *ycbcr = nullptr; // the whole plane; a block writes its own rows
    qsizetype rgbBytesPerLine = 0;
    qsizetype ycbcrBytesPerLine = 0;
    int width = 0;
    RyImageKernels::ConvertRow convert = nullptr;
};

void convertBlock(const ConversionBlock &block)
{
    for (int y = block.rows.first; y != block.rows.lastIndexEvenIfUnvalid(); ++y)
        block.convert(reinterpret_cast<const QRgb *>(block.rgb + y * block.rgbBytesPerLine),
                      reinterpret_cast<QRgb *>(block.ycbcr + y * block.ycbcrBytesPerLine),
                      block.width);
}

/// Takes the writable pointer, which may detach the plane: once, before any block runs.
ConversionBlock conversion(const RyIntRange &rows, const QImage &rgb, QImage &ycbcr)
{
    return {rows,
            rgb.constBits(),
            ycbcr.bits(),
            rgb.bytesPerLine(),
            ycbcr.bytesPerLine(),
            std::min(rgb.width(), ycbcr.width()),
            RyImageKernels::best()};
}

} // namespace

void RyImageKernels::convertRow(const QRgb *in, QRgb *out, int count)
{
    for (int x = 0; x < count; ++x)
        out[x] = packedYCbCr(in[x]);
}

RyImageKernels::ConvertRow RyImageKernels::best()
{
    return ryCpuHasFeature(RyCpuFeature::Avx2) ? convertRowAvx2 : convertRow;
}

RyImage::RyImage(const QImage &rgb, const QFileInfo &file)
    : m_imageRGB(as32Bit(rgb))
    , m_fileInfo(file)
{
    buildingColorspaces();
}

RyImage::RyImage(const QImage &rgb, const QImage &ycbcr, const QFileInfo &file)
    : m_imageRGB(rgb)
    , m_imageYCbCr(ycbcr)
    , m_fileInfo(file)
{}

RyImage::RyImage(const RyImage &other)
{
    const QMutexLocker lock(&other.m_mutex);
    m_imageRGB = other.m_imageRGB;
    m_imageYCbCr = other.m_imageYCbCr;
    m_fileInfo = other.m_fileInfo;
}

RyImage &RyImage::operator=(const RyImage &other)
{
    if (this == &other)
        return *this;
    const QMutexLocker lock(&other.m_mutex);
    m_imageRGB = other.m_imageRGB;
    m_imageYCbCr = other.m_imageYCbCr;
    m_fileInfo = other.m_fileInfo;
    return *this;
}

void RyImage::buildingColorspaces()
{
    QImage plane(m_imageRGB.size(), m_imageRGB.format());
    m_imageYCbCr = QImage();
    if (plane.isNull())
        return;
    const RyIntRange rows = RyIntRange::rowsOfImage(m_imageRGB);
    if (rows.countElements() > mostRowsInOneThread) {
        QList<ConversionBlock> blocks;
        for (const RyIntRange &part : rows.splitEvenlyForCpuCores())
            blocks.append(conversion(part, m_imageRGB, plane));
        RyConcurrent::blockingMap(blocks, convertBlock);
    } else {
        mapBlock(rows, m_imageRGB, plane);
    }
    m_imageYCbCr = plane;
}

void RyImage::mapBlock(const RyIntRange &rows, const QImage &rgb, QImage &ycbcr) const
{
    convertBlock(conversion(rows, rgb, ycbcr));
}
