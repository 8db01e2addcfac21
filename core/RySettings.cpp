#include "RySettings.h"

#include "RySettingsLock.h"
#include "RySettingsStore.h"

using namespace Qt::StringLiterals;

void RySettings::setFileName(const QString &fileName)
{
    RySettingsStore::instance().setFileName(fileName);
}

QString RySettings::fileName()
{
    return RySettingsStore::instance().fileName();
}

QString RySettings::saveError()
{
    return RySettingsStore::instance().saveError();
}

void RySettings::beginGroup(const QString &group)
{
    m_groups.append(group);
}

void RySettings::endGroup()
{
    if (!m_groups.isEmpty())
        m_groups.removeLast();
}

QString RySettings::pathOf(const QString &key) const
{
    return (m_groups + QStringList(key)).join(u'/');
}

bool RySettings::doesEntryExist(const QString &key) const
{
    const RySettingsLock lock;
    return RySettingsStore::instance().contains(pathOf(key));
}

QVariant RySettings::readVariant(const QString &key, const QVariant &defaultValue, bool) const
{
    const RySettingsLock lock;
    return RySettingsStore::instance().value(pathOf(key), defaultValue);
}

void RySettings::writeEntry(const QString &key, const QVariant &value, bool)
{
    saveEntry(key, value, nullptr);
}

void RySettings::saveEntry(const QString &key, const QVariant &value, quintptr *isChanged)
{
    const RySettingsLock lock;
    RySettingsStore::instance().write(pathOf(key), value, isChanged);
}

void RySettings::load(RyConfigItem<int> *item) const
{
    // As a text, since QVariant cuts a number that is too long down to 32 bits.
    const QString text = readVariant(item->m_key, item->m_defaultValue).toString();
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    item->m_value = isNumber ? number : item->m_defaultValue;
    item->m_isChanged = 0;
}

void RySettings::load(RyConfigItem<QString> *item) const
{
    // A comma that somebody wrote without quotes makes a list of the text.
    item->m_value = readVariant(item->m_key, item->m_defaultValue).toStringList().join(u", "_s);
    item->m_isChanged = 0;
}

void RySettings::save(RyConfigItem<int> *item)
{
    saveEntry(item->m_key, item->m_value, &item->m_isChanged);
}

void RySettings::save(RyConfigItem<QString> *item)
{
    saveEntry(item->m_key, item->m_value, &item->m_isChanged);
}
