#pragma once

#include "segmentation/RyExpandedLasso.h"

#include <QPainterPath>
#include <QRect>
#include <QSize>

#include <memory>

/**
 * A lasso in all the forms that a cut asks for, made once and handed on as a whole.
 *
 * Input    a path in picture pixels. One with coordinates that are not finite has no area.
 * Threads  a plain value whose copies share their data; safe from every thread. Construction takes
 *          O(points), and so does the first call of grown(), which is the costliest form.
 */
class RyPreparedLasso
{
public:
    static constexpr int marginPixels = 10; ///< by which grown() exceeds snapped()

    RyPreparedLasso(); ///< no lasso: all forms are empty
    RyPreparedLasso(const QPainterPath &drawn, const QSize &picture);

    QPainterPath drawn() const;
    QSize picture() const;
    /// Of the drawn form, in whole pixels.
    QRect boundingRect() const;
    /// With points outside the picture moved onto its border: what graph cuts look at. A hand that
    /// kept off the border has drawn a margin there as elsewhere.
    QPainterPath insidePicture() const;
    /// With points close to the border moved onto it as well: what superpixels are made for.
    QPainterPath snapped() const;
    const RyExpandedLasso &grown() const;

    /// Whether both were made as one. Drawing the same path again makes another lasso.
    bool isCopyOf(const RyPreparedLasso &other) const { return m_forms == other.m_forms; }
    /// True for the same path on pictures of the same size.
    friend bool operator==(const RyPreparedLasso &a, const RyPreparedLasso &b);

private:
    struct Forms;

    std::shared_ptr<const Forms> m_forms; // never null
};
