#include "document/StepName.h"

#include <QCoreApplication>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("StepName", text);
}

QString name(const Gesture::Lasso &)
{
    return tr("Lasso");
}

QString name(const Gesture::Close &)
{
    return tr("Cut by Scissors");
}

QString name(const Gesture::Click &)
{
    return tr("Toggle Region");
}

QString name(const Gesture::Paint &paint)
{
    return paint.isForeground ? tr("Add Regions") : tr("Take Regions Away");
}

QString name(const Gesture::Scribble &scribble)
{
    return scribble.isForeground ? tr("Add by Scribble") : tr("Take Away by Scribble");
}

QString name(const Gesture::Area &area)
{
    return area.isForeground ? tr("Add by Scissors") : tr("Take Away by Scissors");
}

QString name(const Gesture::Recut &)
{
    return tr("Cut Anew");
}

QString name(const Gesture::Invert &)
{
    return tr("Invert");
}

} // namespace

QString StepName::of(const Gesture &gesture)
{
    const auto nameOf = [](const auto &step) {
        if constexpr (requires { name(step); })
            return name(step);
        else
            return QString(); // changes nothing that could be undone
    };
    return std::visit(nameOf, gesture.step);
}
