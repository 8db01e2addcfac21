#pragma once

#include <QFile>
#include <QTemporaryDir>

#include <sys/mount.h>

/// A disk of some bytes, which can be full. Only root can have one.
class SmallDisk
{
public:
    explicit SmallDisk(int bytes)
        : m_isMounted(mount("tmpfs", QFile::encodeName(m_folder.path()).constData(), "tmpfs", 0,
                            QByteArray("size=" + QByteArray::number(bytes)).constData()) == 0)
    {}
    ~SmallDisk()
    {
        if (m_isMounted)
            umount2(QFile::encodeName(m_folder.path()).constData(), MNT_DETACH);
    }
    Q_DISABLE_COPY_MOVE(SmallDisk)

    bool isMounted() const { return m_isMounted; }
    QString path() const { return m_folder.path(); }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }

private:
    const QTemporaryDir m_folder;
    const bool m_isMounted;
};
