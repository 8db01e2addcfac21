#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/**
 * Turns SIGINT into a signal of the event loop, and into a question that code without an event loop
 * can ask between its steps.
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

    /// Throws CommandError once SIGINT has arrived.
    void check() const;
    /// Blocks until the descriptor can be read or SIGINT arrives; the latter throws.
    void waitForInput(int fileDescriptor) const;

Q_SIGNALS:
    void arrived();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};
