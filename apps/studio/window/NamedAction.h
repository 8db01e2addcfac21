#pragma once

#include <QString>

class QAction;
class QKeySequence;
class QObject;

/// Actions that settings and tests find by their names, which no translation changes.
namespace NamedAction {

/// The parent owns it.
QAction *create(QObject *parent, const QString &id, const QString &text,
                const QKeySequence &shortcut);

} // namespace NamedAction
