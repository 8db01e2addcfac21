#pragma once

#include <QString>

/**
 * One entry of a settings class: its value, the value that holds where the file has none, and the
 * key it is stored under.
 *
 * T        what RySettings has a load() and a save() for.
 * Threads  a plain value.
 */
template <typename T>
class RyConfigItem
{
public:
    RyConfigItem(const T &value, const T &defaultValue, const QString &key)
        : m_value(value)
        , m_defaultValue(defaultValue)
        , m_key(key)
    {}

    const T &value() const { return m_value; }
    const T &defaultValue() const { return m_defaultValue; }
    const QString &key() const { return m_key; }

    /// The next save writes the item, whatever the file says by then.
    void setValue(const T &value)
    {
        m_value = value;
        m_isChanged = 1;
    }

private:
    friend class RySettings;

    T m_value;
    T m_defaultValue;
    QString m_key;
    quintptr m_isChanged = 0; ///< since it was loaded or saved; RySettings clears it
};
