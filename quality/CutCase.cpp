#include "CutCase.h"

#include "Masks.h"

#include <QTransform>

CutCase CutCase::scaled(double factor) const
{
    const QSize size = (QSizeF(picture.size()) * factor).toSize().expandedTo({1, 1});
    const auto resized = [&size](const QImage &image) {
        return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    CutCase result = *this;
    result.picture = resized(picture).convertToFormat(QImage::Format_ARGB32);
    result.truth = Masks::thresholded(resized(truth));
    result.lasso = QTransform::fromScale(factor, factor).map(lasso);
    return result;
}
