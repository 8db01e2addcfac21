#include "window/NamedAction.h"

#include <QAction>

QAction *NamedAction::create(QObject *parent, const QString &id, const QString &text,
                             const QKeySequence &shortcut)
{
    auto *const action = new QAction(text, parent);
    action->setObjectName(id);
    action->setShortcut(shortcut);
    return action;
}
