#include "window/ShortcutMap.h"

#include "settings/StudioSettings.h"

#include <QAction>

ShortcutMap::ShortcutMap(const QList<QAction *> &actions, QObject *parent)
    : QObject(parent)
    , m_actions(actions)
{
    for (const QAction *const action : actions)
        m_ownKeys.insert(action->objectName(), action->shortcuts());
    apply();
}

QKeySequence ShortcutMap::ownKey(const QAction *action) const
{
    return m_ownKeys.value(action->objectName()).value(0);
}

QList<QKeySequence> ShortcutMap::keysWith(const QAction *action, const QKeySequence &chosen) const
{
    return chosen == ownKey(action) ? m_ownKeys.value(action->objectName()) : QList{chosen};
}

void ShortcutMap::setKeys(const QMap<QString, QKeySequence> &keys)
{
    QMap<QString, QKeySequence> chosen = StudioSettings::instance().shortcuts();
    for (const QAction *const action : std::as_const(m_actions)) {
        const QString name = action->objectName();
        if (!keys.contains(name))
            continue;
        if (keys.value(name) == ownKey(action))
            chosen.remove(name);
        else
            chosen.insert(name, keys.value(name));
    }
    StudioSettings::instance().setShortcuts(chosen);
    apply();
}

void ShortcutMap::apply()
{
    const QMap<QString, QKeySequence> chosen = StudioSettings::instance().shortcuts();
    for (QAction *const action : std::as_const(m_actions)) {
        const QString name = action->objectName();
        if (chosen.contains(name))
            action->setShortcut(chosen.value(name));
        else
            action->setShortcuts(m_ownKeys.value(name));
    }
}
