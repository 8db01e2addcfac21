#pragma once

#include <QKeySequence>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

class QAction;

/// The keys of a window's actions: their own ones, or those that a person has chosen.
class ShortcutMap : public QObject
{
    Q_OBJECT

public:
    /// The actions have names and their own keys; they are borrowed, and get the settings' keys.
    explicit ShortcutMap(const QList<QAction *> &actions, QObject *parent = nullptr);

    const QList<QAction *> &actions() const { return m_actions; }
    QKeySequence ownKey(const QAction *action) const; ///< the first one
    /// What the action would have if this one were chosen: with its own key come the others.
    QList<QKeySequence> keysWith(const QAction *action, const QKeySequence &chosen) const;
    /// By the actions' names; saved in the settings. Names that are not among them keep theirs.
    void setKeys(const QMap<QString, QKeySequence> &keys);

private:
    void apply();

    QList<QAction *> m_actions;
    QMap<QString, QList<QKeySequence>> m_ownKeys;
};
