#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

/// A terminal without a screen: what a program writes to its device can be read here.
class Terminal
{
public:
    Terminal()
        : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0)
            return;
        // Held open, or what was said is lost when the program ends.
        m_device = open(ptsname(m_master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    ~Terminal()
    {
        close(m_device);
        close(m_master);
    }
    Q_DISABLE_COPY_MOVE(Terminal)

    /// False on systems without pseudo-terminals, such as a bare chroot.
    bool isOpen() const { return m_device >= 0; }
    QString deviceName() const { return QString::fromLocal8Bit(ptsname(m_master)); }

    /// Everything so far.
    QByteArray said()
    {
        std::array<char, 4096> piece;
        ssize_t count = 0;
        while ((count = read(m_master, piece.data(), piece.size())) > 0)
            m_said.append(piece.data(), count);
        return m_said;
    }

private:
    int m_master;
    int m_device = -1;
    QByteArray m_said;
};
