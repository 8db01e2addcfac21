#pragma once

#include "RyConfigItem.h"
#include "RyCoreExport.h"

#include <QObject>
#include <QStringList>
#include <QVariant>

/**
 * Base of the classes that keep settings in our one settings file.
 *
 * File     INI as QSettings writes it, RyImageCutter.ini in the XDG configuration folder; made at
 *          the first save, along with its folder.
 * Sharing  several processes may use the file at once. Only what was changed here, or what the
 *          file does not have yet, is written over what it holds at that moment.
 * Errors   a file that is damaged or cannot be read counts as one without entries. A damaged one
 *          stays as it is until something is changed; what can still be read of it then remains.
 *          What cannot be saved stays changed, and goes along with the next save. Each failure is
 *          logged once, as an error, with the file's name.
 * Threads  reentrant. Every access to the file takes a RySettingsLock of its own; loadSettings()
 *          and saveSettings() take one for all their entries.
 */
class RYCORE_EXPORT RySettings : public QObject
{
    Q_OBJECT

public:
    /// To be called before any settings object is made: those that exist do not read their values
    /// again. An empty name brings the usual file back. Any thread.
    static void setFileName(const QString &fileName);
    static QString fileName(); ///< absolute
    /// Why the last save in this process failed, with the file's name; empty when it did not.
    static QString saveError();

    virtual void loadSettings() = 0;
    virtual void saveSettings() = 0;

    /// Keys that follow are looked for in this group, which may be inside another one.
    void beginGroup(const QString &group);
    void endGroup();

    bool doesEntryExist(const QString &key) const;
    /// The flag of these two is for hosts that pass it, and changes nothing.
    QVariant readVariant(const QString &key, const QVariant &defaultValue, bool = false) const;
    void writeEntry(const QString &key, const QVariant &value, bool = false);

    /// Where the file has no entry under the item's key, or none that is a number for an int, the
    /// item gets its default value.
    void load(RyConfigItem<int> *item) const;
    void load(RyConfigItem<QString> *item) const;
    /// The item must live until the outermost lock is released.
    void save(RyConfigItem<int> *item);
    void save(RyConfigItem<QString> *item);

protected:
    RySettings() = default;

    /// For entries that are no items: what save() does with one. *isChanged is not 0 when the
    /// value was changed here, becomes 0 once it is in the file, and must live as long as an item.
    void saveEntry(const QString &key, const QVariant &value, quintptr *isChanged);

private:
    QString pathOf(const QString &key) const;

    QStringList m_groups;
};
