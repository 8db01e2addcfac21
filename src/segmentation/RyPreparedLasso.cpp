#include "segmentation/RyPreparedLasso.h"

#include "image/RyGeometry.h"
#include "segmentation/RyLasso.h"

#include <mutex>

struct RyPreparedLasso::Forms
{
    Forms() = default;
    Forms(const QPainterPath &path, const QSize &size)
        : picture(size)
        , drawn(RyLasso::ownCopy(path))
    {
        if (!RyGeometry::isFinite(drawn))
            return;
        boundingRect = RyLasso::boundingRect(drawn);
        insidePicture = RyLasso::movedIntoPicture(drawn, size);
        snapped = RyLasso::snappedToBorder(drawn, size);
    }

    QSize picture;
    QPainterPath drawn;
    QRect boundingRect;
    QPainterPath insidePicture;
    QPainterPath snapped;
    mutable std::once_flag isGrown;
    mutable RyExpandedLasso grown;
};

RyPreparedLasso::RyPreparedLasso()
{
    static const auto none = std::make_shared<const Forms>();
    m_forms = none;
}

RyPreparedLasso::RyPreparedLasso(const QPainterPath &drawn, const QSize &picture)
    : m_forms(std::make_shared<const Forms>(drawn, picture))
{}

QPainterPath RyPreparedLasso::drawn() const
{
    return m_forms->drawn;
}

QSize RyPreparedLasso::picture() const
{
    return m_forms->picture;
}

QRect RyPreparedLasso::boundingRect() const
{
    return m_forms->boundingRect;
}

QPainterPath RyPreparedLasso::insidePicture() const
{
    return m_forms->insidePicture;
}

QPainterPath RyPreparedLasso::snapped() const
{
    return m_forms->snapped;
}

const RyExpandedLasso &RyPreparedLasso::grown() const
{
    std::call_once(m_forms->isGrown, [forms = m_forms.get()] {
        forms->grown =
                RyExpandedLasso(forms->snapped, QRect(QPoint(), forms->picture), marginPixels);
    });
    return m_forms->grown;
}

bool operator==(const RyPreparedLasso &a, const RyPreparedLasso &b)
{
    return a.isCopyOf(b) || (a.picture() == b.picture() && a.m_forms->drawn == b.m_forms->drawn);
}
