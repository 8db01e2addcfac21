#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/**
 * Turns the signals that ask the program to end, SIGINT, SIGTERM and SIGHUP, into one of the event
 * loop, and into a question that code without an event loop can ask between its steps. So the files
 * of a run appear together or not at all, and no temporary ones stay.
 *
 * Threads  one object at a time, in the main thread.
 */
class Interruption : public QObject
{
    Q_OBJECT

public:
    Interruption();
    ~Interruption() override;
    Q_DISABLE_COPY_MOVE(Interruption)

    /// Throws CommandError once a signal has arrived.
    void check() const;
    /// Blocks until the descriptor can be read or a signal arrives; the latter throws.
    void waitForInput(int fileDescriptor) const;

Q_SIGNALS:
    void arrived();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};
