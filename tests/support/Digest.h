#pragma once

#include <QCryptographicHash>
#include <QDataStream>
#include <QIODevice>
#include <QImage>
#include <QList>
#include <QSize>

/// The beginning of the SHA-256 of all that was added, to be compared with what is known to be right.
class Digest
{
public:
    template <typename Value>
    Digest &operator<<(const Value &value)
    {
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream << value;
        m_hash.addData(bytes);
        return *this;
    }
    /// The pixels, without what fills up the rows.
    Digest &operator<<(const QImage &image)
    {
        *this << image.size();
        for (int y = 0; y < image.height(); ++y)
            m_hash.addData(QByteArrayView(image.constScanLine(y),
                                          qsizetype(image.width()) * image.depth() / 8));
        return *this;
    }
    /// Colours and places of superpixels, or of regions.
    template <typename Record>
    requires requires(const Record &record) { record.averageYCbCr(); }
    Digest &operator<<(const QList<Record> &records)
    {
        for (const Record &record : records) {
            const auto color = record.averageYCbCr();
            *this << color.luminance() << color.cb() << color.cr() << record.x() << record.y()
                  << record.count();
        }
        return *this;
    }
    QByteArray hex() const { return m_hash.result().toHex().left(8); }

private:
    QCryptographicHash m_hash{QCryptographicHash::Sha256};
};
