#pragma once

#include <QImage>
#include <QList>
#include <QRect>

/**
 * A picture with its halves, quarters and so on, so that drawing it small reads few pixels and
 * leaves no grain.
 *
 * Threads  a value; making and changing one takes time and belongs on a thread of its own.
 */
class ImagePyramid
{
public:
    struct Level
    {
        QImage image;
        double shrinking =
                1.0; ///< how many pixels of the picture one of these stands for, per side
    };

    ImagePyramid() = default;
    /// Format_RGB32, Format_ARGB32_Premultiplied or Format_Alpha8; without memory, a pyramid of
    /// fewer levels.
    explicit ImagePyramid(const QImage &picture);
    /// Of any picture; one without transparency lends its own pixels.
    static ImagePyramid ofPhotograph(const QImage &picture);

    bool isNull() const { return m_levels.isEmpty(); }
    QSize size() const { return isNull() ? QSize() : m_levels.first().size(); }
    const QImage &picture() const { return m_levels.first(); }

    /// The smallest level that is no smaller than the picture at this scale. Not for a null one.
    Level levelFor(double scale) const;
    /// Another picture of the same size and format, which differs within the area only.
    void replace(const QImage &picture, const QRect &area);

private:
    QList<QImage> m_levels; // each half the size of the one before, rounded up
};
